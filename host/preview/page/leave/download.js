// SPDX-License-Identifier: BSD-3-Clause
// Files that leave through the browser, and how they are called.

/** @param {Blob} file @param {string} name */
export function download(file, name) {
  const address = URL.createObjectURL(file);
  const link = Object.assign(document.createElement("a"), { href: address, download: name });
  link.click();
  // The browser has begun to read it by then.
  setTimeout(() => URL.revokeObjectURL(address), 60000);
}

/** A layer's name without its folder, its extension and the field for a frame's number. @param {string} name */
export function baseName(name) {
  const file = name.slice(name.lastIndexOf("/") + 1);
  const base = file.includes(".") ? file.slice(0, file.lastIndexOf(".")) : file;
  return base.replace(/[._-]?(#+|@+|%0?\d*d|\$F\d*)$/, "") || "umbrant";
}

/** A frame's number as `umbrant render` writes it for the field "####". @param {number} frame */
export function frameText(frame) {
  const [whole, part] = String(Math.abs(Math.round(frame * 10000) / 10000)).split(".");
  const sign = frame < 0 ? "-" : "";
  return `${sign}${whole.padStart(4 - sign.length, "0")}${part ? `.${part}` : ""}`;
}

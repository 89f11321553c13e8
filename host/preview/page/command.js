// SPDX-License-Identifier: BSD-3-Clause
// The command line that renders what the page shows.

import { baseName } from "./leave/download.js";

/** @param {string} text one word for a shell */
export function shellWord(text) {
  return /^[A-Za-z0-9_@%+=:,./-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

/**
 * @param {object} shown
 * @param {string} shown.layer
 * @param {string} shown.texture
 * @param {Record<string, string>} shown.values
 * @param {string[]} shown.renderArguments
 * @param {{frames: string, rate: string} | null} shown.time   the frames of a timeline; null for a single image
 * @param {string} shown.preset                                a file that has the values and keys; empty for none
 */
export function renderCommand({ layer, texture, values, renderArguments, time, preset }) {
  // A name that begins with a hyphen would be taken for an option.
  const file = (/** @type {string} */ name) => (name.startsWith("-") ? `./${name}` : name);
  const output = `${baseName(layer)}-out${time ? ".####" : ""}.png`;
  const words = ["umbrant", "render", file(layer), "-o", file(output)];
  if (texture) words.push("--texture", texture);
  if (preset) words.push("--preset", file(preset));
  else for (const [key, text] of Object.entries(values)) words.push("--set", `${key}=${text}`);
  if (time) words.push(`--frames=${time.frames}`);
  if (time?.rate) words.push("--rate", time.rate);
  // A place needs a texture.
  const at = texture ? -1 : renderArguments.indexOf("--texture-at");
  const others = at < 0 ? renderArguments : [...renderArguments.slice(0, at), ...renderArguments.slice(at + 2)];
  return [...words, ...others].map(shellWord).join(" ");
}

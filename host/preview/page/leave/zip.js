// SPDX-License-Identifier: BSD-3-Clause
// A ZIP archive of files that are compressed already. Made of parts, so that no file is copied.

/** No archive without extensions of the format is larger, nor has more files. */
const MOST_BYTES = 0xffffffff;
const MOST_FILES = 0xffff;
/** The first day that the format has, so that the same files are the same archive. */
const DATE = 0x21;

const table = Uint32Array.from({ length: 256 }, (_, byte) => {
  let value = byte;
  for (let i = 0; i < 8; i++) value = value & 1 ? (value >>> 1) ^ 0xedb88320 : value >>> 1;
  return value;
});

/** @param {Uint8Array} bytes */
export function crc32(bytes) {
  let value = 0xffffffff;
  for (const byte of bytes) value = table[(value ^ byte) & 255] ^ (value >>> 8);
  return (value ^ 0xffffffff) >>> 0;
}

/** @param {[number, number][]} fields  sizes in bytes and values */
function record(fields) {
  const view = new DataView(new ArrayBuffer(fields.reduce((sum, [size]) => sum + size, 0)));
  let at = 0;
  for (const [size, value] of fields) {
    if (size === 2) view.setUint16(at, value, true);
    else view.setUint32(at, value, true);
    at += size;
  }
  return new Uint8Array(view.buffer);
}

export class Zip {
  constructor() {
    /** @type {BlobPart[]} */
    this.parts = [];
    /** @type {BlobPart[]} */
    this.directory = [];
    this.size = 0;
    this.directorySize = 0;
    this.count = 0;
  }

  /** Throws an Error with a sentence when the archive would be too large. @param {string} name @param {Blob} file */
  async add(name, file) {
    const letters = new TextEncoder().encode(name);
    const end = this.size + 30 + letters.length + file.size + this.directorySize + 46 + letters.length + 22;
    if (end > MOST_BYTES || this.count >= MOST_FILES) {
      throw new Error("The frames are more than an archive can have, 4 GiB or 65,535 files; copy the command and use `umbrant render`.");
    }
    const sum = crc32(new Uint8Array(await file.arrayBuffer()));
    /** @type {[number, number][]} */
    const facts = [[2, 20], [2, 0x800], [2, 0], [2, 0], [2, DATE], [4, sum], [4, file.size], [4, file.size], [2, letters.length], [2, 0]];
    const header = record([[4, 0x04034b50], ...facts]);
    const entry = record([[4, 0x02014b50], [2, 20], ...facts, [2, 0], [2, 0], [2, 0], [4, 0], [4, this.size]]);
    this.parts.push(header, letters, file);
    this.directory.push(entry, letters);
    this.size += header.length + letters.length + file.size;
    this.directorySize += entry.length + letters.length;
    this.count++;
  }

  /** @returns {Blob} */
  finish() {
    const end = record([[4, 0x06054b50], [2, 0], [2, 0], [2, this.count], [2, this.count], [4, this.directorySize], [4, this.size], [2, 0]]);
    return new Blob([...this.parts, ...this.directory, end], { type: "application/zip" });
  }
}

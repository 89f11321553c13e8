// SPDX-License-Identifier: BSD-3-Clause
// Keyframes: what sets, moves and removes them. Nothing here changes what it is given.

/** @typedef {import("../types.js").Key} Key */
/** @typedef {import("../types.js").Keyframes} Keyframes */
/** @typedef {import("../types.js").Side} Side */

/** Two times are the same when no frame is between them. */
const SAME = 1e-6;

/** @param {Keyframes} keyframes @param {string} row @param {number} frame @returns {Key | undefined} */
export function keyAt(keyframes, row, frame) {
  return keyframes[row]?.find((key) => Math.abs(key.frame - frame) < SAME);
}

/** @param {Keyframes} keyframes @param {string} row @param {Key[]} keys @returns {Keyframes} */
function withKeys(keyframes, row, keys) {
  const { [row]: _, ...others } = keyframes;
  return keys.length ? { ...others, [row]: [...keys].sort((one, other) => one.frame - other.frame) } : others;
}

/**
 * Sets the value at a frame; a key that is there keeps its interpolation, a new one that of its neighbour before it.
 * @param {Keyframes} keyframes @param {string} row @param {number} frame @param {string} value
 */
export function setKey(keyframes, row, frame, value) {
  const keys = keyframes[row] ?? [];
  const there = keyAt(keyframes, row, frame);
  if (there) return withKeys(keyframes, row, keys.map((key) => (key === there ? { ...key, value } : key)));
  const before = keys.filter((key) => key.frame < frame).pop() ?? keys[0];
  /** @type {Key} */
  const added = { frame, value };
  // A side with a speed belongs to its own curve.
  if (typeof before?.in === "string") added.in = before.in;
  if (typeof before?.out === "string") added.out = before.out;
  return withKeys(keyframes, row, [...keys, added]);
}

/** @param {Keyframes} keyframes @param {string} row @param {number} frame */
export function removeKey(keyframes, row, frame) {
  const there = keyAt(keyframes, row, frame);
  return withKeys(keyframes, row, (keyframes[row] ?? []).filter((key) => key !== there));
}

/**
 * Moves a key; where another key is, it stays.
 * @param {Keyframes} keyframes @param {string} row @param {number} from @param {number} to
 */
export function moveKey(keyframes, row, from, to) {
  const there = keyAt(keyframes, row, from);
  if (!there || keyAt(keyframes, row, to)) return keyframes;
  return withKeys(keyframes, row, keyframes[row].map((key) => (key === there ? { ...key, frame: to } : key)));
}

/**
 * Sets how a key is come to or left.
 * @param {Keyframes} keyframes @param {string} row @param {number} frame @param {"in" | "out"} which @param {Side} side
 */
export function setSide(keyframes, row, frame, which, side) {
  const there = keyAt(keyframes, row, frame);
  return withKeys(keyframes, row, (keyframes[row] ?? []).map((key) => (key === there ? { ...key, [which]: side } : key)));
}

/**
 * The frame of the next key in a direction; null where there is none.
 * @param {Keyframes} keyframes @param {number} frame @param {1 | -1} direction
 */
export function nextKey(keyframes, frame, direction) {
  const frames = Object.values(keyframes).flat().map((key) => key.frame).filter((each) => (each - frame) * direction > SAME);
  if (!frames.length) return null;
  return direction > 0 ? Math.min(...frames) : Math.max(...frames);
}

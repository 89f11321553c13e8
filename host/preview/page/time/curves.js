// SPDX-License-Identifier: BSD-3-Clause
// The curve of a row that moves: its values over the timeline, its keys, and where the timeline is.

/** @typedef {import("../types.js").Key} Key */

const NAMESPACE = "http://www.w3.org/2000/svg";
const WIDTH = 1000;
const HEIGHT = 100;

/** @param {string} tag @param {Record<string, string | number>} attributes */
function svg(tag, attributes) {
  const element = document.createElementNS(NAMESPACE, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, String(value));
  return element;
}

/** @param {number} value */
const short = (value) => String(Number(value.toPrecision(5)));

/**
 * Draws the curves of one row into an element.
 * @param {HTMLElement} place
 * @param {{name: string, frames: number[], numbers: number[][], keys: Key[]}} curve  numbers by frame, then by channel
 */
export function drawCurve(place, { name, frames, numbers, keys }) {
  const first = frames[0];
  const last = frames[frames.length - 1];
  const all = numbers.flat();
  const low = Math.min(...all);
  const high = Math.max(...all);
  const span = high - low || 1;
  const x = (/** @type {number} */ frame) => ((frame - first) / (last - first || 1)) * WIDTH;
  const y = (/** @type {number} */ value) => (high === low ? HEIGHT / 2 : HEIGHT - ((value - low) / span) * HEIGHT);
  const picture = svg("svg", { viewBox: `0 0 ${WIDTH} ${HEIGHT}`, preserveAspectRatio: "none", role: "img" });
  picture.setAttribute("aria-label", `${name}: from ${short(low)} to ${short(high)}, frames ${first} to ${last}`);
  for (const key of keys) {
    if (key.frame < first || key.frame > last) continue;
    picture.append(svg("line", { class: "at-key", x1: x(key.frame), x2: x(key.frame), y1: 0, y2: HEIGHT }));
  }
  for (let channel = 0; channel < numbers[0].length; channel++) {
    const points = numbers.map((each, i) => `${x(frames[i]).toFixed(2)},${y(each[channel]).toFixed(2)}`);
    picture.append(svg("polyline", { class: `curve curve-${channel % 4}`, points: points.join(" ") }));
  }
  const scale = document.createElement("div");
  scale.className = "scale";
  scale.ariaHidden = "true";
  for (const value of high === low ? [high] : [high, low]) {
    scale.append(Object.assign(document.createElement("span"), { textContent: short(value) }));
  }
  place.replaceChildren(scale, picture);
}

/** The curve of the row that is chosen. */
export class CurveView {
  /** @param {import("../connection.js").Connection} connection */
  constructor(connection) {
    this.connection = connection;
    this.wanted = "";
    this.shown = "";
    this.isAsking = false;
  }

  /**
   * One request at a time: the newest is asked for when the one before is answered.
   * @param {string} row      empty for none
   * @param {string} name
   * @param {import("../types.js").Request} request
   * @returns {Promise<void>}
   */
  async show(row, name, request) {
    const [track, title, place] = ["curve-track", "curve-name", "curve"].map((id) => /** @type {HTMLElement} */ (document.getElementById(id)));
    track.hidden = row === "";
    if (row === "") return;
    const wanted = JSON.stringify([row, name, request]);
    this.wanted = wanted;
    if (this.shown === wanted || this.isAsking) return;
    this.isAsking = true;
    const reply = await this.connection.ask("curves", request);
    this.isAsking = false;
    this.shown = wanted;
    if (!("error" in reply) && reply.rows[row]) {
      title.textContent = name;
      const keys = JSON.parse(request.keyframes || "{}")[row] ?? [];
      drawCurve(place, { name, frames: reply.frames, numbers: reply.rows[row], keys });
    }
    if (this.wanted === wanted) return;
    const [nextRow, nextName, nextRequest] = JSON.parse(this.wanted);
    return this.show(nextRow, nextName, nextRequest);
  }
}

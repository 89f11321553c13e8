// SPDX-License-Identifier: BSD-3-Clause
// The page as a whole: what is chosen, and who hears of a change.

import { Connection } from "./connection.js";
import { Handles } from "./handles.js";
import { Panel } from "./panel.js";
import { Stage } from "./stage.js";
import { listenToStage } from "./stage_input.js";
import { listenToFiles } from "./files.js";
import { listenToLeaving } from "./leave/leave.js";
import { Status } from "./status.js";
import { Steps } from "./steps.js";
import { Time } from "./time/time.js";

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);
/** How long a control rests before the full frame is drawn, milliseconds: longer where that would delay what follows. */
const LEAST_REST = 150;
const MOST_REST = 1000;
/** After how long a request without an answer is shown, and how long a module may be silent, milliseconds. */
const LONG = 700;
const TOO_LONG = 15000;
const STORED = `umbrant${location.pathname}`;

/**
 * What the page shows. It survives a reload.
 * @type {import("./types.js").State}
 */
const state = {
  values: {}, keyframes: {}, layer: null, texture: null, frames: "", rate: "24", hasTimeline: false, index: 0, open: {},
  backdrop: "checker", backdropColor: "#808080",
};
/** @type {import("./types.js").Description | null} */
let description = null;
let [restTimer, fullFrameTime, longTimer] = [0, 0, 0];
/** The keys of the last request, and of the last one whose values were taken. */
let sent = { serial: 0, keyframes: state.keyframes };
let taken = sent;

const stage = new Stage(() => {
  handles.place();
  status.showZoom();
});
const status = new Status(stage);
/** @type {Panel} */
const panel = new Panel(find("rows"), {
  change: (key, text, moving) => change({ [key]: text }, moving),
  reset: (key) => {
    delete state.values[key];
    const { [key]: _, ...others } = state.keyframes;
    state.keyframes = others;
    settle();
  },
  toggleKey: (key, text) => time.toggleKey(key, text),
  press,
  chooseTexture: () => files.choose("texture"),
  clearTexture: () => useTexture(null),
});
const handles = new Handles(find("handles"), stage, panel, (values, moving) => change(values, moving));

const connection = new Connection({
  connected: () => {
    status.client = connection.client;
    begin();
  },
  lost: () => status.fail("The connection to `umbrant preview` is lost; start it again, or load this page again."),
  panel: ({ serial, rows }) => {
    if (serial === sent.serial) taken = sent;
    const changed = panel.show(rows);
    find("reset-all").disabled = changed === 0 && !time.hasKeys;
    for (const key of Object.keys(state.values)) {
      const declared = panel.rows.get(key)?.declared;
      if (declared && !state.keyframes[key] && rows[key]?.text === declared.default) delete state.values[key];
    }
    handles.place();
  },
  frame: (info, pixels) => {
    answered();
    time.player.answered(info.serial, { info, pixels });
    if (time.player.isPlaying) return status.succeed();
    if (!info.draft) fullFrameTime = info.milliseconds;
    status.succeed();
    show(info, pixels);
    if (!info.draft && state.layer?.moving) showLayer();
  },
  failure: ({ serial, sentence, row, gone }) => {
    answered();
    time.player.answered(serial, null);
    if (row) refuse(row, sentence);
    status.fail(sentence, gone);
  },
  presetChanged: (name) => status.offer(name),
});

/** @param {import("./types.js").FrameInfo} info @param {Uint8ClampedArray} pixels */
function show(info, pixels) {
  stage.show(info, pixels);
  status.showFrame(info, state.layer);
  handles.place();
  // Tests read what arrived.
  Object.assign(window, { umbrantFrame: { info, pixels } });
}

const steps = new Steps(state, async (isOther) => {
  panel.showTexture(state.texture);
  if (isOther) showLayer();
  await time.refresh();
  draw(false);
});
/** @type {Time} */
const time = new Time({
  connection, state, panel, stage, request, draw, show, commit: () => steps.add(), fail: (sentence) => status.fail(sentence),
  drawToPlay: (more) => {
    sent = { serial: connection.draw({ moving: true, ...request(), ...more }), keyframes: state.keyframes };
    return sent.serial;
  },
});

/**
 * A value that is refused stays in its field for correction; what is drawn next has the one before.
 * @param {string} key @param {string} sentence
 */
function refuse(key, sentence) {
  const { text } = panel.current[key] ?? {};
  if (text === undefined || text === panel.rows.get(key)?.declared.default) delete state.values[key];
  else state.values[key] = text;
  if (state.keyframes[key]) {
    state.keyframes = taken.keyframes;
    time.showKeys();
  }
  steps.correct();
  panel.showProblem(key, sentence);
}

/** @param {Record<string, string>} values @param {boolean} moving */
function change(values, moving) {
  Object.assign(state.values, values);
  if (time.isUsed) for (const [key, text] of Object.entries(values)) time.change(key, text);
  if (moving) draw(true);
  else settle();
}

/** A change is done: it is a step of the history. */
function settle() {
  steps.add();
  if (time.isUsed) time.showKeys();
  draw(false);
}

/** @param {boolean} moving */
function draw(moving) {
  clearTimeout(restTimer);
  const rest = Math.min(Math.max(LEAST_REST, fullFrameTime), MOST_REST);
  restTimer = moving ? setTimeout(() => draw(false), rest) : 0;
  // While it plays, the player asks for frames, with the values as they are by then.
  if (!time.player.isPlaying) {
    sent = { serial: connection.draw({ moving, ...request() }), keyframes: state.keyframes };
    waitForAnswer();
  }
  if (!moving) sessionStorage.setItem(STORED, JSON.stringify(state));
}

/** Shows that a frame takes long, and offers to end a module that does not answer. */
function waitForAnswer() {
  if (!state.layer || longTimer) return;
  longTimer = setTimeout(() => {
    status.showDrawing();
    if (!description?.isolated) return;
    longTimer = setTimeout(() => status.fail("The module has not answered for some time.", true), TOO_LONG);
  }, LONG);
}

function answered() {
  clearTimeout(longTimer);
  longTimer = 0;
}

/** @returns {import("./types.js").Request} */
function request() {
  return { layer: state.layer?.id ?? 0, texture: state.texture?.id ?? 0, values: { ...state.values }, ...time.request() };
}

async function begin() {
  if (!description) {
    const reply = await connection.get("panel");
    if ("error" in reply) return status.fail(reply.error);
    description = /** @type {import("./types.js").Description} */ (reply);
    const stored = sessionStorage.getItem(STORED);
    const { values, keyframes, frames, rate, layer, texture } = description;
    Object.assign(state, stored ? JSON.parse(stored) : { values, keyframes, frames, rate, layer, texture, hasTimeline: frames !== "" });
    time.isFixed = description.rateIsFixed;
    find("effect").textContent = description.effect;
    document.title = `${description.effect}: preview`;
    panel.build(description.rows, state.open);
    handles.build(description.rows);
    panel.showTexture(state.texture);
    files.showBackdrop();
    steps.add();
  }
  await time.refresh();
  status.succeed();
  showLayer();
  draw(false);
}

async function showLayer() {
  find("empty").hidden = Boolean(state.layer);
  stage.element.classList.toggle("is-empty", !state.layer);
  for (const id of ["copy", "render", "contact-sheet"]) find(id).disabled = !state.layer;
  if (!state.layer) return stage.clear();
  const { id, width, height, moving } = state.layer;
  const { frames = "", rate = "", frame = 0 } = moving ? time.request() : {};
  const reply = await fetch(`original?${new URLSearchParams({ layer: String(id), frames, rate, frame: String(frame) })}`);
  if (!reply.ok || state.layer?.id !== id) return;
  const pixels = new Uint8ClampedArray(await reply.arrayBuffer());
  // An image of a sequence may have another size than its first.
  if (pixels.length === 4 * width * height) stage.showBefore(width, height, pixels);
}

/** @param {string} key of a button */
async function press(key) {
  const body = JSON.stringify({ client: connection.client, serial: 0, moving: false, ...request() });
  const reply = await connection.post(`press?row=${encodeURIComponent(key)}`, body);
  if ("error" in reply) return status.fail(reply.error);
  for (const row of Object.keys(state.keyframes)) delete reply.values[row];
  state.values = reply.values;
  settle();
}

/** @param {import("./types.js").Layer | null} texture */
async function useTexture(texture) {
  state.texture = texture;
  panel.showTexture(texture);
  await time.refresh();
  settle();
}

/** @param {{values: Record<string, string>, keyframes: import("./types.js").Keyframes, frames: string}} preset */
async function usePreset({ values, keyframes, frames }) {
  const { layer, texture } = state;
  Object.assign(state, { values, keyframes });
  // The frames of a sequence stay; a single image gets those of the keys.
  if (frames && !layer?.moving && !texture?.moving) Object.assign(state, { frames, hasTimeline: true });
  await time.refresh();
  settle();
}

const files = listenToFiles(connection, state, {
  layer: async (layer) => {
    state.layer = layer;
    stage.clear();
    showLayer();
    await time.refresh();
    settle();
  },
  texture: useTexture,
  preset: usePreset,
  failure: (sentence) => status.fail(sentence),
});

/** @param {boolean} isSplit */
function split(isSplit) {
  stage.split(isSplit);
  find("split").setAttribute("aria-pressed", String(isSplit));
}

listenToStage(stage, split);
find("split").addEventListener("click", () => split(!stage.isSplit));
find("rows").addEventListener("submit", (/** @type {Event} */ event) => event.preventDefault());
find("rows").addEventListener("twirl", () => sessionStorage.setItem(STORED, JSON.stringify(state)));
find("reset-all").addEventListener("click", () => {
  Object.assign(state, { values: {}, keyframes: {} });
  time.refresh();
  settle();
});
find("load-again").addEventListener("click", async () => {
  find("notice").hidden = true;
  const reply = await connection.post("reload");
  return "error" in reply ? status.fail(reply.error) : usePreset(reply);
});
listenToLeaving({
  connection, panel, request, state: () => state, effect: () => description?.effect ?? "",
  time: () => ({ numbers: time.timeline.numbers, isUsed: time.isUsed, hasKeys: time.hasKeys }), status,
  renderArguments: () => description?.renderArguments ?? [],
});
find("restart").addEventListener("click", async () => {
  status.succeed();
  const reply = await connection.post("restart");
  if ("error" in reply) return status.fail(reply.error, true);
  draw(false);
});
// Tests ask whether the last request is answered in full.
Object.assign(window, {
  umbrantState: () => ({
    shown: { ...state },
    player: time.player.facts,
    isSettled: connection.isIdle && !time.player.isPlaying && !restTimer && stage.shown?.info.serial === connection.serial && !stage.shown.info.draft,
  }),
});
connection.open();

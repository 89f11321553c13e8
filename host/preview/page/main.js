// SPDX-License-Identifier: BSD-3-Clause
// The page as a whole: what is chosen, and who hears of a change.

import { renderCommand } from "./command.js";
import { Connection } from "./connection.js";
import { Handles } from "./handles.js";
import { Panel } from "./panel.js";
import { Stage } from "./stage.js";
import { listenToStage } from "./stage_input.js";
import { listenToFiles } from "./files.js";
import { Status } from "./status.js";

/** @typedef {import("./types.js").Layer} Layer */

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
 * @type {{values: Record<string, string>, layer: Layer | null, texture: Layer | null, open: Record<string, boolean>,
 *         backdrop: string, backdropColor: string}}
 */
const state = { values: {}, layer: null, texture: null, open: {}, backdrop: "checker", backdropColor: "#808080" };
/** @type {import("./types.js").Description | null} */
let description = null;
let restTimer = 0;
let fullFrameTime = 0;
let longTimer = 0;

const stage = new Stage(() => {
  handles.place();
  status.showZoom();
});
const status = new Status(stage);
const panel = new Panel(find("rows"), {
  change: (key, text, moving) => change({ [key]: text }, moving),
  reset: (key) => {
    delete state.values[key];
    draw(false);
  },
  press,
  chooseTexture: () => files.choose("texture"),
  clearTexture: () => {
    state.texture = null;
    panel.showTexture(null);
    draw(false);
  },
});
const handles = new Handles(find("handles"), stage, panel, (values, moving) => change(values, moving));

const connection = new Connection({
  connected: () => {
    status.client = connection.client;
    begin();
  },
  lost: () => status.fail("The connection to `umbrant preview` is lost; start it again, or load this page again."),
  panel: ({ rows }) => {
    const changed = panel.show(rows);
    find("reset-all").disabled = changed === 0;
    for (const key of Object.keys(state.values)) {
      const declared = panel.rows.get(key)?.declared;
      if (declared && rows[key]?.text === declared.default) delete state.values[key];
    }
    handles.place();
  },
  frame: (info, pixels) => {
    answered();
    stage.show(info, pixels);
    if (!info.draft) fullFrameTime = info.milliseconds;
    status.succeed();
    status.showFrame(info, state.layer);
    handles.place();
    // Tests read what arrived.
    Object.assign(window, { umbrantFrame: { info, pixels } });
  },
  failure: ({ sentence, row, gone }) => {
    answered();
    if (row) refuse(row, sentence);
    status.fail(sentence, gone);
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
  panel.showProblem(key, sentence);
}

/** @param {Record<string, string>} values @param {boolean} moving */
function change(values, moving) {
  Object.assign(state.values, values);
  draw(moving);
}

/** @param {boolean} moving */
function draw(moving) {
  clearTimeout(restTimer);
  const rest = Math.min(Math.max(LEAST_REST, fullFrameTime), MOST_REST);
  restTimer = moving ? setTimeout(() => draw(false), rest) : 0;
  connection.draw({ moving, ...request() });
  waitForAnswer();
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

function request() {
  return { layer: state.layer?.id ?? 0, texture: state.texture?.id ?? 0, values: { ...state.values } };
}

async function begin() {
  if (!description) {
    const reply = await connection.get("panel");
    if ("error" in reply) return status.fail(reply.error);
    description = /** @type {import("./types.js").Description} */ (reply);
    const stored = sessionStorage.getItem(STORED);
    Object.assign(state, stored ? JSON.parse(stored) : { values: reply.values, layer: reply.layer, texture: reply.texture });
    find("effect").textContent = description.effect;
    document.title = `${description.effect}: preview`;
    panel.build(description.rows, state.open);
    handles.build(description.rows);
    panel.showTexture(state.texture);
    files.showBackdrop();
  }
  status.succeed();
  showLayer();
  draw(false);
}

async function showLayer() {
  find("empty").hidden = Boolean(state.layer);
  stage.element.classList.toggle("is-empty", !state.layer);
  find("copy").disabled = !state.layer;
  if (!state.layer) return stage.clear();
  const { id, width, height } = state.layer;
  const reply = await fetch(`original?layer=${id}`);
  if (reply.ok && state.layer?.id === id) {
    stage.showBefore(width, height, new Uint8ClampedArray(await reply.arrayBuffer()));
  }
}

/** @param {string} key of a button */
async function press(key) {
  const body = JSON.stringify({ client: connection.client, serial: 0, moving: false, ...request() });
  const reply = await connection.post(`press?row=${encodeURIComponent(key)}`, body);
  if ("error" in reply) return status.fail(reply.error);
  state.values = reply.values;
  draw(false);
}

const files = listenToFiles(connection, state, {
  layer: (layer) => {
    state.layer = layer;
    stage.clear();
    showLayer();
    draw(false);
  },
  texture: (texture) => {
    state.texture = texture;
    panel.showTexture(texture);
    draw(false);
  },
  failure: (sentence) => status.fail(sentence),
});

/** @param {boolean} isSplit */
function split(isSplit) {
  stage.split(isSplit);
  find("split").setAttribute("aria-pressed", String(isSplit));
}

listenToStage(stage, split);
find("split").addEventListener("click", () => split(!stage.isSplit));
find("zoom-in").addEventListener("click", () => stage.zoomTo(stage.view.zoom * 1.25));
find("zoom-out").addEventListener("click", () => stage.zoomTo(stage.view.zoom / 1.25));
find("zoom-fit").addEventListener("click", () => stage.fit());
find("zoom-full").addEventListener("click", () => stage.zoomTo(1));
find("help").addEventListener("click", () => find("keys").showModal());
find("dismiss").addEventListener("click", () => status.succeed());
find("rows").addEventListener("submit", (/** @type {Event} */ event) => event.preventDefault());
find("rows").addEventListener("twirl", () => sessionStorage.setItem(STORED, JSON.stringify(state)));
find("reset-all").addEventListener("click", () => {
  state.values = {};
  draw(false);
});
find("restart").addEventListener("click", async () => {
  status.succeed();
  const reply = await connection.post("restart");
  if ("error" in reply) return status.fail(reply.error, true);
  draw(false);
});
find("copy").addEventListener("click", async () => {
  if (!state.layer || !description) return;
  /** @type {Record<string, string>} */
  const values = {};
  for (const key of Object.keys(state.values)) values[key] = panel.current[key]?.text ?? state.values[key];
  const command = renderCommand({
    layer: state.layer.name, texture: state.texture?.name ?? "", values, renderArguments: description.renderArguments,
  });
  Object.assign(window, { umbrantCommand: command });
  await navigator.clipboard.writeText(command).then(
    () => status.say("The command was copied."),
    () => status.fail(`The browser does not allow copying; the command: ${command}`));
});
// Tests ask whether the last request is answered in full.
Object.assign(window, {
  umbrantState: () => ({
    isSettled: connection.isIdle && !restTimer && stage.shown?.info.serial === connection.serial && !stage.shown.info.draft,
  }),
});
connection.open();

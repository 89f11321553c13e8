// SPDX-License-Identifier: BSD-3-Clause
// What a person leaves with: the preset, rendered files, a contact sheet.

import { renderCommand } from "../command.js";
import { baseName, download, frameText } from "./download.js";
import { drawSheet, proposedValues, valuesOf } from "./sheet.js";
import { Task } from "./task.js";
import { Zip } from "./zip.js";

/** @typedef {import("../types.js").Request} Request */

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

/**
 * @typedef {object} Page
 * @property {import("../connection.js").Connection} connection
 * @property {import("../panel.js").Panel} panel
 * @property {() => import("../types.js").State} state
 * @property {() => Request} request
 * @property {() => {numbers: number[], isUsed: boolean, hasKeys: boolean}} time
 * @property {() => string} effect
 * @property {() => string[]} renderArguments
 * @property {import("../status.js").Status} status
 */

/** @param {Page} page */
export function listenToLeaving(page) {
  const { connection } = page;
  const layerName = () => baseName(page.state().layer?.name ?? "umbrant");

  find("save-preset").addEventListener("click", async () => {
    try {
      const preset = await connection.file("preset", page.request());
      download(preset, `${layerName()}.json`);
    } catch (error) {
      page.status.fail(/** @type {Error} */ (error).message);
    }
  });

  /** @param {AbortSignal} signal @param {(done: number, all: number) => void} progress */
  const render = async (signal, progress) => {
    const format = find("render-format").value;
    const { numbers, isUsed } = page.time();
    const request = page.request();
    const name = `${layerName()}-out`;
    if (!isUsed || find("render-which").value === "one") {
      const one = await connection.file("render", { ...request, format }, signal);
      const number = isUsed ? `.${frameText(numbers[request.frame ?? 0])}` : "";
      download(one, `${name}${number}.${format}`);
      return `${name}${number}.${format} was rendered.`;
    }
    const all = await connection.ask("canvas", request);
    if ("error" in all) throw new Error(all.error);
    const zip = new Zip();
    for (let frame = 0; frame < numbers.length; frame++) {
      progress(frame, numbers.length);
      const file = await connection.file("render", { ...request, frame, canvas: all.canvas, format }, signal);
      await zip.add(`${name}.${frameText(numbers[frame])}.${format}`, file);
    }
    progress(numbers.length, numbers.length);
    download(zip.finish(), `${name}.zip`);
    return `${numbers.length} frames were rendered into ${name}.zip.`;
  };
  const rendering = new Task(find("render-dialog"), render);
  find("render").addEventListener("click", () => {
    find("render-which-field").hidden = !page.time().isUsed;
    find("render-which").options[0].textContent = `All ${page.time().numbers.length} frames, as a ZIP file`;
    rendering.open();
  });
  listenToSheet(page, layerName);
  find("copy").addEventListener("click", () => copyCommand(page));
}

/** @param {Page} page */
async function copyCommand(page) {
  const { panel, status } = page;
  const state = page.state();
  if (!state.layer) return;
  const { isUsed, hasKeys } = page.time();
  /** @type {Record<string, string>} */
  const values = {};
  for (const key of Object.keys(state.values)) values[key] = panel.current[key]?.text ?? state.values[key];
  const preset = hasKeys ? `${baseName(state.layer.name)}.json` : "";
  const command = renderCommand({
    layer: state.layer.name, texture: state.texture?.name ?? "", values, renderArguments: page.renderArguments(), preset,
    time: isUsed ? { frames: state.frames, rate: find("rate").disabled ? "" : state.rate } : null,
  });
  // Tests read it.
  Object.assign(window, { umbrantCommand: command });
  await navigator.clipboard.writeText(command).then(
    () => status.say(preset ? `The command was copied; it reads ${preset}, which Save preset downloads.` : "The command was copied."),
    () => status.fail(`The browser does not allow copying; the command: ${command}`));
}

/** @param {Page} page @param {() => string} layerName */
function listenToSheet(page, layerName) {
  /** @param {"across" | "down"} which */
  const axis = (which) => {
    const key = find(`sheet-${which}`).value;
    const name = page.panel.current[key]?.name || key;
    return { key, name, values: valuesOf(find(`sheet-${which}-values`).value, name) };
  };
  /** @param {Record<string, string>} values */
  const requestWith = (values) => {
    const request = page.request();
    const keyframes = JSON.parse(request.keyframes || "{}");
    // What has keys would follow them, and not the sheet.
    for (const key of Object.keys(values)) delete keyframes[key];
    return { ...request, values: { ...request.values, ...values }, keyframes: Object.keys(keyframes).length ? JSON.stringify(keyframes) : "" };
  };
  const sheet = new Task(find("sheet-dialog"), async (signal, progress) => {
    const state = page.state();
    const across = axis("across");
    const down = find("sheet-down").value ? axis("down") : null;
    if (down && down.key === across.key) throw new Error("Choose two different parameters.");
    const file = await drawSheet({
      connection: page.connection, requestWith, across, down, width: state.layer?.width ?? 1,
      title: `${page.effect()}: ${layerName()}`, ground: state.backdrop === "color" ? state.backdropColor : "",
    }, signal, progress);
    download(file, `${layerName()}-sheet.png`);
    return `${layerName()}-sheet.png was drawn.`;
  });
  for (const which of /** @type {("across" | "down")[]} */ (["across", "down"])) {
    find(`sheet-${which}`).addEventListener("change", () => propose(which));
  }
  const propose = (/** @type {"across" | "down"} */ which) => {
    const row = page.panel.rows.get(find(`sheet-${which}`).value);
    const field = find(`sheet-${which}-values`);
    field.disabled = !row;
    field.value = row ? proposedValues(row.declared, page.panel.current[row.declared.key]?.text ?? "") : "";
  };
  find("contact-sheet").addEventListener("click", () => {
    fillChoices(page);
    for (const which of /** @type {("across" | "down")[]} */ (["across", "down"])) {
      if (!find(`sheet-${which}-values`).value) propose(which);
    }
    sheet.open();
  });
}

/** Offers the parameters that are shown. @param {Page} page */
function fillChoices(page) {
  const rows = [...page.panel.rows.values()].filter(({ declared, control }) => {
    const now = page.panel.current[declared.key];
    return control && declared.items?.length !== 1 && now && !now.hidden && !now.disabled;
  });
  for (const [which, preferred] of [["across", 0], ["down", 1]]) {
    const select = find(`sheet-${which}`);
    const before = select.value;
    const choices = rows.map(({ declared }) => new Option(page.panel.current[declared.key].name || declared.key, declared.key));
    if (which === "down") choices.unshift(new Option("None", ""));
    select.replaceChildren(...choices);
    const sliders = rows.filter(({ declared }) => declared.kind === "slider");
    const wanted = sliders[Number(preferred)]?.declared.key;
    select.value = before && choices.some((choice) => choice.value === before) ? before : wanted ?? choices[0]?.value ?? "";
  }
}

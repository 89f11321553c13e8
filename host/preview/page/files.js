// SPDX-License-Identifier: BSD-3-Clause
// Images from the person's side: chosen, dropped, pasted, or one of the examples; and the backdrop.

/** @typedef {import("./types.js").Layer} Layer */
/** @typedef {"layer" | "texture" | "backdrop" | "preset"} Purpose */

/** What the server takes. */
const MOST_BYTES = 256 * 1024 * 1024;
const MOST_PRESET_BYTES = 1024 * 1024;

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

/**
 * Offers the presets that have a name.
 * @param {import("./connection.js").Connection} connection
 * @param {{preset: (reply: any) => void, failure: (sentence: string) => void}} handlers
 */
async function listPresets(connection, handlers) {
  const list = find("presets");
  list.addEventListener("change", async () => {
    const name = list.value;
    // The same one can be chosen again.
    list.value = "";
    const reply = await connection.post(`named?name=${encodeURIComponent(name)}`);
    if ("error" in reply) handlers.failure(reply.error);
    else handlers.preset(reply);
  });
  const reply = await connection.get("presets");
  if ("error" in reply) return handlers.failure(reply.error);
  for (const [label, isYours] of [["Installed", false], ["Yours", true]]) {
    const group = document.createElement("optgroup");
    group.label = String(label);
    for (const preset of reply.presets) if (preset.isYours === isYours) group.append(new Option(preset.name));
    if (group.children.length) list.append(group);
  }
  list.disabled = reply.presets.length === 0;
}

/**
 * @param {import("./connection.js").Connection} connection
 * @param {{backdrop: string, backdropColor: string}} state
 * @param {{layer: (layer: Layer) => void, texture: (layer: Layer) => void,
 *     preset: (reply: any) => void, failure: (sentence: string) => void}} handlers
 */
export function listenToFiles(connection, state, handlers) {
  const input = find("file");
  const ground = find("ground");
  /** @type {Purpose} */
  let purpose = "layer";
  let picture = "";

  const showBackdrop = () => {
    const isPicture = state.backdrop === "picture" && picture !== "";
    find("backdrop").value = state.backdrop === "picture" && !isPicture ? "checker" : state.backdrop;
    find("backdrop-color").hidden = state.backdrop !== "color";
    find("backdrop-color").value = state.backdropColor;
    ground.style.setProperty("--ground", state.backdropColor);
    ground.classList.toggle("plain", state.backdrop === "color");
    ground.classList.toggle("picture", isPicture);
    ground.style.backgroundImage = isPicture ? `url("${picture}")` : "";
  };

  /** @param {File} file @param {Purpose} use */
  const take = async (file, use) => {
    if (use === "backdrop") {
      URL.revokeObjectURL(picture);
      picture = URL.createObjectURL(file);
      state.backdrop = "picture";
      return showBackdrop();
    }
    if (use === "preset" || /\.json$/i.test(file.name)) {
      if (file.size > MOST_PRESET_BYTES) return handlers.failure(`${file.name} is larger than 1 MiB, and no preset.`);
      const preset = await connection.post(`load?name=${encodeURIComponent(file.name)}`, file);
      return "error" in preset ? handlers.failure(preset.error) : handlers.preset(preset);
    }
    if (file.size > MOST_BYTES) {
      return handlers.failure(`${file.name} is larger than 256 MiB; \`umbrant render\` draws it.`);
    }
    const reply = await connection.post(`layer?name=${encodeURIComponent(file.name || "image")}`, file);
    if ("error" in reply) return handlers.failure(reply.error);
    handlers[use](reply);
  };

  /** @param {Purpose} use */
  const choose = (use) => {
    purpose = use;
    input.value = "";
    input.accept = use === "preset" ? ".json,application/json" : "";
    input.click();
  };
  input.addEventListener("change", () => input.files[0] && take(input.files[0], purpose));
  listPresets(connection, handlers);
  find("choose-layer").addEventListener("click", () => choose("layer"));
  find("load-preset").addEventListener("click", () => choose("preset"));
  find("choose-empty").addEventListener("click", () => choose("layer"));
  for (const button of document.querySelectorAll("[data-example]")) {
    button.addEventListener("click", async () => {
      const reply = await connection.post(`example?name=${/** @type {HTMLElement} */ (button).dataset.example}`);
      if ("error" in reply) handlers.failure(reply.error);
      else handlers.layer(reply);
    });
  }

  find("backdrop").addEventListener("change", () => {
    const wanted = find("backdrop").value;
    if (wanted === "picture" && !picture) {
      choose("backdrop");
      return showBackdrop();
    }
    state.backdrop = wanted;
    showBackdrop();
  });
  find("backdrop-color").addEventListener("input", () => {
    state.backdropColor = find("backdrop-color").value;
    showBackdrop();
  });

  listenToDrops((file, use) => take(file, use));
  document.addEventListener("paste", (event) => {
    const file = [...(event.clipboardData?.files ?? [])][0];
    if (file) {
      event.preventDefault();
      take(file, "layer");
    }
  });
  return { choose, showBackdrop };
}

/** @param {(file: File, use: Purpose) => void} take */
function listenToDrops(take) {
  const hint = find("drop-hint");
  const isTexture = (/** @type {Event} */ event) => event.target instanceof Element && Boolean(event.target.closest(".row.texture"));
  document.addEventListener("dragover", (event) => {
    if (!event.dataTransfer?.types.includes("Files")) return;
    event.preventDefault();
    hint.hidden = isTexture(event);
  });
  document.addEventListener("dragleave", (event) => {
    if (!event.relatedTarget) hint.hidden = true;
  });
  document.addEventListener("drop", (event) => {
    hint.hidden = true;
    const file = event.dataTransfer?.files[0];
    if (!file) return;
    event.preventDefault();
    take(file, isTexture(event) ? "texture" : "layer");
  });
}

// SPDX-License-Identifier: BSD-3-Clause
// What a person does on the stage: wheel, pinch, drag, keys, and the line of the comparison.

/** @param {string} id @returns {any} */
const find = (id) => document.getElementById(id);

/** @param {import("./stage.js").Stage} stage @param {(isSplit: boolean) => void} split */
export function listenToStage(stage, split) {
  find("zoom-in").addEventListener("click", () => stage.zoomTo(stage.view.zoom * 1.25));
  find("zoom-out").addEventListener("click", () => stage.zoomTo(stage.view.zoom / 1.25));
  find("zoom-fit").addEventListener("click", () => stage.fit());
  find("zoom-full").addEventListener("click", () => stage.zoomTo(1));
  const { element, divider } = stage;
  /** @type {Map<number, {x: number, y: number}>} */
  const pointers = new Map();
  const placeOf = (/** @type {MouseEvent} */ event) => {
    const box = element.getBoundingClientRect();
    return { x: event.clientX - box.x, y: event.clientY - box.y };
  };
  const isOnStage = (/** @type {Event} */ event) =>
    event.target === element || stage.sheet.contains(/** @type {Node} */ (event.target));

  element.addEventListener("wheel", (/** @type {WheelEvent} */ event) => {
    if (!stage.shown) return;
    event.preventDefault();
    const { x, y } = placeOf(event);
    const lines = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? event.deltaY * 16 : event.deltaY;
    stage.zoomTo(stage.view.zoom * Math.exp(-lines * (event.ctrlKey ? 0.01 : 0.002)), x, y);
  }, { passive: false });

  element.addEventListener("pointerdown", (/** @type {PointerEvent} */ event) => {
    if (!stage.shown || event.button > 1 || !isOnStage(event)) return;
    pointers.set(event.pointerId, placeOf(event));
    element.setPointerCapture(event.pointerId);
    element.classList.add("panning");
  });
  element.addEventListener("pointermove", (/** @type {PointerEvent} */ event) => {
    const before = pointers.get(event.pointerId);
    if (!before) return;
    const now = placeOf(event);
    const other = [...pointers].find(([id]) => id !== event.pointerId)?.[1];
    if (other) {
      const distance = (/** @type {{x: number, y: number}} */ place) => Math.hypot(place.x - other.x, place.y - other.y);
      const ratio = distance(now) / Math.max(distance(before), 1);
      stage.zoomTo(stage.view.zoom * ratio, (now.x + other.x) / 2, (now.y + other.y) / 2);
      stage.view.move((now.x - before.x) / 2, (now.y - before.y) / 2);
    } else {
      stage.view.move(now.x - before.x, now.y - before.y);
    }
    pointers.set(event.pointerId, now);
    stage.place();
  });
  element.addEventListener("lostpointercapture", (/** @type {PointerEvent} */ event) => {
    pointers.delete(event.pointerId);
    if (!pointers.size) element.classList.remove("panning");
  });

  divider.addEventListener("pointerdown", (/** @type {PointerEvent} */ event) => divider.setPointerCapture(event.pointerId));
  divider.addEventListener("pointermove", (/** @type {PointerEvent} */ event) => {
    if (divider.hasPointerCapture(event.pointerId)) stage.splitTo(placeOf(event).x / element.clientWidth);
  });
  divider.addEventListener("keydown", (/** @type {KeyboardEvent} */ event) => {
    const step = { ArrowLeft: -0.01, ArrowRight: 0.01 }[event.key];
    if (!step) return;
    event.preventDefault();
    event.stopPropagation();
    stage.splitTo(stage.splitAt + step * (event.shiftKey ? 10 : 1));
  });
  listenToKeys(stage, split);
}

/** @param {import("./stage.js").Stage} stage @param {(isSplit: boolean) => void} split */
function listenToKeys(stage, split) {
  const isForText = (/** @type {Event} */ event) =>
    event.target instanceof HTMLElement && event.target.matches("input, select, textarea");
  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || isForText(event) || !stage.shown) return;
    const far = event.shiftKey ? 200 : 20;
    /** @type {Record<string, () => void>} */
    const keys = {
      "+": () => stage.zoomTo(stage.view.zoom * 1.25),
      "=": () => stage.zoomTo(stage.view.zoom * 1.25),
      "-": () => stage.zoomTo(stage.view.zoom / 1.25),
      "0": () => stage.fit(),
      "1": () => stage.zoomTo(1),
      b: () => stage.showsBefore(true),
      s: () => split(!stage.isSplit),
    };
    if (event.target === stage.element) {
      const moves = { ArrowLeft: [far, 0], ArrowRight: [-far, 0], ArrowUp: [0, far], ArrowDown: [0, -far] };
      for (const [key, [x, y]] of Object.entries(moves)) {
        keys[key] = () => {
          stage.view.move(x, y);
          stage.place();
        };
      }
    }
    const action = keys[event.key.length === 1 ? event.key.toLowerCase() : event.key];
    if (!action || (event.repeat && "bs".includes(event.key.toLowerCase()))) return;
    event.preventDefault();
    action();
  });
  document.addEventListener("keyup", (event) => {
    if (event.key.toLowerCase() === "b") stage.showsBefore(false);
  });
  addEventListener("blur", () => stage.showsBefore(false));
}

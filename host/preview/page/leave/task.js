// SPDX-License-Identifier: BSD-3-Clause
// A dialog that does something for a while: its progress, its end, its error, and how it is cancelled.

export class Task {
  /**
   * @param {HTMLDialogElement} dialog  with a form, .progress, .task-text, .problem, .start and .cancel
   * @param {(signal: AbortSignal, progress: (done: number, all: number) => void) => Promise<string>} run  resolves with a
   *     sentence; throws an Error with one
   */
  constructor(dialog, run) {
    this.dialog = dialog;
    this.run = run;
    /** @type {AbortController | null} */
    this.running = null;
    /** @param {string} name @returns {any} */
    const part = (name) => dialog.querySelector(name);
    this.bar = part(".progress");
    this.text = part(".task-text");
    this.problem = part(".problem");
    this.start = part(".start");
    this.cancel = part(".cancel");
    part("form").addEventListener("submit", (/** @type {Event} */ event) => {
      event.preventDefault();
      this.begin();
    });
    this.cancel.addEventListener("click", () => (this.running ? this.running.abort() : dialog.close()));
    dialog.addEventListener("close", () => this.running?.abort());
  }

  open() {
    this.show("", "");
    this.dialog.showModal();
  }

  /** @param {string} text @param {string} problem */
  show(text, problem) {
    const isRunning = Boolean(this.running);
    this.bar.hidden = !isRunning;
    this.text.textContent = text;
    this.problem.textContent = problem;
    this.start.disabled = isRunning;
    this.cancel.textContent = isRunning ? "Cancel" : "Close";
  }

  async begin() {
    if (this.running) return;
    const running = new AbortController();
    this.running = running;
    this.bar.removeAttribute("value");
    this.show("", "");
    let text = "";
    let problem = "";
    try {
      text = await this.run(running.signal, (done, all) => {
        this.bar.max = all;
        this.bar.value = done;
        this.text.textContent = `${done} of ${all}`;
      });
    } catch (error) {
      const { message, name } = /** @type {Error} */ (error);
      if (running.signal.aborted) text = "Cancelled; nothing was saved.";
      else if (name === "TypeError") problem = "The preview cannot be reached; start `umbrant preview` again.";
      else problem = message.charAt(0).toUpperCase() + message.slice(1);
    }
    this.running = null;
    this.show(text, problem);
  }
}

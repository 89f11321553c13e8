// SPDX-License-Identifier: BSD-3-Clause
// What the page sends to the server and gets from it. At most one request for a frame is on its way; of those that are
// made meanwhile only the newest is sent.

/** @typedef {import("./types.js").FrameInfo} FrameInfo */

/**
 * @typedef {object} Handlers
 * @property {() => void} connected                                    also after an interruption
 * @property {() => void} lost
 * @property {(message: {serial: number, rows: Record<string, import("./types.js").Current>}) => void} panel
 * @property {(info: FrameInfo, pixels: Uint8ClampedArray) => void} frame
 * @property {(failure: {serial: number, sentence: string, row?: string, gone?: boolean}) => void} failure
 * @property {(name: string) => void} presetChanged                    the preset's file, on disk
 */

export class Connection {
  /** @param {Handlers} handlers */
  constructor(handlers) {
    this.handlers = handlers;
    this.client = 0;
    this.serial = 0;
    this.newestFrame = 0;
    /** @type {{serial: number} | null} */
    this.waiting = null;
    this.isSending = false;
  }

  get isIdle() {
    return !this.isSending && !this.waiting && this.client !== 0;
  }

  open() {
    const events = new EventSource("events");
    const on = (/** @type {string} */ kind, /** @type {(data: any) => void} */ handler) =>
      events.addEventListener(kind, (event) => handler(JSON.parse(/** @type {MessageEvent} */ (event).data)));
    on("hello", (data) => {
      this.client = data.client;
      this.handlers.connected();
    });
    on("panel", (data) => this.handlers.panel(data));
    on("frame", (data) => this.fetchFrame(data));
    on("failure", (data) => this.handlers.failure(data));
    on("preset", (data) => this.handlers.presetChanged(data.name));
    events.onerror = async () => {
      this.client = 0;
      this.handlers.lost();
      // A stream that is refused is not tried again; why it is, only a request of one's own reports.
      if (events.readyState !== EventSource.CLOSED) return;
      const reply = await fetch("events").catch(() => null);
      if (reply?.ok) {
        reply.body?.cancel();
        this.open();
      } else if (reply) {
        this.handlers.failure({ serial: this.serial, sentence: (await reply.json()).error });
      }
    };
  }

  /**
   * Asks for a frame. Returns the request's number.
   * @param {import("./types.js").Request & {moving: boolean}} request
   */
  draw(request) {
    this.waiting = { ...request, serial: ++this.serial };
    if (!this.isSending) this.sendWaiting();
    return this.serial;
  }

  async sendWaiting() {
    this.isSending = true;
    while (this.waiting && this.client) {
      const request = { ...this.waiting, client: this.client };
      this.waiting = null;
      const reply = await this.post("draw", JSON.stringify(request));
      if ("error" in reply) this.handlers.failure({ serial: request.serial, sentence: reply.error });
    }
    this.isSending = false;
  }

  /** @param {FrameInfo} info */
  async fetchFrame(info) {
    this.newestFrame = info.frame;
    try {
      const reply = await fetch(`frame?client=${this.client}&frame=${info.frame}`);
      if (!reply.ok) return;
      const pixels = new Uint8ClampedArray(await reply.arrayBuffer());
      if (info.frame === this.newestFrame) this.handlers.frame(info, pixels);
    } catch {
      // The event stream reports a connection that is lost.
    }
  }

  /**
   * The server's reply, or `{error: sentence}`.
   * @param {string} path
   * @param {BodyInit} [body]
   * @returns {Promise<any>}
   */
  async post(path, body = "") {
    try {
      const reply = await fetch(path, { method: "POST", body });
      return await reply.json();
    } catch {
      return { error: "The preview cannot be reached; start `umbrant preview` again." };
    }
  }

  /**
   * Asks about a request, as for a frame.
   * @param {string} path
   * @param {import("./types.js").Request & {format?: string}} request
   * @returns {Promise<any>}
   */
  ask(path, request) {
    return this.post(path, JSON.stringify({ client: this.client, serial: 0, moving: false, ...request }));
  }

  /**
   * The bytes that the server answers with. Throws an Error whose message is a sentence.
   * @param {string} path
   * @param {import("./types.js").Request & {format?: string}} request
   * @param {AbortSignal} [signal]
   */
  async file(path, request, signal) {
    const body = JSON.stringify({ client: this.client, serial: 0, moving: false, ...request });
    const reply = await fetch(path, { method: "POST", body, signal });
    if (!reply.ok) throw new Error((await reply.json()).error);
    return reply.blob();
  }

  /**
   * @param {string} path
   * @returns {Promise<any>}
   */
  async get(path) {
    try {
      return await (await fetch(path)).json();
    } catch {
      return { error: "The preview cannot be reached; start `umbrant preview` again." };
    }
  }
}

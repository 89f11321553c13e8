// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The parts of the preview's page that need no browser: keys, the cache of frames, playing, undo.

import assert from "node:assert/strict";
import { test } from "node:test";

import { renderCommand } from "../../../../host/preview/page/command.js";
import { History } from "../../../../host/preview/page/history.js";
import { FrameCache } from "../../../../host/preview/page/time/frame_cache.js";
import { keyAt, moveKey, nextKey, removeKey, setKey, setSide } from "../../../../host/preview/page/time/keys.js";
import { Player } from "../../../../host/preview/page/time/player.js";

const framesOf = (keyframes, row) => keyframes[row].map((key) => key.frame);

test("keys are set in the order of their frames, and nothing is changed in place", () => {
  const none = {};
  let keys = setKey(none, "a", 5, "50");
  keys = setSide(keys, "a", 5, "out", "ease");
  const before = keys;
  keys = setKey(keys, "a", 1, "10");
  keys = setKey(keys, "a", 9, "90");
  assert.deepEqual(framesOf(keys, "a"), [1, 5, 9]);
  assert.deepEqual(framesOf(before, "a"), [5]);
  assert.deepEqual(none, {});
  assert.equal(keyAt(keys, "a", 9).out, "ease", "a new key leaves as the one before it does");
  keys = setKey(keys, "a", 5, "55");
  assert.deepEqual(keyAt(keys, "a", 5), { frame: 5, value: "55", out: "ease" });
});

test("a side with a speed stays with its key", () => {
  const keys = setKey({ a: [{ frame: 1, value: "1", out: { speed: 3, influence: 20 } }] }, "a", 4, "2");
  assert.deepEqual(keyAt(keys, "a", 4), { frame: 4, value: "2" });
});

test("a key moves past others, but never onto one", () => {
  const keys = { a: [{ frame: 1, value: "1" }, { frame: 5, value: "5" }] };
  assert.equal(moveKey(keys, "a", 1, 5), keys);
  assert.deepEqual(moveKey(keys, "a", 1, 7).a.map((key) => key.value), ["5", "1"]);
  assert.equal(moveKey(keys, "a", 3, 4), keys, "there is no such key");
});

test("a row without keys is none that moves", () => {
  assert.deepEqual(removeKey({ a: [{ frame: 1, value: "1" }], b: [{ frame: 2, value: "2" }] }, "a", 1), { b: [{ frame: 2, value: "2" }] });
});

test("the next key is that of any row", () => {
  const keys = { a: [{ frame: 1, value: "1" }, { frame: 9, value: "1" }], b: [{ frame: 4.5, value: "1" }] };
  assert.equal(nextKey(keys, 1, 1), 4.5);
  assert.equal(nextKey(keys, 4.5, -1), 1);
  assert.equal(nextKey(keys, 9, 1), null);
});

const drawn = (bytes) => ({ info: {}, pixels: new Uint8ClampedArray(bytes) });

test("the cache keeps to its limit, and drops what is needed last", () => {
  const cache = new FrameCache(40);
  for (const index of [0, 1, 2, 3]) cache.put(index, drawn(10), 0, 8);
  cache.put(4, drawn(10), 0, 8);
  assert.deepEqual([...cache.frames.keys()], [0, 1, 2, 3], "frame 4 itself is needed last");
  cache.put(4, drawn(10), 3, 8);
  assert.deepEqual([...cache.frames.keys()].sort(), [0, 1, 3, 4], "at frame 3, frame 2 has just passed");
  assert.equal(cache.bytes, 40);
  cache.put(4, drawn(20), 3, 8);
  assert.ok(cache.bytes <= 40);
  cache.put(5, drawn(50), 5, 8);
  assert.equal(cache.get(5), undefined, "larger than the cache");
});

/** A player without a browser: one frame is drawn in `duration` milliseconds. */
function play(player, { duration, until, count, framesPerSecond }) {
  globalThis.requestAnimationFrame = () => 0;
  player.start(0, count, framesPerSecond);
  const { begin } = player;
  let ready = Infinity;
  for (let now = 0; now < until; now += 5) {
    if (now >= ready) player.answered(player.pending, drawn(10));
    const before = player.pending;
    player.tick(begin + now);
    if (player.pending !== before) ready = player.pending ? now + duration : Infinity;
  }
}

const stagehand = (asked = []) => ({
  ask: (index) => asked.push(index), show: () => {}, look: () => "", downsample: () => 1, changed: () => {},
});

test("frames that are drawn in time are all shown", () => {
  const player = new Player(stagehand());
  play(player, { duration: 5, until: 3000, count: 10, framesPerSecond: 20 });
  assert.equal(player.dropped, 0);
  assert.ok(player.shown >= 58, String(player.shown));
});

test("slow frames are dropped, counted, and there in a later round", () => {
  const asked = [];
  const player = new Player(stagehand(asked));
  play(player, { duration: 120, until: 1000, count: 10, framesPerSecond: 20 });
  const dropped = player.dropped;
  assert.ok(dropped > 5, String(dropped));
  assert.ok(player.shown > 3, "late frames are shown all the same");
  play(player, { duration: 120, until: 4000, count: 10, framesPerSecond: 20 });
  assert.equal(player.cache.frames.size, 10);
  assert.equal(new Set(asked).size, 10);
  const before = player.dropped;
  for (let now = 4000; now < 6000; now += 5) player.tick(player.begin + now);
  assert.equal(player.dropped, before, "all are kept by now");
});

test("a frame that is refused is not asked for again", () => {
  const asked = [];
  const player = new Player(stagehand(asked));
  globalThis.requestAnimationFrame = () => 0;
  player.start(0, 2, 10);
  for (let now = 0; now < 1000; now += 10) {
    player.tick(player.begin + now);
    if (player.pending) player.answered(player.pending, null);
  }
  assert.deepEqual(asked, [0, 1]);
});

test("another look empties the cache; an answer to an older request is not kept", () => {
  let look = "one";
  const hand = { ...stagehand(), look: () => look };
  let serial = 0;
  hand.ask = () => ++serial;
  const player = new Player(hand);
  globalThis.requestAnimationFrame = () => 0;
  player.start(0, 4, 10);
  player.tick(player.begin);
  look = "two";
  player.tick(player.begin + 1);
  player.answered(1, drawn(10));
  assert.equal(player.cache.frames.size, 0);
  player.answered(2, drawn(10));
  assert.equal(player.cache.frames.size, 1);
});

test("undo and redo, and a correction of the newest step", () => {
  const history = new History();
  const step = (value) => ({ values: { a: value } });
  for (const value of ["1", "2", "2", "3"]) history.add(step(value));
  assert.equal(history.steps.length, 3, "the same again is no step");
  assert.deepEqual(history.undo(), step("2"));
  assert.deepEqual(history.undo(), step("1"));
  assert.equal(history.undo(), null);
  assert.deepEqual(history.redo(), step("2"));
  history.add(step("4"));
  assert.equal(history.redo(), null, "what was undone is forgotten");
  history.replace(step("2"));
  assert.equal(history.steps.length, 2, "a step that was refused whole is none");
});

test("the command has the frames, and a preset for keys", () => {
  const shown = { layer: "in.####.png", texture: "", values: { "style/angle": "45" }, renderArguments: ["--depth", "32"] };
  assert.equal(renderCommand({ ...shown, preset: "", time: { frames: "1-9", rate: "25" } }),
    "umbrant render 'in.####.png' -o 'in-out.####.png' --set style/angle=45 --frames=1-9 --rate 25 --depth 32");
  assert.equal(renderCommand({ ...shown, preset: "in.json", time: { frames: "-3-9", rate: "" } }),
    "umbrant render 'in.####.png' -o 'in-out.####.png' --preset in.json --frames=-3-9 --depth 32");
  assert.equal(renderCommand({ ...shown, layer: "a.b.png", preset: "", time: null }),
    "umbrant render a.b.png -o a.b-out.png --set style/angle=45 --depth 32");
  const placed = { ...shown, layer: "a.png", preset: "", time: null, renderArguments: ["--texture-at", "4,-2", "--depth", "8"] };
  assert.equal(renderCommand({ ...placed, texture: "paper.png" }),
    "umbrant render a.png -o a-out.png --texture paper.png --set style/angle=45 --texture-at 4,-2 --depth 8");
  assert.equal(renderCommand(placed), "umbrant render a.png -o a-out.png --set style/angle=45 --depth 8",
    "no texture has a place");
});

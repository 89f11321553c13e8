// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What leaves the preview's page: archives, names, the values of a contact sheet.

import assert from "node:assert/strict";
import { test } from "node:test";

import { baseName, frameText } from "../../../../host/preview/page/leave/download.js";
import { proposedValues, union, valuesOf } from "../../../../host/preview/page/leave/sheet.js";
import { crc32, Zip } from "../../../../host/preview/page/leave/zip.js";

test("the check sum is that of the format", () => {
  assert.equal(crc32(new TextEncoder().encode("123456789")), 0xcbf43926);
});

test("an archive has its files, and refuses what is too large for it", async () => {
  const zip = new Zip();
  await zip.add("é.0001.png", new Blob(["one"]));
  await zip.add("b.0002.png", new Blob(["two and more"]));
  const bytes = new Uint8Array(await zip.finish().arrayBuffer());
  const view = new DataView(bytes.buffer);
  const end = bytes.length - 22;
  assert.equal(view.getUint32(end, true), 0x06054b50);
  assert.equal(view.getUint16(end + 10, true), 2);
  assert.equal(view.getUint32(end + 16, true) + view.getUint32(end + 12, true), end);
  assert.equal(view.getUint32(view.getUint32(end + 16, true), true), 0x02014b50);
  zip.count = 0xffff;
  await assert.rejects(zip.add("c", new Blob(["c"])), /umbrant render/);
  zip.count = 2;
  zip.size = 0xfffffff0;
  await assert.rejects(zip.add("c", new Blob(["c"])), /4 GiB/);
});

test("names are those that `umbrant render` gives", () => {
  assert.deepEqual([1, 12345, -3, 7.25, -0.5].map(frameText), ["0001", "12345", "-003", "0007.25", "-000.5"]);
  assert.deepEqual(["a/b/in.####.exr", "card.png", "clip_%04d.png", ".png", "shot.$F4.png"].map(baseName),
    ["in", "card", "clip", "umbrant", "shot"]);
});

test("values of a sheet", () => {
  assert.deepEqual(valuesOf(" 1  2,3 red ", "Colour"), ["1", "2,3", "red"]);
  assert.throws(() => valuesOf(" ", "Colour"), /Colour has no values/);
  assert.throws(() => valuesOf("1 2 3 4 5 6 7 8 9", "Colour"), /at most 8/);
  assert.equal(proposedValues({ kind: "slider", sliderMin: 0, sliderMax: 200, precision: 1 }, "5"), "20 80 140");
  assert.equal(proposedValues({ kind: "popup", items: ["A", "(-", "B"] }, "A"), "1 3");
  assert.deepEqual(union([[0, 1, 5, 5], [-2, 3, 4, 9]]), [-2, 1, 5, 9]);
});

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The same shadow as its author would write it for a canvas that Skia draws: 8 bits, blurred by the canvas's filter or,
// for a plain shadow, by its shadow properties.
//
// Usage: skia_peer.mjs WORK filter|shadow SCALE CANVAS [LAYER.png OUTPUT.png]; WORK is the JSON that bench/peers/compare
// writes, SCALE that of the filter's canvas, CANVAS the folder of the canvas package. With two files it draws one into
// the other and ends; otherwise it answers "frame" and "save FILE" on standard input like the other peers.

import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { createInterface } from "node:readline";

const [workFile, way, scaleText, packageFolder, layerFile, outputFile] = process.argv.slice(2);
const scale = Number(scaleText);
const { createCanvas, ImageData, loadImage } = createRequire(import.meta.url)(packageFolder);
const work = JSON.parse(readFileSync(workFile, "utf8"));
const [width, height, left, top] = work.frame;

function layerInMemory() {
    const [canvas, context] = canvasOf(work.width, work.height);
    const bytes = new Uint8ClampedArray(readFileSync(work.layer));
    context.putImageData(new ImageData(bytes, work.width, work.height), 0, 0);
    return canvas;
}

const layer = layerFile ? await loadImage(layerFile) : layerInMemory();

// A bell's standard deviation is sqrt(0.06) of its reach.
const deviation = (softness) => softness * Math.sqrt(0.06);

function canvasOf(width, height) {
    const canvas = createCanvas(width, height);
    return [canvas, canvas.getContext("2d")];
}

// The layer's shape in black, once: what all samples blur.
function silhouette() {
    const [canvas, context] = canvasOf(work.width * scale, work.height * scale);
    context.drawImage(layer, 0, 0, canvas.width, canvas.height);
    context.globalCompositeOperation = "source-in";
    context.fillStyle = "black";
    context.fillRect(0, 0, canvas.width, canvas.height);
    return canvas;
}

function drawWithFilter(result) {
    const shape = silhouette();
    const [small, context] = canvasOf(width * scale, height * scale);
    for (const sample of work.samples) {
        if (sample.opacity <= 0) continue;
        context.filter = sample.softness > 0 ? `blur(${deviation(sample.softness) * scale}px)` : "none";
        context.globalAlpha = sample.opacity;
        context.drawImage(shape, (sample.x - left) * scale, (sample.y - top) * scale);
    }
    result.drawImage(small, 0, 0, width, height);
    result.drawImage(layer, -left, -top);
}

// A canvas has one shadow, which it draws below what casts it.
function drawWithShadow(result) {
    const sample = work.samples[work.samples.length - 1];
    result.shadowColor = `rgba(0, 0, 0, ${sample.opacity})`;
    result.shadowBlur = 2 * deviation(sample.softness);
    result.shadowOffsetX = sample.x;
    result.shadowOffsetY = sample.y;
    result.drawImage(layer, -left, -top);
}

function drawn() {
    const [canvas, context] = canvasOf(width, height);
    (way === "shadow" ? drawWithShadow : drawWithFilter)(context);
    return canvas;
}

if (outputFile) {
    writeFileSync(outputFile, drawn().toBuffer("image/png"));
    process.exit();
}

// A canvas draws only when its pixels are read.
const draw = () => drawn().getContext("2d").getImageData(0, 0, width, height).data;

let result = draw();
console.log("ready");
for await (const line of createInterface({ input: process.stdin })) {
    if (line === "frame") {
        const begin = process.hrtime.bigint();
        result = draw();
        console.log(Number(process.hrtime.bigint() - begin) / 1e9);
    } else if (line.startsWith("save ")) {
        writeFileSync(line.slice(5), Uint8Array.from({ length: width * height }, (_, i) => result[4 * i + 3]));
        console.log("saved");
    }
}

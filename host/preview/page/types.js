// SPDX-License-Identifier: BSD-3-Clause
// The records that the page and the server exchange, for the type checker.

/**
 * A declared row of the panel.
 * @typedef {object} Declared
 * @property {string} key            its path, or "#index"
 * @property {number} index
 * @property {string} kind           "slider", "angle", "check", "color", "point", "point3d", "popup", "group", "button",
 *                                   "layer", "own" or "nothing"
 * @property {number} depth          how many groups are around it
 * @property {string} [default]      as text
 * @property {number[]} [defaultNumbers]
 * @property {number} [min]
 * @property {number} [max]
 * @property {number} [sliderMin]
 * @property {number} [sliderMax]
 * @property {number} [precision]    decimals
 * @property {string} [unit]         "%", "px" or ""
 * @property {string[]} [items]      of a popup; separators begin with "(-"
 * @property {string} [label]        of a button or a check box
 * @property {string} [description]  what it does to the picture
 * @property {number} [width]        of a row that the effect draws
 * @property {number} [height]
 * @property {boolean} [collapsed]   a group that begins closed
 * @property {boolean} [animatable]  it may have keys
 * @property {boolean} [discrete]    its keys can only hold their values
 */

/**
 * How a row is now.
 * @typedef {object} Current
 * @property {string} name
 * @property {boolean} hidden
 * @property {boolean} disabled
 * @property {string} [text]         the value as `--set` takes it
 * @property {number[]} [numbers]    the value as numbers: colours as channels from 0 to 255, popups as item from 1 on
 * @property {boolean} [percent]     a point in percent of the layer
 */

/**
 * An image that the server keeps.
 * @typedef {object} Layer
 * @property {number} id
 * @property {string} name
 * @property {number} width          full size, pixels
 * @property {number} height
 * @property {number} bits           of a channel in the file
 * @property {boolean} [moving]      a sequence or a clip
 */

/**
 * A drawn frame.
 * @typedef {object} FrameInfo
 * @property {number} serial         of the request
 * @property {number} frame          its number on the server
 * @property {number} shotFrame      which frame of the timeline, from 0
 * @property {boolean} draft
 * @property {number} downsample
 * @property {number[]} rect         left, top, right, bottom in drawn pixels of the layer
 * @property {number[]} layer        the layer's full size
 * @property {number} bits           of a channel of the render: 8 or 32
 * @property {number} milliseconds
 * @property {string} drawnBy        "gl" or "cpu"
 */

/**
 * How a key is come to or left.
 * @typedef {"linear" | "ease" | "hold" | {speed: number, influence: number}} Side
 */

/**
 * A keyframe, as in a preset.
 * @typedef {object} Key
 * @property {number} frame
 * @property {string | number} value
 * @property {Side} [in]
 * @property {Side} [out]            "tangent-in" and "tangent-out" of a point's path stay as they come
 */

/**
 * The keys of each row that moves, in the order of their frames. Never changed: replaced.
 * @typedef {Record<string, Key[]>} Keyframes
 */

/**
 * What is to be drawn.
 * @typedef {object} Request
 * @property {number} layer
 * @property {number} texture
 * @property {Record<string, string>} values
 * @property {string} [keyframes]    JSON
 * @property {string} [frames]       of the timeline; none for a single image
 * @property {string} [rate]
 * @property {number} [frame]        which of them, from 0
 * @property {number} [downsample]
 * @property {string} [canvas]
 */

/**
 * What the page shows, without where the person is in it.
 * @typedef {object} Shown
 * @property {Record<string, string>} values   that differ from the defaults
 * @property {Keyframes} keyframes
 * @property {Layer | null} layer
 * @property {Layer | null} texture
 * @property {string} frames         of the timeline
 * @property {string} rate
 * @property {boolean} hasTimeline   it is shown, also without keys
 */

/**
 * All that survives a reload.
 * @typedef {Shown & {index: number, open: Record<string, boolean>, backdrop: string, backdropColor: string}} State
 */

/**
 * What the server says first.
 * @typedef {object} Description
 * @property {string} effect
 * @property {Declared[]} rows
 * @property {Record<string, string>} values   that differ from the defaults
 * @property {Keyframes} keyframes
 * @property {string} frames         of the timeline to begin with; empty for none
 * @property {string} rate
 * @property {boolean} rateIsFixed   it is a clip's
 * @property {Layer | null} layer
 * @property {Layer | null} texture
 * @property {boolean} isolated    the module runs in a process of its own, which can be ended
 * @property {string[]} renderArguments
 */

export {};

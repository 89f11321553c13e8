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
 * @property {number} [width]        of a row that the effect draws
 * @property {number} [height]
 * @property {boolean} [collapsed]   a group that begins closed
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
 */

/**
 * A drawn frame.
 * @typedef {object} FrameInfo
 * @property {number} serial         of the request
 * @property {number} frame          its number on the server
 * @property {boolean} draft
 * @property {number} downsample
 * @property {number[]} rect         left, top, right, bottom in drawn pixels of the layer
 * @property {number[]} layer        the layer's full size
 * @property {number} bits           of a channel of the render: 8 or 32
 * @property {number} milliseconds
 * @property {string} drawnBy        "gl" or "cpu"
 */

/**
 * What the server says first.
 * @typedef {object} Description
 * @property {string} effect
 * @property {Declared[]} rows
 * @property {Record<string, string>} values   that differ from the defaults
 * @property {Layer | null} layer
 * @property {Layer | null} texture
 * @property {boolean} isolated    the module runs in a process of its own, which can be ended
 * @property {string[]} renderArguments
 */

export {};

// SPDX-License-Identifier: BSD-3-Clause
// The command line that renders what the page shows.

/** @param {string} text one word for a shell */
export function shellWord(text) {
  return /^[A-Za-z0-9_@%+=:,./-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

/**
 * @param {{layer: string, texture: string, values: Record<string, string>, renderArguments: string[]}} shown
 */
export function renderCommand({ layer, texture, values, renderArguments }) {
  const name = layer.slice(layer.lastIndexOf("/") + 1);
  const output = `${name.includes(".") ? name.slice(0, name.lastIndexOf(".")) : name}-out.png`;
  // A name that begins with a hyphen would be taken for an option.
  const words = ["umbrant", "render", layer.startsWith("-") ? `./${layer}` : layer, "-o", output.startsWith("-") ? `./${output}` : output];
  if (texture) words.push("--texture", texture);
  for (const [key, text] of Object.entries(values)) words.push("--set", `${key}=${text}`);
  return [...words, ...renderArguments].map(shellWord).join(" ");
}

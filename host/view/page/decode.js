// SPDX-License-Identifier: MIT
// The data of the page: the description of the case, and arrays that are decoded when they are needed.

const page = JSON.parse(document.getElementById("case").textContent);

// The mark of a missing value: the greatest float.
const UNDEFINED = 3.4028234663852886e38;
// Decoded arrays are kept up to this size; the oldest ones go first.
const MOST_KEPT_BYTES = 300e6;

const kept = new Map();
let keptBytes = 0;

async function inflate(text) {
  const characters = atob(text);
  const packed = new Uint8Array(characters.length);
  for (let i = 0; i < packed.length; ++i) packed[i] = characters.charCodeAt(i);
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// Puts the bytes of each number together again and adds up the differences.
function unpack(bytes, form) {
  const { width, count } = form;
  if (bytes.length !== width * count) throw new Error("a damaged array");
  const joined = new Uint8Array(bytes.length);
  for (let plane = 0; plane < width; ++plane) {
    for (let i = 0, from = plane * count, to = plane; i < count; ++i, to += width) joined[to] = bytes[from + i];
  }
  if (width === 8) return new Float64Array(joined.buffer);
  const numbers = width === 1 ? joined : width === 2 ? new Uint16Array(joined.buffer) : new Int32Array(joined.buffer);
  for (let i = 1; i < count; ++i) numbers[i] += numbers[i - 1];
  return numbers;
}

// Replaces the steps of 16 bits by floats that count from the base of the component.
function floatsOfSteps(codes, form) {
  const floats = new Float32Array(codes.length);
  const items = codes.length / form.components;
  const special = [-Infinity, Infinity, NaN, UNDEFINED];
  for (let i = 0; i < codes.length; ++i) {
    floats[i] = codes[i] > 65531 ? special[codes[i] - 65532] : codes[i] * form.step[Math.floor(i / items)];
  }
  return floats;
}

// Decodes the array with this number. Values come as { components, base, values }, component after component; a value
// is the sum of its component's base and the entry. Other arrays come as numbers.
async function block(number) {
  if (kept.has(number)) {
    const found = kept.get(number);
    kept.delete(number);
    kept.set(number, found);
    return found.content;
  }
  const form = page.blocks[number];
  const numbers = unpack(await inflate(document.getElementById("b" + number).textContent), form);
  let content = numbers;
  if (form.components) {
    const values = form.step ? floatsOfSteps(numbers, form) : new Float32Array(numbers.buffer);
    content = { components: form.components, base: form.base, values };
  }
  keep(number, content, (content.values || numbers).byteLength);
  return content;
}

function keep(number, content, bytes) {
  if (!kept.has(number)) keptBytes += bytes;
  kept.set(number, { content, bytes });
  for (const [oldest, entry] of kept) {
    if (keptBytes <= MOST_KEPT_BYTES || oldest === number) break;
    kept.delete(oldest);
    keptBytes -= entry.bytes;
  }
}

const isOrdinary = (value) => Number.isFinite(value) && value !== UNDEFINED;

// One component of values, or their magnitude, as { base, values }.
function componentOf(content, component) {
  const items = content.values.length / content.components;
  if (component < content.components) {
    const values = content.values.subarray(component * items, (component + 1) * items);
    return { base: content.base[component], values };
  }
  const values = new Float32Array(items);
  for (let i = 0; i < items; ++i) {
    let sum = 0;
    let missing = false;
    for (let k = 0; k < content.components; ++k) {
      const value = content.values[k * items + i];
      missing = missing || value === UNDEFINED;
      sum += (value + content.base[k]) ** 2;
    }
    values[i] = missing ? UNDEFINED : Math.sqrt(sum);
  }
  return { base: 0, values };
}

// The figures of a result, component, state and group, or null if the group has no values then.
const FIGURE_NAMES = ["least", "mean", "greatest", "items", "undefined", "nan", "infinite"];
async function figuresOf(result, component, state, group) {
  const all = await block(page.figures[result]);
  const components = page.results[result].components.length;
  const first = ((state * page.groups.length + group) * components + component) * FIGURE_NAMES.length;
  if (!(all[first + 3] > 0)) return null;
  return Object.fromEntries(FIGURE_NAMES.map((name, i) => [name, all[first + i]]));
}

// The figures of several groups together; least, mean and greatest are NaN without an ordinary value.
async function figuresOfGroups(result, component, state, groups) {
  const sum = { least: Infinity, mean: 0, greatest: -Infinity, items: 0, undefined: 0, nan: 0, infinite: 0 };
  let ordinary = 0;
  for (const group of groups) {
    const one = await figuresOf(result, component, state, group);
    if (!one) continue;
    const count = one.items - one.undefined - one.nan - one.infinite;
    for (const name of FIGURE_NAMES.slice(3)) sum[name] += one[name];
    if (count === 0) continue;
    sum.least = Math.min(sum.least, one.least);
    sum.greatest = Math.max(sum.greatest, one.greatest);
    sum.mean += (one.mean - sum.mean) * (count / (ordinary + count));
    ordinary += count;
  }
  if (ordinary === 0) sum.least = sum.mean = sum.greatest = NaN;
  return sum;
}

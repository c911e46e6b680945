// SPDX-License-Identifier: MIT
// Colour maps whose lightness changes evenly, and numbers as text.

const COLOR_MAPS = {
  Viridis: "440154 482576 414487 35608d 2a788e 21908c 22a884 43bf71 7ad151 bbdf27 fde725",
  Plasma: "0d0887 47039f 7301a8 9c179e bd3786 d8576b ed7953 fa9e3b fdc926 f0f921",
  Inferno: "000004 160b39 420a68 6a176e 932667 bc3754 dd513a f37819 fca50a f6d746 fcffa4",
  Cividis: "00204d 00306f 2a406c 48526b 5e626e 727374 878479 9e9677 b6a971 d0be67 ead357 ffea46",
  "Blue to red": "3b4cc0 5977e3 7b9ff9 9ebeff c0d4f5 dddcdc f2cbb7 f7ac8e ee8468 d65244 b40426",
  Grey: "1a1a1a f2f2f2",
};

// 256 colours of a map as bytes, RGBA.
function colorTable(name) {
  const stops = COLOR_MAPS[name].split(" ").map((text) => [0, 2, 4].map((i) => parseInt(text.substr(i, 2), 16)));
  const table = new Uint8Array(4 * 256);
  for (let i = 0; i < 256; ++i) {
    const place = (i / 255) * (stops.length - 1);
    const low = Math.min(Math.floor(place), stops.length - 2);
    for (let k = 0; k < 3; ++k) table[4 * i + k] = stops[low][k] + (stops[low + 1][k] - stops[low][k]) * (place - low);
    table[4 * i + 3] = 255;
  }
  return table;
}

// Five digits, or as many as asked, and a power of ten where that is shorter.
function numberText(value, digits = 5) {
  if (!Number.isFinite(value)) return Number.isNaN(value) ? "-" : value > 0 ? "infinite" : "-infinite";
  const size = Math.abs(value);
  if (size !== 0 && (size < 1e-3 || size >= 10 ** Math.max(digits, 5))) {
    return value
      .toExponential(digits - 1)
      .replace(/\.?0+e/, "e")
      .replace("e+", "e");
  }
  return String(Number(value.toPrecision(digits)));
}

// Round numbers from least to greatest, at most as many as asked.
function ticksOf(least, greatest, most) {
  const rough = (greatest - least) / (most + 1);
  if (!(rough > 0) || !Number.isFinite(rough)) return [least];
  const power = 10 ** Math.floor(Math.log10(rough));
  const countOf = (step) => Math.floor(greatest / step + 1e-9) - Math.ceil(least / step - 1e-9) + 1;
  const step = [1, 2, 5, 10, 20].map((factor) => factor * power).find((size) => countOf(size) <= most);
  const ticks = [];
  for (let i = Math.ceil(least / step - 1e-9); i * step <= greatest + step * 1e-9; ++i) ticks.push(i * step);
  return ticks;
}

const themeColor = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

// SPDX-License-Identifier: MIT
// What lies over the picture: the legend, the directions of the axes, and the mark of a picked point.

const LEGEND_WIDTH = 16;

// The picture's colours of what has no colour of the map.
const MISSING_COLOR = [0.56, 0.56, 0.56];
const PLAIN_COLOR = [0.72, 0.78, 0.84];

const rgb = (color) => `rgb(${color.map((part) => Math.round(part * 255)).join(" ")})`;

// "12 undefined, 3 NaN", or an empty text.
function missingText(figures) {
  const names = [
    ["undefined", "undefined"],
    ["nan", "NaN"],
    ["infinite", "infinite"],
  ];
  return names
    .filter(([key]) => figures[key] > 0)
    .map(([key, name]) => `${figures[key]} ${name}`)
    .join(", ");
}

class Overlay {
  constructor(canvas) {
    this.canvas = canvas;
    this.context = canvas.getContext("2d");
  }

  // The caption is a line in the upper left corner. `legend` has title, unit, range, table of colours, and colour and
  // name of what has none of these colours; null for no legend.
  draw(width, height, ratio, { legend, mark, caption }) {
    const { context } = this;
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, width, height);
    context.font = "12.5px system-ui, 'DejaVu Sans', sans-serif";
    context.textBaseline = "middle";
    context.lineJoin = "round";
    this.drawAxes(height);
    if (legend) this.drawLegend(width, height, legend);
    if (mark) this.drawMark(mark);
    if (caption) this.text(caption, 18, 20, "left", "600");
  }

  // Text with a rim of the background's colour, to be read on any colour.
  text(text, x, y, align = "left", weight = "") {
    const { context } = this;
    context.font = `${weight} 12.5px system-ui, 'DejaVu Sans', sans-serif`;
    context.textAlign = align;
    context.strokeStyle = themeColor("--scene-top");
    context.lineWidth = 3;
    context.strokeText(text, x, y);
    context.fillStyle = themeColor("--text");
    context.fillText(text, x, y);
  }

  drawLegend(width, height, legend) {
    const { context } = this;
    const right = width - 18;
    const length = Math.min(260, height - 150);
    const top = 58;
    this.text(legend.title, right, 20, "right", "600");
    this.text(legend.unit ? legend.unit : "no unit", right, 38, "right");
    if (length > 40 && Number.isFinite(legend.range[0])) this.drawBar(right, top, length, legend);
    let y = top + Math.max(length, 0) + 20;
    for (const [color, text] of legend.others) {
      this.drawSwatch(right - 14, y - 6, color);
      this.text(text, right - 20, y, "right");
      y += 18;
    }
  }

  drawSwatch(x, y, color) {
    const { context } = this;
    context.fillStyle = rgb(color);
    context.fillRect(x, y, 14, 12);
    if (color !== MISSING_COLOR) return;
    context.save();
    context.beginPath();
    context.rect(x, y, 14, 12);
    context.clip();
    context.strokeStyle = rgb(color.map((part) => part * 0.7));
    context.lineWidth = 1.5;
    for (let i = 3; i < 26; i += 6) {
      context.beginPath();
      context.moveTo(x + i - 12, y);
      context.lineTo(x + i, y + 12);
      context.stroke();
    }
    context.restore();
  }

  drawBar(right, top, length, { range, table }) {
    const { context } = this;
    const [least, greatest] = range;
    for (let i = 0; i < length; ++i) {
      const color = 4 * Math.round((1 - i / Math.max(length - 1, 1)) * 255);
      context.fillStyle = `rgb(${table[color]} ${table[color + 1]} ${table[color + 2]})`;
      context.fillRect(right - LEGEND_WIDTH, top + i, LEGEND_WIDTH, 1.5);
    }
    const place = (value) => top + length * (greatest > least ? (greatest - value) / (greatest - least) : 0.5);
    const ends = greatest > least ? [least, greatest] : [least];
    const isClear = (tick) => ends.every((end) => Math.abs(place(tick) - place(end)) > 14);
    const inner = ticksOf(least, greatest, 6).filter(isClear);
    for (const value of [...ends, ...inner]) {
      const y = place(value);
      context.fillStyle = themeColor("--text");
      context.fillRect(right - LEGEND_WIDTH - 5, y - 0.5, 5, 1);
      this.text(numberText(value), right - LEGEND_WIDTH - 9, y, "right");
    }
  }

  drawAxes(height) {
    const { context } = this;
    const { right, up, toward } = camera.axes();
    const [x, y, length] = [52, height - 52, 34];
    const axes = [0, 1, 2].map((k) => ({ k, dx: right[k] * length, dy: -up[k] * length, depth: toward[k] }));
    axes.sort((a, b) => a.depth - b.depth);
    for (const { k, dx, dy } of axes) {
      context.strokeStyle = ["#d1495b", "#3a9d5d", "#3178c6"][k];
      context.lineWidth = 2;
      context.beginPath();
      context.moveTo(x, y);
      context.lineTo(x + dx, y + dy);
      context.stroke();
      if (Math.hypot(dx, dy) > 6) this.text(COORDINATE_NAMES[k], x + dx * 1.3, y + dy * 1.3, "center");
    }
  }

  drawMark([x, y]) {
    const { context } = this;
    for (const [color, width] of [
      ["#ffffff", 4],
      ["#d1495b", 2],
    ]) {
      context.strokeStyle = color;
      context.lineWidth = width;
      context.beginPath();
      context.arc(x, y, 6, 0, 2 * Math.PI);
      context.stroke();
    }
  }
}

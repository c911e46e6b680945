// SPDX-License-Identifier: MIT
// Least, mean and greatest value over the states.

const CHART_LINES = [
  ["greatest", "#c2410c"],
  ["mean", "#1f6feb"],
  ["least", "#0f766e"],
];

class Chart {
  constructor(canvas, choose) {
    this.canvas = canvas;
    this.rows = [];
    canvas.addEventListener("click", (event) => {
      const nearest = this.nearest(event.offsetX);
      if (nearest >= 0) choose(nearest);
    });
  }

  // `rows` has time and figures of each state.
  show(rows, state, title) {
    Object.assign(this, { rows, state, title });
    this.draw();
    const described = rows[state];
    this.canvas.setAttribute(
      "aria-label",
      described
        ? `${title} over the states; now ${CHART_LINES.map(
            ([name]) => `${name} ${numberText(described.figures[name])}`,
          ).join(", ")}`
        : "No values",
    );
  }

  nearest(x) {
    const distances = this.rows.map((row) => Math.abs(this.placeOf(row.time) - x));
    return distances.indexOf(Math.min(...distances));
  }

  placeOf(time) {
    const [first, last] = [this.rows[0].time, this.rows[this.rows.length - 1].time];
    return (
      this.left + (last > first ? (time - first) / (last - first) : 0.5) * (this.width - this.left - this.rightSpace)
    );
  }

  draw() {
    const { canvas } = this;
    const ratio = window.devicePixelRatio || 1;
    const [width, height] = [canvas.clientWidth, canvas.clientHeight];
    if (width === 0) return;
    [canvas.width, canvas.height] = [width * ratio, height * ratio];
    const context = canvas.getContext("2d");
    context.scale(ratio, ratio);
    context.font = "11.5px system-ui, 'DejaVu Sans', sans-serif";
    context.textBaseline = "middle";
    const figures = this.rows.flatMap((row) => [row.figures.least, row.figures.greatest]).filter(Number.isFinite);
    if (figures.length === 0) {
      context.fillStyle = themeColor("--faint");
      context.fillText("No values in the groups that are switched on", 0, height / 2);
      return;
    }
    let [low, high] = [Math.min(...figures), Math.max(...figures)];
    if (low === high) [low, high] = [low - (Math.abs(low) || 1) * 0.1, high + (Math.abs(high) || 1) * 0.1];
    Object.assign(this, { width, left: 78, rightSpace: 150 });
    const [top, bottom] = [8, height - 22];
    const yOf = (value) => bottom - ((value - low) / (high - low)) * (bottom - top);
    this.drawFrame(context, low, high, yOf, bottom);
    for (const [name, color] of CHART_LINES) this.drawLine(context, name, color, yOf);
    this.drawCurrent(context, top, bottom);
  }

  drawFrame(context, low, high, yOf, bottom) {
    context.textAlign = "right";
    for (const tick of ticksOf(low, high, 5)) {
      context.fillStyle = themeColor("--line");
      context.fillRect(this.left, yOf(tick) - 0.5, this.width - this.left - this.rightSpace, 1);
      context.fillStyle = themeColor("--faint");
      context.fillText(numberText(tick, 4), this.left - 8, yOf(tick));
    }
    context.textAlign = "center";
    const [first, last] = [this.rows[0].time, this.rows[this.rows.length - 1].time];
    for (const tick of ticksOf(first, last, Math.max(2, Math.floor((this.width - this.left - this.rightSpace) / 60))))
      context.fillText(numberText(tick), this.placeOf(tick), bottom + 14);
  }

  drawLine(context, name, color, yOf) {
    context.strokeStyle = context.fillStyle = color;
    context.lineWidth = 1.6;
    context.beginPath();
    let isOn = false;
    for (const { time, figures } of this.rows) {
      const isDefined = Number.isFinite(figures[name]);
      if (isDefined) {
        const [x, y] = [this.placeOf(time), yOf(figures[name])];
        isOn ? context.lineTo(x, y) : context.moveTo(x, y);
        context.fillRect(x - 1.5, y - 1.5, 3, 3);
      }
      isOn = isDefined;
    }
    context.stroke();
  }

  // The figures of the current state, beside the chart.
  drawCurrent(context, top, bottom) {
    const row = this.rows[this.state];
    const x = this.placeOf(row.time);
    context.fillStyle = themeColor("--faint");
    context.fillRect(x - 0.5, top, 1, bottom - top);
    context.textAlign = "left";
    CHART_LINES.forEach(([name, color], i) => {
      const y = top + 8 + i * Math.min(20, (bottom - top) / 3);
      context.fillStyle = color;
      context.fillRect(this.width - this.rightSpace + 14, y - 1, 12, 2);
      context.fillStyle = themeColor("--text");
      context.fillText(`${name} ${numberText(row.figures[name])}`, this.width - this.rightSpace + 32, y);
    });
  }
}

// SPDX-License-Identifier: MIT
// What is shown, and how a change of it reaches the picture.

// What was chosen.
const shown = {
  visible: new Set(),
  result: -1,
  component: 0,
  state: -1,
  rangeMode: "state",
  typed: [0, 1],
  map: "Viridis",
  edges: false,
  clipAxis: -1,
  clipPlace: 0.5,
  clipFlip: false,
  picked: null,
  playing: null,
};
// What the surfaces hold, which follows as soon as all of it is decoded. Figures are those of the state.
const drawn = { groups: [], result: -1, component: 0, state: -1, figures: null, range: [NaN, NaN] };
const surfaces = new Map();
let renderer;
let overlay;
let chart;
let running = null; // the refresh under way
let isStale = false; // something changed since it started
let hasLostCard = false;
let drawRequest = 0;
let figuresKey = ""; // what `figureRows` belong to
let figureRows = [];

const drawnSurfaces = () => drawn.groups.map((number) => surfaces.get(number));

// Brings the picture in line with `shown`. Changes that come while it runs are taken up by one more turn.
function refresh() {
  isStale = true;
  running ??= (async () => {
    while (isStale) {
      isStale = false;
      try {
        await update();
        tell(page.groups.some((group) => group.faces > 0) ? "" : "The case has nothing to draw.");
      } catch (error) {
        tellFailure(error);
      }
    }
    running = null;
  })();
  return running;
}

function tell(message) {
  element("message").textContent = hasLostCard
    ? "The graphics card gave up the picture; load the page again."
    : message;
}

function tellFailure(error) {
  tell(`The page cannot be shown: ${error.message}`);
  console.error(error);
}

async function update() {
  const { result, component, state } = shown;
  const groups = [...shown.visible].sort((a, b) => a - b);
  const changes = await Promise.all(groups.map((number) => decodeSurface(number, result, component, state)));
  const rows = await figuresOfStates(result, component, groups);
  // From here on nothing waits, so no picture shows half of a change.
  for (const { surface, points, values } of changes) {
    if (points) surface.setPoints(points);
    if (values) surface.setValues(values);
    renderer.upload(surface, { points, values });
    surfaces.set(surface.number, surface);
  }
  Object.assign(drawn, { groups, result, component, state, figures: rows.length ? rows[state].figures : null });
  drawn.range = rangeOf(rows);
  camera.box = boxOf(drawnSurfaces());
  element("chart").hidden = rows.length < 2;
  if (rows.length > 1) chart.show(rows, state, legendTitle());
  renderer.setColors(colorTable(shown.map));
  updateControls();
  draw();
  updatePicked();
}

// The surface of a group, and what it has to take over.
async function decodeSurface(number, result, component, state) {
  const surface = surfaces.get(number) || new Surface(number);
  if (!surfaces.has(number)) await surface.load();
  const points = await surface.pointsOf(state);
  return { surface, points, values: await surface.valuesOf(result, component, state) };
}

// Time and figures of each state for some groups.
async function figuresOfStates(result, component, groups) {
  const key = JSON.stringify([result, component, groups]);
  if (figuresKey === key) return figureRows;
  const rows = [];
  for (let state = 0; result >= 0 && state < page.states.length; ++state) {
    rows.push({ time: page.states[state].time, figures: await figuresOfGroups(result, component, state, groups) });
  }
  [figuresKey, figureRows] = [key, rows];
  return rows;
}

function rangeOf(rows) {
  if (shown.rangeMode === "typed") return shown.typed;
  if (shown.rangeMode === "state") return drawn.figures ? [drawn.figures.least, drawn.figures.greatest] : [NaN, NaN];
  const all = rows.map((row) => row.figures).filter((figures) => Number.isFinite(figures.least));
  if (all.length === 0) return [NaN, NaN];
  return [Math.min(...all.map((one) => one.least)), Math.max(...all.map((one) => one.greatest))];
}

function legendTitle() {
  const result = page.results[drawn.result];
  const component = result.components[drawn.component];
  return resultTitle(result) + (component ? `, ${component}` : "");
}

function clipPosition() {
  const [low, high] = camera.box.map((corner) => corner[shown.clipAxis]);
  return low + (high - low) * shown.clipPlace;
}

// How surfaces look, for the renderer.
function look() {
  const clip = [0, 0, 0, 1];
  if (shown.clipAxis >= 0) {
    clip[shown.clipAxis] = shown.clipFlip ? -1 : 1;
    clip[3] = (shown.clipFlip ? -1 : 1) * clipPosition();
  }
  const isDark = document.documentElement.dataset.theme === "dark";
  const range = Number.isFinite(drawn.range[0]) ? drawn.range : [0, 0];
  return {
    clip,
    range,
    edges: shown.edges,
    edgeColor: isDark ? [0.04, 0.05, 0.06] : [0.13, 0.15, 0.18],
    missing: MISSING_COLOR,
    plain: PLAIN_COLOR,
  };
}

function legend() {
  if (drawn.result < 0) return null;
  const others = [];
  const missing = missingText(drawn.figures);
  if (missing) others.push([MISSING_COLOR, missing]);
  if (drawnSurfaces().some((surface) => !surface.shown)) others.push([PLAIN_COLOR, "without values"]);
  const { unit } = page.results[drawn.result];
  return { title: legendTitle(), unit, range: drawn.range, table: colorTable(shown.map), others };
}

// A picture that goes elsewhere has a caption, for lack of the rest of the page.
function draw(hasCaption = document.body.classList.contains("picture")) {
  const { canvas } = renderer;
  const ratio = window.devicePixelRatio || 1;
  const [width, height] = [canvas.clientWidth, canvas.clientHeight];
  for (const target of [canvas, overlay.canvas]) {
    const size = [Math.round(width * ratio), Math.round(height * ratio)];
    if (target.width !== size[0] || target.height !== size[1]) [target.width, target.height] = size;
  }
  renderer.draw(drawnSurfaces(), look());
  const state = page.states[drawn.state];
  const caption = hasCaption ? page.name + (state ? `, ${stateText(state)}` : "") : "";
  overlay.draw(width, height, ratio, { legend: legend(), mark: markPlace(width, height), caption });
}

// Draws with the next picture of the screen, for changes that come faster than it.
function requestDraw() {
  drawRequest ||= requestAnimationFrame(() => {
    drawRequest = 0;
    draw();
  });
}

// Picks what is at a place of the canvas.
function pickAt(x, y) {
  const { canvas } = renderer;
  const ratio = canvas.width / canvas.clientWidth;
  const found = renderer.pick(
    drawnSurfaces(),
    look(),
    Math.floor(x * ratio),
    canvas.height - 1 - Math.floor(y * ratio),
  );
  if (!found) return showPicked(null);
  const ray = camera.ray((2 * x) / canvas.clientWidth - 1, 1 - (2 * y) / canvas.clientHeight, renderer.aspect());
  const corners = [0, 1, 2].map((k) => found.surface.corner(found.triangle, k));
  const place = meet(ray, ...corners);
  showPicked(place && { ...found, weights: place.weights });
}

function showPicked(picked) {
  shown.picked = picked;
  updatePicked();
  requestDraw();
}

// The picked place in the present state: it stays at its face when points move.
function pickedPoint() {
  const { surface, triangle, weights } = shown.picked;
  return weights.reduce((sum, weight, k) => plusScaled(sum, surface.corner(triangle, k), weight), [0, 0, 0]);
}

const isPickedDrawn = () => shown.picked !== null && drawn.groups.includes(shown.picked.surface.number);

function markPlace(width, height) {
  if (!isPickedDrawn()) return null;
  const point = [...pickedPoint(), 1];
  const m = camera.matrix(renderer.aspect());
  const [x, y, , w] = [0, 1, 2, 3].map((row) => point.reduce((sum, value, k) => sum + m[4 * k + row] * value, 0));
  return w > 0 ? [((x / w + 1) / 2) * width, ((1 - y / w) / 2) * height] : null;
}

function valueText(value) {
  if (value === null) return "no values here";
  return value === UNDEFINED ? "undefined" : Number.isNaN(value) ? "NaN" : numberText(value, 6);
}

// Part, cell, coordinates and value of the picked place.
function pickedRows() {
  const { surface, triangle, weights } = shown.picked;
  const { group } = surface;
  const point = pickedPoint().map((value, k) => numberText(value + page.origin[k], 6));
  const isSolid = group.kind === "part" || group.kind === "cell zone";
  const rows = [[group.kind[0].toUpperCase() + group.kind.slice(1), group.name]];
  if (group.part !== null) rows.push(["Part", page.groups[group.part].name]);
  rows.push([isSolid ? "Cell" : "Face", String(surface.cells[surface.faceOf[triangle]])], ["Place", point.join("  ")]);
  if (drawn.result >= 0) {
    const value = valueText(surface.valueAt(triangle, weights));
    rows.push([legendTitle(), `${value} ${page.results[drawn.result].unit}`]);
  }
  return rows;
}

function updatePicked() {
  const isOn = isPickedDrawn();
  element("picked").hidden = !isOn;
  if (!isOn) return;
  const list = make("dl");
  for (const [name, text] of pickedRows()) list.append(make("dt", name), make("dd", text));
  element("picked").replaceChildren(list);
}

// The velocity, or the first scalar, or any result, that is not the same everywhere.
async function defaultResult(state) {
  const isWanted = [(result) => result.field === "U", (result) => result.components.length === 1, () => true];
  for (const wanted of state < 0 ? [] : isWanted) {
    for (const [i, result] of page.results.entries()) {
      if (!wanted(result)) continue;
      const figures = await figuresOfGroups(i, result.components.length - 1, state, shown.visible);
      if (figures.least < figures.greatest) return i;
    }
  }
  return page.results.length > 0 && state >= 0 ? 0 : -1;
}

// Parts if there are any, since patches and zones lie on them.
function defaultGroups() {
  const drawable = page.groups.map((group, i) => [group, i]).filter(([group]) => group.faces > 0);
  const parts = drawable.filter(([group]) => group.kind === "part");
  return (parts.length ? parts : drawable).map(([, i]) => i);
}

async function start() {
  document.documentElement.dataset.theme = matchMedia("(prefers-color-scheme: dark)").matches ? "dark" : "light";
  document.body.classList.toggle("picture", location.hash === "#picture");
  document.title = page.name;
  element("name").textContent = page.name;
  renderer = new Renderer(element("view"));
  overlay = new Overlay(element("overlay"));
  chart = new Chart(element("chart"), chooseState);
  shown.visible = new Set(defaultGroups());
  shown.state = page.states.length - 1;
  connectControls();
  buildTree();
  chooseResult(await defaultResult(shown.state));
  await refresh();
  resetView();
  await running;
  connectInput(element("view"));
  element("view").addEventListener("webglcontextlost", () => {
    hasLostCard = true;
    tell("");
  });
  new ResizeObserver(() => refresh()).observe(element("stage"));
}

// Resolves when the first picture is complete. A program that takes the picture finds out from the log.
const started = start()
  .catch(tellFailure)
  .then(() => {
    const message = element("message").textContent;
    if (location.hash === "#picture") console.info(`picture: ${message.replaceAll('"', "'") || "drawn"}`);
  });

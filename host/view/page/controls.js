// SPDX-License-Identifier: MIT
// The panels. They read and change `shown` and then call `refresh`; nothing else holds what is chosen.

const element = (id) => document.getElementById(id);

// An element with a text. Names of a case go in only this way, so that they stay text.
function make(tag, text, parts = {}) {
  const made = Object.assign(document.createElement(tag), parts);
  if (text) made.append(text);
  return made;
}

const KIND_TITLES = {
  part: "Parts",
  "cell zone": "Cell zones",
  patch: "Patches",
  "face zone": "Face zones",
  surface: "Sampled surfaces",
};

function countText(group) {
  const noun = group.kind === "part" || group.kind === "cell zone" ? "cell" : "face";
  const types = Object.entries(group.types || {}).map(([type, count]) => `${count.toLocaleString("en")} ${type}`);
  const single =
    types.length === 1 ? types[0] : `${group.elements.toLocaleString("en")} ${noun}${group.elements === 1 ? "" : "s"}`;
  const more = types.length > 1 ? ` (${types.join(", ")})` : "";
  return single + more + (group.faces === 0 ? ", nothing to draw" : "");
}

// One row of the tree.
function groupRow(number) {
  const group = page.groups[number];
  const box = make("input", "", { type: "checkbox", checked: shown.visible.has(number), disabled: group.faces === 0 });
  box.dataset.group = number;
  box.addEventListener("change", () => showGroups([number], box.checked));
  const words = make("span", group.name || "(no name)");
  const kind =
    group.type && group.type !== "CellZone" && group.type !== "FaceZone" && group.type !== "SampledSurface"
      ? group.type + ", "
      : "";
  words.append(make("span", kind + countText(group), { className: "count" }));
  const row = make("label", "", { className: group.part === null ? "" : "member" });
  row.append(box, words);
  return row;
}

// Rows of one kind under a heading with a button for all of them.
function kindRows(title, numbers) {
  const heading = make("div", `${title} (${numbers.length})`, { className: "kind" });
  if (numbers.length > 1) {
    for (const [text, on] of [
      ["all", true],
      ["none", false],
    ]) {
      const button = make("button", text, { type: "button", title: `${title}: ${text}` });
      button.addEventListener("click", () => showGroups(numbers, on));
      heading.append(button);
    }
  }
  return [heading, ...numbers.map(groupRow)];
}

function buildTree() {
  const tree = element("tree");
  const numbers = page.groups.map((_, i) => i);
  const byKind = (members) =>
    Object.entries(KIND_TITLES).flatMap(([kind, title]) => {
      const some = members.filter((i) => page.groups[i].kind === kind);
      return some.length ? kindRows(title, some) : [];
    });
  for (const number of numbers.filter((i) => page.groups[i].kind === "part")) {
    tree.append(groupRow(number), ...byKind(numbers.filter((i) => page.groups[i].part === number)));
  }
  tree.append(...byKind(numbers.filter((i) => page.groups[i].part === null && page.groups[i].kind !== "part")));
  element("left-out").hidden = page.leftOut.length === 0;
  element("left-out-list").append(...page.leftOut.map((line) => make("li", line)));
}

function showGroups(numbers, on) {
  for (const number of numbers.filter((i) => page.groups[i].faces > 0))
    on ? shown.visible.add(number) : shown.visible.delete(number);
  for (const box of document.querySelectorAll("#tree input"))
    box.checked = shown.visible.has(Number(box.dataset.group));
  refresh();
}

const resultTitle = (result) =>
  result.name + (page.results.filter((other) => other.name === result.name).length > 1 ? ` (${result.field})` : "");

function chooseResult(number) {
  shown.result = number;
  const components = number < 0 ? [""] : page.results[number].components;
  shown.component = Math.max(0, components.indexOf("magnitude"));
  element("component").replaceChildren(
    ...components.map((name, i) => make("option", name || "value", { value: i, selected: i === shown.component })),
  );
  element("component-row").hidden = components.length < 2;
  if (shown.rangeMode === "typed") shown.rangeMode = "state";
  element("result").value = number;
}

function chooseState(number) {
  shown.state = Math.max(0, Math.min(page.states.length - 1, number));
  return refresh();
}

// Numbers typed in set the range as soon as both are numbers and in order.
function readRange() {
  const typed = ["least", "greatest"].map((id) => Number(element(id).value.trim() || NaN));
  const isRange = typed.every(Number.isFinite) && typed[0] <= typed[1];
  for (const id of ["least", "greatest"]) {
    element(id).setAttribute("aria-invalid", String(!isRange));
    element(id).title = isRange ? "" : "Two numbers, the lesser one first";
  }
  if (!isRange) return;
  shown.rangeMode = "typed";
  shown.typed = typed;
  refresh();
}

// `shown.playing` is an object of its own for each run, so that a step of an older one ends it.
function play(on = !shown.playing) {
  const run = on ? {} : null;
  shown.playing = run;
  element("play").textContent = on ? "Pause" : "Play";
  if (!on) return;
  const step = async () => {
    if (shown.playing !== run) return;
    await chooseState((shown.state + 1) % page.states.length);
    setTimeout(step, 250);
  };
  step();
}

function setTheme(name) {
  document.documentElement.dataset.theme = name;
  refresh();
}

const switchTheme = () => setTheme(document.documentElement.dataset.theme === "dark" ? "light" : "dark");

function standardView(number) {
  const [, azimuth, elevation] = STANDARD_VIEWS[number];
  camera.reset(boxOf(drawnSurfaces()), azimuth, elevation);
  refresh();
}

function resetView() {
  camera.home(boxOf(drawnSurfaces()));
  refresh();
}

const stateText = (state) => `time ${state.folder || numberText(state.time, 8)}`;

// The picture with its background and a caption, as a file.
function savePicture() {
  const { canvas } = renderer;
  draw(true);
  const picture = make("canvas", "", { width: canvas.width, height: canvas.height });
  const context = picture.getContext("2d");
  const background = context.createLinearGradient(0, 0, 0, canvas.height);
  background.addColorStop(0, themeColor("--scene-top"));
  background.addColorStop(1, themeColor("--scene-bottom"));
  context.fillStyle = background;
  context.fillRect(0, 0, canvas.width, canvas.height);
  context.drawImage(canvas, 0, 0);
  context.drawImage(overlay.canvas, 0, 0);
  draw();
  return new Promise((resolve) => picture.toBlob(resolve, "image/png"));
}

async function downloadPicture() {
  const address = URL.createObjectURL(await savePicture());
  const state = page.states[drawn.state];
  make("a", "", {
    href: address,
    download: `${page.name}${state ? "-" + (state.folder || state.time) : ""}.png`,
  }).click();
  setTimeout(() => URL.revokeObjectURL(address), 10000);
}

function connectControls() {
  const on = (id, event, action) => element(id).addEventListener(event, action);
  const onChange = (id, take, event = "change") =>
    on(id, event, () => {
      take(element(id));
      refresh();
    });
  element("result").append(
    ...page.results.map((result, i) => make("option", resultTitle(result), { value: i })),
    make("option", page.results.length === 0 ? "no result" : "plain", { value: -1 }),
  );
  element("map").append(...Object.keys(COLOR_MAPS).map((name) => make("option", name)));
  onChange("result", ({ value }) => chooseResult(Number(value)));
  onChange("component", ({ value }) => (shown.component = Number(value)));
  onChange("range", ({ value }) => Object.assign(shown, { rangeMode: value, typed: drawn.range }));
  for (const id of ["least", "greatest"]) on(id, "change", readRange);
  onChange("map", ({ value }) => (shown.map = value));
  onChange("edges", ({ checked }) => (shown.edges = checked));
  onChange("clip", ({ value }) => (shown.clipAxis = value === "" ? -1 : Number(value)));
  onChange("clip-place", ({ value }) => (shown.clipPlace = value / 1000), "input");
  onChange("clip-flip", ({ checked }) => (shown.clipFlip = checked));
  onChange("perspective", ({ checked }) => (camera.perspective = checked));
  element("views").append(
    ...STANDARD_VIEWS.map(([name], i) => {
      const button = make("button", name, { type: "button", title: `Key ${i + 1}` });
      button.addEventListener("click", () => standardView(i));
      return button;
    }),
  );
  const reset = make("button", "Reset", { type: "button", title: "Key 0" });
  reset.addEventListener("click", resetView);
  element("views").append(reset);
  element("state").max = Math.max(page.states.length - 1, 0);
  element("states").hidden = page.states.length < 2;
  on("state", "input", () => {
    play(false);
    chooseState(Number(element("state").value));
  });
  on("play", "click", () => play());
  on("save", "click", downloadPicture);
  on("theme", "click", switchTheme);
  on("help-button", "click", () => element("help").showModal());
  for (const [button, panel] of [
    ["groups-button", "groups"],
    ["settings-button", "settings"],
  ]) {
    on(button, "click", () => element(button).setAttribute("aria-expanded", element(panel).classList.toggle("open")));
  }
  element("precision").textContent =
    page.bits === 16
      ? "Coordinates and values are kept in 16 bits: 65532 equal steps of the range of each array."
      : "Coordinates and values are kept as floats of 32 bits.";
}

// Brings the controls in line with what is shown.
function updateControls() {
  const state = page.states[shown.state];
  element("state").value = shown.state;
  element("state-name").textContent = state ? stateText(state) : "";
  element("title").textContent = [
    page.title === page.name ? "" : page.title,
    state && page.states.length < 2 ? stateText(state) : "",
  ]
    .filter(Boolean)
    .join(", ");
  element("range").value = shown.rangeMode;
  const isTyping = ["least", "greatest"].includes(document.activeElement.id);
  ["least", "greatest"].forEach((id, i) => {
    element(id).disabled = shown.result < 0;
    if (isTyping) return;
    element(id).value = Number.isFinite(drawn.range[i]) ? String(Number(drawn.range[i].toPrecision(9))) : "";
    element(id).setAttribute("aria-invalid", "false");
    element(id).title = "";
  });
  element("map").value = shown.map;
  element("edges").checked = shown.edges;
  element("perspective").checked = camera.perspective;
  element("clip").value = shown.clipAxis < 0 ? "" : shown.clipAxis;
  element("clip-row").hidden = shown.clipAxis < 0;
  element("clip-place").value = Math.round(shown.clipPlace * 1000);
  element("clip-value").textContent =
    shown.clipAxis < 0
      ? ""
      : `${COORDINATE_NAMES[shown.clipAxis]} = ${numberText(clipPosition() + page.origin[shown.clipAxis])}`;
}

// SPDX-License-Identifier: MIT
// Mouse, touch and keyboard.

const TURN_STEP = 10; // degrees for a key

function connectInput(canvas) {
  const pointers = new Map();
  let travelled = 0;

  canvas.addEventListener("pointerdown", (event) => {
    canvas.focus({ preventScroll: true, focusVisible: false });
    canvas.setPointerCapture(event.pointerId);
    if (pointers.size === 0) travelled = 0;
    pointers.set(event.pointerId, [event.offsetX, event.offsetY]);
  });
  canvas.addEventListener("pointermove", (event) => {
    const before = pointers.get(event.pointerId);
    if (!before) return;
    const now = [event.offsetX, event.offsetY];
    travelled += Math.hypot(now[0] - before[0], now[1] - before[1]);
    const other = [...pointers].find(([id]) => id !== event.pointerId);
    pointers.set(event.pointerId, now);
    const [dx, dy] = [now[0] - before[0], now[1] - before[1]];
    if (other) pinch(before, now, other[1]);
    else if (event.buttons === 1 && !event.shiftKey) camera.turn(dx * 0.4, dy * 0.4);
    else camera.move(dx / canvas.clientHeight, dy / canvas.clientHeight);
    requestDraw();
  });
  const release = (event) => {
    const isClick = pointers.size === 1 && travelled < 4 && event.type === "pointerup" && event.button === 0;
    pointers.delete(event.pointerId);
    if (isClick) pickAt(event.offsetX, event.offsetY);
  };
  canvas.addEventListener("pointerup", release);
  canvas.addEventListener("pointercancel", release);
  canvas.addEventListener("contextmenu", (event) => event.preventDefault());
  canvas.addEventListener(
    "wheel",
    (event) => {
      event.preventDefault();
      const pixels = event.deltaMode === 1 ? event.deltaY * 16 : event.deltaY;
      camera.zoom(
        Math.exp(Math.max(-100, Math.min(100, pixels)) * 0.0015),
        ...fromMiddle(event.offsetX, event.offsetY),
        renderer.aspect(),
      );
      requestDraw();
    },
    { passive: false },
  );
  canvas.addEventListener("dblclick", resetView);
  document.addEventListener("keydown", onKey);

  // Two fingers: their middle moves the picture, their distance zooms.
  function pinch(before, now, other) {
    const distance = (a) => Math.max(Math.hypot(a[0] - other[0], a[1] - other[1]), 10);
    camera.move((now[0] - before[0]) / 2 / canvas.clientHeight, (now[1] - before[1]) / 2 / canvas.clientHeight);
    const middle = [(now[0] + other[0]) / 2, (now[1] + other[1]) / 2];
    camera.zoom(distance(before) / distance(now), ...fromMiddle(...middle), renderer.aspect());
  }

  // A place of the canvas from -1 to 1 to the right and up.
  function fromMiddle(x, y) {
    return [(2 * x) / canvas.clientWidth - 1, 1 - (2 * y) / canvas.clientHeight];
  }

  // True for a key that the control with the focus needs for itself.
  function keepsKey({ target, key }) {
    if (target.tagName === "SELECT" || target.matches("input:not([type])")) return true;
    return ["INPUT", "BUTTON"].includes(target.tagName) && (key === " " || key === "Enter" || key.startsWith("Arrow"));
  }

  function onKey(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || element("help").open || keepsKey(event)) return;
    const turn = { ArrowLeft: [1, 0], ArrowRight: [-1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] }[event.key];
    const actions = {
      "+": () => camera.zoom(0.85),
      "=": () => camera.zoom(0.85),
      "-": () => camera.zoom(1 / 0.85),
      0: resetView,
      " ": () => page.states.length > 1 && play(),
      ",": () => chooseState(shown.state - 1),
      ".": () => chooseState(shown.state + 1),
      e: () => {
        shown.edges = !shown.edges;
      },
      p: () => {
        camera.perspective = !camera.perspective;
      },
      t: switchTheme,
      s: downloadPicture,
      "?": () => element("help").showModal(),
      Enter: () => pickAt(canvas.clientWidth / 2, canvas.clientHeight / 2),
      Escape: () => showPicked(null),
    };
    if (turn && event.shiftKey) camera.move(turn[0] * 0.05, turn[1] * 0.05);
    else if (turn) camera.turn(turn[0] * TURN_STEP, turn[1] * TURN_STEP);
    else if (/^[1-6]$/.test(event.key)) standardView(Number(event.key) - 1);
    else if (actions[event.key.toLowerCase()]) actions[event.key.toLowerCase()]();
    else if (actions[event.key]) actions[event.key]();
    else return;
    event.preventDefault();
    refresh();
  }
}

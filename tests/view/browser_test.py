#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Opens pages of several cases in headless Chromium and checks that they show what the library delivers.

usage: browser_test.py DDPHOST PLUGIN SOURCE_DIR
"""
import json
import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import chromium

if chromium.program() is None:
    print("skipped: there is no Chromium; Debian's package is chromium")
    sys.exit(77)

program, plugin, source = sys.argv[1:]
faults = 0

# What the checks need in the page besides its own functions.
TOOLS = """
var pixels = () => {
  draw();
  const { gl } = renderer;
  const bytes = new Uint8Array(4 * gl.drawingBufferWidth * gl.drawingBufferHeight);
  gl.readPixels(0, 0, gl.drawingBufferWidth, gl.drawingBufferHeight, gl.RGBA, gl.UNSIGNED_BYTE, bytes);
  return bytes;
};
var picture = () => {
  const bytes = pixels();
  let covered = 0, hash = 0;
  const colors = new Set();
  for (let i = 0; i < bytes.length; i += 4) {
    const color = bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2];
    hash = Math.imul(hash ^ color ^ bytes[i + 3], 16777619) + i | 0;
    if (bytes[i + 3] === 0) continue;
    ++covered;
    colors.add(color);
  }
  return { share: 4 * covered / bytes.length, colors: colors.size, hash };
};
var solid = (number) => {
  const { points, corners } = surfaces.get(number);
  const at = (i) => [0, 1, 2].map((k) => points[3 * corners[i] + k]);
  let volume = 0, area = 0, open = [0, 0, 0];
  for (let i = 0; i < corners.length; i += 3) {
    const [a, b, c] = [at(i), at(i + 1), at(i + 2)];
    const normal = cross(minus(b, a), minus(c, a));
    volume += dot(a, normal) / 6;
    area += Math.hypot(...normal) / 2;
    open = plusScaled(open, normal, 0.5);
  }
  return { volume, area, open: Math.hypot(...open) };
};
0
"""


def fault(text):
    global faults
    faults += 1
    print(text)


def expect(condition, text):
    if not condition:
        fault(text)


def ddphost(*arguments, code=0, environment={}):
    ended = subprocess.run([program, *map(str, arguments)], capture_output=True, text=True, check=False,
                           env={**os.environ, "DDP_PLUGIN": plugin, **environment})
    if ended.returncode != code:
        fault(f"{arguments}: ended with {ended.returncode} instead of {code}: {ended.stderr}")
    return ended


class View:
    """The page of one case in the browser."""

    def __init__(self, browser, case, page, *options):
        ddphost("view", case, "-o", page, *options)
        self.browser, self.case, self.name = browser, case, page.stem
        browser.open(page)
        browser.run(TOOLS)

    def run(self, script):
        return self.browser.run(script)

    def show(self, **changes):
        """Changes what is shown, waits, and returns what the picture is like."""
        for key, value in changes.items():
            if key == "result":
                self.run(f"chooseResult({value})")
            elif key == "groups":
                self.run(f"shown.visible = new Set({value}); 0")
            else:
                self.run(f"shown.{key} = {json.dumps(value)}")
        self.run("refresh()")
        return self.run("picture()")

    def expect(self, condition, text):
        expect(condition, f"{self.name}: {text}")

    def expect_no_errors(self):
        self.expect(not self.browser.errors, f"logged {self.browser.errors}")
        others = [url for url in self.browser.requests if not url.startswith(("file://", "about:"))]
        self.expect(not others, f"asked for {others}")


def same_number(shown, told):
    return math.isnan(shown) if told is None else shown == told


def check_figures(view):
    """The figures in the page are those of `stats`, for each result, state, group and component."""
    rows = json.loads(ddphost("stats", view.case, "--state", "all", "--set", "LOAD_FACE_ZONES=on", "--json").stdout)["rows"]
    figures = view.run("""Promise.all(page.results.flatMap((result, r) => result.components.flatMap((_, c) =>
        page.states.flatMap((state, s) => page.groups.map(async (group, g) => [[result.id, c, state.id, group.id],
            Object.entries(await figuresOf(r, c, s, g) || {}).map(([name, value]) => [name, String(value)])])))))""")
    shown = {tuple(key): {name: float(value) for name, value in pairs} for key, pairs in figures}
    zones = set(view.run("page.groups.filter((group) => group.kind === 'cell zone').map((group) => group.id)"))
    compared = set()
    for row in rows:
        key = (row["resultId"], row["component"], row["stateId"], row["groupId"])
        if row["items"] == 0 or key[0] not in {result for result, *_ in shown}:
            continue
        compared.add(key)
        for name in ("least", "mean", "greatest", "items", "undefined", "nan", "infinite"):
            there = shown.get(key, {}).get(name, math.inf)
            if not same_number(there, row[name]):
                view.expect(False, f"{key}: {name} is {there} instead of {row[name]}")
                return
    surplus = {key for key, values in shown.items() if values and key not in compared and key[3] not in zones}
    view.expect(compared and not surplus, f"compared {len(compared)} rows, but the page has also {sorted(surplus)[:3]}")


def groups_told(case):
    """The groups of `info` by their ids, wherever they are in the document."""
    found = {}

    def collect(value):
        if isinstance(value, dict) and "boundingBox" in value:
            found[value["id"]] = value
        for item in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
            collect(item)

    collect(json.loads(ddphost("info", case, "--counts", "--set", "LOAD_FACE_ZONES=on", "--json").stdout))
    return found


def check_groups(view):
    """Counts, types and boxes are those of `info`, and the tree has all names."""
    told = groups_told(view.case)
    words = view.run("element('tree').textContent")
    for number, group in enumerate(view.run("page.groups")):
        view.expect(group["name"] in words, f"{group['name']} is not in the tree")
        if group["kind"] == "cell zone":
            continue
        counts = told[group["id"]]
        view.expect((group["elements"], group["types"]) == (counts["elements"], counts["elementTypes"]),
                    f"{group['name']} has {group['elements']} {group['types']} instead of {counts}")
        box = view.run(f"""(async () => {{ const surface = new Surface({number}); surface.setPoints(await surface.pointsOf(-1));
            return boxOf([surface]).map((corner) => corner.map((value, k) => value + page.origin[k])); }})()""")
        far = max(abs(a - b) for one, other in zip(box, counts["boundingBox"]) for a, b in zip(one, other))
        size = math.dist(*counts["boundingBox"])
        view.expect(far <= 1e-6 * size, f"{group['name']} has the box {box} instead of {counts['boundingBox']}")


def check_outside(view):
    """The faces of each part and zone close and look outward, and the parts of a box fill it."""
    numbers = view.run("page.groups.flatMap((g, i) => (g.kind === 'part' || g.kind === 'cell zone') && g.faces ? [i] : [])")
    view.show(groups=numbers)
    total = 0
    for number in numbers:
        solid = view.run(f"solid({number})")
        view.expect(solid["open"] < 1e-4 * solid["area"] and solid["volume"] > 0, f"group {number} is open: {solid}")
        if view.run(f"page.groups[{number}].kind") == "part":
            total += solid["volume"]
    if view.name in ("regions", "moving"):  # on top of each other; no longer a box
        return
    box = math.prod(b - a for a, b in zip(*view.run("boxOf(drawnSurfaces())")))
    view.expect(abs(total / box - 1) < 1e-4, f"the parts have the volume {total} of {box}")


def check_colors(view):
    """The pixel of a picked place has the colour of its value, but for light."""
    for x, y in ((0.5, 0.5), (0.42, 0.46), (0.55, 0.58)):
        found = view.run(f"""(() => {{
          const {{ canvas }} = renderer;
          const [x, y] = [Math.floor(canvas.clientWidth * {x}), Math.floor(canvas.clientHeight * {y})];
          pickAt(x, y);
          const at = shown.picked;
          if (!at) return null;
          const value = at.surface.valueAt(at.triangle, at.weights);
          showPicked(null);
          const bytes = pixels(), first = 4 * ((canvas.height - 1 - y) * canvas.width + x);
          const part = Math.round(255 * Math.min(1, Math.max(0, (value - drawn.range[0]) / (drawn.range[1] - drawn.range[0]))));
          const table = colorTable(shown.map);
          return {{ value, range: drawn.range, pixel: [...bytes.subarray(first, first + 3)], wanted: [...table.subarray(4 * part, 4 * part + 3)] }};
        }})()""")
        if found is None:
            continue
        light = sum(found["pixel"]) / max(sum(found["wanted"]), 1)
        near = all(abs(p - w * light) < 8 for p, w in zip(found["pixel"], found["wanted"]))
        view.expect(0.5 < light < 1.05 and near, f"wrong colour: {found}")
        least, greatest = found["range"]
        slack = 1e-4 * (greatest - least)
        view.expect(least - slack <= found["value"] <= greatest + slack, f"a value out of its range: {found}")
        return
    view.expect(False, "nothing to pick in the middle")


def check_switches(view):
    """Each switch changes the picture, and switching back restores it."""
    start = view.show()
    view.expect(start["share"] > 0.05 and start["colors"] > 10, f"the picture is empty: {start}")
    results = view.run("page.results.length")
    parts = view.run("[...shown.visible]")
    patches = view.run("page.groups.flatMap((group, i) => group.kind === 'patch' && group.faces ? [i] : [])")
    first, result = view.run("[shown.state, shown.result]")
    # In its own range, a state that differs by a factor would look the same.
    ranged = view.show(rangeMode="all")
    view.expect(view.show(state=0)["hash"] != ranged["hash"], "the state does not change the picture")
    view.show(state=first, rangeMode="state")
    view.expect(view.show(result=(result + 2) % results)["hash"] != start["hash"], "the result does not change the picture")
    view.expect(view.show(result=-1)["colors"] < start["colors"], "no result still has colours")
    view.expect(view.show(result=result)["hash"] == start["hash"], "switching back does not restore the picture")
    view.expect(view.show(groups=[])["share"] == 0, "without groups there is still something")
    alone = [view.show(groups=[patch]) for patch in patches]
    view.expect(any(0 < one["share"] <= start["share"] for one in alone), "no patch shows by itself")
    view.expect(len({one["hash"] for one in alone}) > 1, "all patches look alike")
    view.show(groups=parts)
    view.expect(view.show(edges=True)["hash"] != start["hash"], "edges do not show")
    view.show(edges=False)
    for axis in range(3):
        low = view.show(clipAxis=axis, clipPlace=0.3)["share"]
        high = view.show(clipFlip=True)["share"]
        # One side may cover all that was seen.
        view.expect(min(low, high) < start["share"] and low + high > 0.5 * start["share"],
                    f"axis {axis}: {low} and {high} of {start['share']} are left")
        view.show(clipFlip=False, clipAxis=-1)
    view.expect(view.show(map="Grey")["hash"] != start["hash"], "the map does not change the picture")
    view.expect(view.show(map="Viridis")["hash"] == start["hash"], "the picture is not the same at the end")


def check_overlaps(view):
    """Changes that come while others are under way leave the picture of the last one, and nothing in between mixes."""
    values = "drawnSurfaces().map((surface) => surface.shown && [surface.shownValues, [...surface.shown.values]])"
    view.show(groups=view.run("page.groups.flatMap((group, i) => group.faces ? [i] : [])"), state=1)
    wanted = view.run(values)
    for delay in (0, 1, 3, 5, 8):
        view.run("shown.state = 0; kept.clear(); keptBytes = 0; refresh()")
        mixed = view.run(f"""(async () => {{
          const looks = new Set();
          const watch = setInterval(() => {{ draw(); looks.add(new Set(drawnSurfaces().map((s) => s.shownValues)).size); }}, 1);
          chooseState(1); chooseState(0);
          await new Promise((resolve) => setTimeout(resolve, {delay}));
          await chooseState(1);
          clearInterval(watch);
          return Math.max(...looks);
        }})()""")
        view.expect(view.run(values) == wanted, f"another state's values show after {delay} ms")
        view.expect(mixed == 1, f"{mixed} states were drawn side by side")
    view.show(result=-1)
    view.run("kept.clear(); keptBytes = 0; chooseResult(0); const load = refresh(); draw(); load")
    steps = view.run("""new Promise((resolve) => {
      const choose = chooseState, seen = [];
      chooseState = (number) => { seen.push(number); return choose(number); };
      play(true); play(false); play(true);
      setTimeout(() => { play(false); const now = seen.length; setTimeout(() => { chooseState = choose; resolve([now, seen.length]); }, 600); }, 1100);
    })""")
    view.expect(2 <= steps[0] <= 7 and steps[1] == steps[0], f"play, pause and play made {steps} steps in 1.1 s")
    view.expect_no_errors()


def check_input(view):
    browser = view.browser
    middle = view.run("(() => { const r = renderer.canvas.getBoundingClientRect(); return [r.x + r.width / 2, r.y + r.height / 2]; })()")
    browser.click(*middle)
    text = view.run("element('picked').hidden ? '' : element('picked').textContent")
    view.expect("Cell" in text and view.run("page.groups[0].name") in text, f"a click shows '{text}'")
    value = view.run("numberText(shown.picked.surface.valueAt(shown.picked.triangle, shown.picked.weights), 6)")
    view.expect(value in text, f"a click shows '{text}' without the value {value}")
    angle = view.run("camera.azimuth")
    browser.drag(*middle, 80, 20)
    view.expect(view.run("camera.azimuth") != angle, "dragging does not turn the view")
    height = view.run("camera.height")
    browser.call("Input.dispatchMouseEvent", type="mouseWheel", x=middle[0], y=middle[1], deltaX=0, deltaY=-100)
    browser.run("new Promise((resolve) => setTimeout(resolve, 100))")
    view.expect(view.run("camera.height") < height, "the wheel does not zoom")
    angle = view.run("camera.azimuth")
    for kind, x in (("touchStart", 0), ("touchMove", 40), ("touchMove", 80), ("touchEnd", None)):
        points = [] if x is None else [{"x": middle[0] + x, "y": middle[1]}]
        browser.call("Input.dispatchTouchEvent", type=kind, touchPoints=points)
    browser.run("new Promise((resolve) => setTimeout(resolve, 100))")
    view.expect(view.run("camera.azimuth") != angle, "a finger does not turn the view")
    state = view.run("shown.state")
    browser.press(",")
    view.expect(view.run("shown.state") == state - 1, "the comma does not go back")
    # A control that was clicked keeps only the keys that it needs.
    view.run("element('edges').focus()")
    browser.press("5")
    view.expect(view.run("camera.elevation") == 90, "5 is not the view from the top")
    browser.press("t")
    view.expect(view.run("document.documentElement.dataset.theme") == "dark", "t does not change the theme")
    browser.press("t")
    plays = view.run("""new Promise((resolve) => {
      const before = shown.state, end = performance.now() + 5000;
      const look = () => shown.state !== before || performance.now() > end ? resolve(shown.state !== before) : setTimeout(look, 10);
      play(true);
      look();
    }).finally(() => play(false))""")
    view.expect(plays, "play stays where it is")
    view.run("element('least').value = '1'; element('greatest').value = '2'; readRange(); refresh()")
    view.expect(view.run("drawn.range") == [1, 2], "a range typed in does not count")
    view.run("element('greatest').value = '0'; readRange()")
    view.expect(view.run("element('greatest').getAttribute('aria-invalid')") == "true", "a wrong range is not marked")
    view.run("shown.rangeMode = 'all'; refresh()")
    rows = view.run("chart.rows.map((row) => [row.figures.least, row.figures.greatest])")
    view.expect(view.run("drawn.range") == [min(a for a, _ in rows), max(b for _, b in rows)], "the range of all states")
    view.expect(view.run("(async () => { const f = await savePicture(); return f.type + ' ' + (f.size > 2000); })()")
                == "image/png true", "no picture to save")


def check_names(browser, folder):
    """Names are text, whatever they look like, and undefined values are grey and told."""
    case = folder / "a<img src=x onerror=alert(1)>"
    shutil.copytree(folder / "cases/zones", case)
    boundary = case / "constant/polyMesh/boundary"
    text = boundary.read_text()
    patch = json.loads(ddphost("info", case, "--json").stdout)["parts"][0]["patches"][0]["name"]
    boundary.write_text(text.replace(f"{patch}\n", "<script>\n", 1))
    for path in case.glob("*/T"):
        path.write_text(path.read_text().replace(f"{patch}\n", "<script>\n", 1))
    shutil.copy(case / "0.5/T", case / "0.5/<b>x<b>")
    last = case / "0.5/p"
    last.write_text(last.read_text()[:last.read_text().index("internalField")])
    view = View(browser, case, folder / "names.html")
    words = view.run("element('tree').textContent")
    view.expect("<script>" in words, f"the patch shows as '{words}'")
    view.expect(view.run("element('name').textContent") == case.name, "the name of the case")
    view.expect(view.run("document.querySelectorAll('img, b, #tree script').length") == 0, "a name became an element")
    pressure = view.run("page.results.findIndex((result) => result.field === 'p')")
    view.show(result=pressure, state=1)
    view.expect("undefined" in view.run("missingText(drawn.figures)"), "undefined values are not told")
    middle = view.run("(() => { const { canvas } = renderer, b = pixels(), i = 4 * ((canvas.height >> 1) * canvas.width + (canvas.width >> 1)); return [...b.subarray(i, i + 4)]; })()")
    view.expect(len(set(middle[:3])) == 1 and 60 < middle[0] < 150 and middle[3] == 255, f"undefined values show as {middle}")
    view.expect_no_errors()


def check_thin(browser, folder):
    """The back of a thin case does not show through its front."""
    case = folder / "thin"
    shutil.copytree(pathlib.Path(source, "examples/cavity"), case)
    points = case / "constant/polyMesh/points"
    points.write_text(re.sub(r"^\((\S+) (\S+) (\S+)\)", lambda p: f"({p[1]} {p[2]} {float(p[3]) * 1e-4})", points.read_text(),
                             flags=re.M))
    view = View(browser, case, folder / "thin.html")
    for number, perspective in ((4, "true"), (4, "false"), (5, "true"), (5, "false")):
        view.run(f"camera.perspective = {perspective}; standardView({number})")
        colors = view.show(result=-1)["colors"]
        view.expect(colors < 4, f"the front of a thin case has {colors} colours")
    view.expect_no_errors()


def check_precision(browser, folder):
    """16 bits take less room, and each value is within half a step of its range."""
    case = folder / "cases/poly"
    sizes, values = [], []
    for bits in (32, 16):
        view = View(browser, case, folder / f"poly{bits}.html", "--precision", bits)
        sizes.append(view.run("page.blocks.reduce((sum, b, i) => sum + (b.components ? element('b' + i).textContent.length : 0), 0)"))
        values.append(view.run("""(async () => { const { base, values } = componentOf(await block(page.values[1][0][0]), 0);
            return [...values].map((value) => value + base); })()"""))
        view.expect_no_errors()
    step = (max(values[0]) - min(values[0])) / 65531
    worst = max(abs(a - b) for a, b in zip(*values))
    expect(worst < 0.51 * step, f"16 bits are off by {worst / step} steps")
    expect(sizes[1] < 0.7 * sizes[0], f"16 bits take {sizes[1]} of {sizes[0]} characters")


def check_saved_picture(folder):
    """The program's own picture shows the case, too."""
    target = folder / "picture.png"
    scratch = folder / "scratch"
    scratch.mkdir()
    ddphost("view", folder / "cases/mixed", "--png", target, environment={"TMPDIR": str(scratch)})
    picture = chromium.Picture(target.read_bytes())
    middle = {picture.pixel(x, y) for x in range(600, 1000, 20) for y in range(400, 600, 20)}
    expect(len(middle) > 5, f"the saved picture shows only {middle}")
    expect(not os.listdir(scratch), f"{os.listdir(scratch)} is left")


def main():
    with tempfile.TemporaryDirectory() as name, chromium.Chromium() as browser:
        folder = pathlib.Path(name)
        kinds = ("hex", "poly", "mixed", "zones", "regions", "decomposed", "moving", "surface")
        for kind in kinds:
            ddphost("sample", folder / "cases" / kind, "--kind", kind, "--cells", "200")
        cases = [folder / "cases" / kind for kind in kinds] + [pathlib.Path(source, "examples/cavity")]
        for case in cases:
            view = View(browser, case, folder / f"{case.name}.html")
            view.expect(view.run("element('message').textContent") == "", view.run("element('message').textContent"))
            check_groups(view)
            check_figures(view)
            check_colors(view)
            check_switches(view)
            if case.name in ("mixed", "cavity"):
                check_input(view)
                check_overlaps(view)
            check_outside(view)
            view.expect_no_errors()
        check_names(browser, folder)
        check_thin(browser, folder)
        check_precision(browser, folder)
        check_saved_picture(folder)
    print(f"{faults} faults")
    return 1 if faults else 0


sys.exit(main())

# SPDX-License-Identifier: MIT
"""A headless Chromium that is driven through its DevTools protocol, over a pipe, with Python's own modules only."""
import base64
import json
import os
import select
import shutil
import struct
import subprocess
import tempfile
import time
import zlib


def program():
    """The installed Chromium, or None."""
    names = ("chromium", "chromium-browser", "google-chrome", "google-chrome-stable")
    return next(filter(None, map(shutil.which, names)), None)


class Chromium:
    """One browser with one page. Keeps all that the page logs as an error, and each request that leaves the file."""

    def __init__(self, width=1200, height=800):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.errors = []
        self.requests = []
        self.count = 0
        self.rest = b""
        theirs_in, self.to = os.pipe()
        self.back, theirs_out = os.pipe()

        def take_pipes():
            # First out of the way, since either may be 3 or 4.
            for source, target in ((theirs_in, 103), (theirs_out, 104)):
                os.dup2(source, target)
            os.dup2(103, 3)
            os.dup2(104, 4)

        root = ["--no-sandbox"] if os.geteuid() == 0 else []
        self.process = subprocess.Popen(
            [program(), "--headless=new", "--remote-debugging-pipe", "--use-angle=swiftshader",
             "--enable-unsafe-swiftshader", "--hide-scrollbars", "--no-first-run", "--disable-background-networking",
             f"--user-data-dir={self.profile.name}", f"--window-size={width},{height}", *root, "about:blank"],
            preexec_fn=take_pipes, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(theirs_in)
        os.close(theirs_out)
        self.target = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.target = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(30)
        os.close(self.to)
        os.close(self.back)
        self.profile.cleanup()

    def call(self, method, **parameters):
        self.count += 1
        message = {"id": self.count, "method": method, "params": parameters}
        if self.target:
            message["sessionId"] = self.target
        os.write(self.to, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.count:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']['message']}")
                return answer["result"]
            self.note(answer)

    def receive(self, seconds=60):
        end = time.monotonic() + seconds
        while b"\0" not in self.rest:
            if not select.select([self.back], [], [], max(0, end - time.monotonic()))[0]:
                raise RuntimeError("Chromium does not answer")
            piece = os.read(self.back, 1 << 20)
            if not piece:
                raise RuntimeError("Chromium ended")
            self.rest += piece
        text, _, self.rest = self.rest.partition(b"\0")
        return json.loads(text)

    def note(self, event):
        parameters = event.get("params", {})
        if event["method"] == "Runtime.exceptionThrown":
            details = parameters["exceptionDetails"]
            self.errors.append(details.get("exception", {}).get("description", details["text"]))
        elif event["method"] == "Runtime.consoleAPICalled" and parameters["type"] in ("error", "warning", "assert"):
            self.errors.append(" ".join(str(a.get("value", a.get("description"))) for a in parameters["args"]))
        elif event["method"] == "Log.entryAdded" and parameters["entry"]["level"] in ("error", "warning"):
            self.errors.append(parameters["entry"]["text"])
        elif event["method"] == "Network.requestWillBeSent":
            self.requests.append(parameters["request"]["url"])

    def open(self, path, fragment=""):
        """Loads a page of a file and waits until it is drawn."""
        self.call("Page.navigate", url="about:blank")
        self.errors.clear()
        self.requests.clear()
        self.call("Page.navigate", url=path.resolve().as_uri() + fragment)
        while self.run("document.readyState !== 'complete'"):
            time.sleep(0.02)
        self.run("started")

    def run(self, script):
        """The value of a script, awaited."""
        answer = self.call("Runtime.evaluate", expression=script, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"]["exception"].get("description", script))
        return answer["result"].get("value")

    def press(self, key, shift=False):
        for kind in ("keyDown", "keyUp"):
            self.call("Input.dispatchKeyEvent", type=kind, key=key, text=key if len(key) == 1 and kind == "keyDown" else "",
                      modifiers=8 if shift else 0)
        self.run("running")

    def click(self, x, y):
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1, buttons=1)
        self.run("running")

    def drag(self, x, y, dx, dy):
        self.call("Input.dispatchMouseEvent", type="mousePressed", x=x, y=y, button="left", clickCount=1, buttons=1)
        for i in range(1, 6):
            self.call("Input.dispatchMouseEvent", type="mouseMoved", x=x + dx * i / 5, y=y + dy * i / 5, button="left",
                      buttons=1)
        self.call("Input.dispatchMouseEvent", type="mouseReleased", x=x + dx, y=y + dy, button="left", clickCount=1)
        self.run("new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)))")

    def screenshot(self, path=None):
        data = base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"])
        if path:
            path.write_bytes(data)
        return Picture(data)


class Picture:
    """The pixels of a PNG of 8-bit RGB or RGBA, as browsers write them."""

    def __init__(self, data):
        if data[:8] != b"\x89PNG\r\n\x1a\n":
            raise ValueError("not a PNG")
        place, packed = 8, b""
        while place < len(data):
            size, kind = struct.unpack_from(">I4s", data, place)
            body = data[place + 8:place + 8 + size]
            if kind == b"IHDR":
                self.width, self.height, depth, color = struct.unpack_from(">IIBB", body)
                if depth != 8 or color not in (2, 6):
                    raise ValueError("an unusual PNG")
                self.channels = 3 if color == 2 else 4
            elif kind == b"IDAT":
                packed += body
            place += size + 12
        self.rows = self.unfilter(zlib.decompress(packed))

    def unfilter(self, raw):
        stride, step = self.width * self.channels, self.channels
        rows, before = [], bytearray(stride)
        for y in range(self.height):
            kind = raw[y * (stride + 1)]
            row = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
            for i in range(stride) if kind else ():
                left = row[i - step] if i >= step else 0
                corner = before[i - step] if i >= step else 0
                if kind == 1:
                    guess = left
                elif kind == 2:
                    guess = before[i]
                elif kind == 3:
                    guess = (left + before[i]) // 2
                else:
                    base = left + before[i] - corner
                    guess = min((left, before[i], corner), key=lambda v: abs(base - v))
                row[i] = (row[i] + guess) & 255
            rows.append(row)
            before = row
        return rows

    def pixel(self, x, y):
        return tuple(self.rows[y][x * self.channels:x * self.channels + 3])

#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Types at the prompt of a shell, presses Tab, and compares the command line that the program then gets.

usage: completion_test.py SHELL DDPHOST PLUGIN SCRIPTS_DIR
"""
import os
import pathlib
import pty
import select
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SECONDS = 20
PROMPT = "READY>"
# The prompt in a form that does not look like it when the shell echoes the command.
PROMPT_TYPED = "REA''DY'>'"
FIELD = 'div(phi) "x"'

shell, program, plugin, scripts = sys.argv[1:]
quoted_scripts = shlex.quote(scripts)
if shutil.which(shell) is None:
    print(f"skipped: there is no {shell}")
    sys.exit(77)

# Each shell without the user's files, told to show our prompt and to load our script as an installed one is.
STARTS = {
    "bash": (["bash", "--norc", "--noprofile", "-i"],
             [f"PS1={PROMPT_TYPED}", f"source {quoted_scripts}/ddphost.bash"]),
    "zsh": (["zsh", "-f", "-i"],
            [f"PS1={PROMPT_TYPED}", f"fpath=({quoted_scripts} $fpath)", "autoload -Uz compinit", "compinit -u -D"]),
    "fish": (["fish", "--no-config", "--private", "-i"],
             [f"function fish_prompt; echo {PROMPT_TYPED}; end", f"source {quoted_scripts}/ddphost.fish"]),
}

# What is typed, with | for Tab, and the arguments of the program after Enter.
LINES = [
    ("inf|", ["info"]),
    ("info --cou|", ["info", "--counts"]),
    ("sample --kind dec|", ["sample", "--kind", "decomposed"]),
    ("sample --kind=dec|", ["sample", "--kind=decomposed"]),
    ("info --set LOAD_FA|on", ["info", "--set", "LOAD_FACE_ZONES=on"]),
    ("info --set LOAD_FACE_ZONES=of|", ["info", "--set", "LOAD_FACE_ZONES=off"]),
    ("info my|", ["info", "my case"]),
    ("--plugin=lib|", ["--plugin=library file.so"]),
    ("export -o my|", ["export", "-o", "my case"]),
    (r"stats my\ case --result d|", ["stats", "my case", "--result", FIELD]),
    ("stats 'my case' --result \"d|", ["stats", "my case", "--result", FIELD]),
    ("stats \"my case\" --result 'd|", ["stats", "my case", "--result", FIELD]),
    (r"stats my\ case --result=d|", ["stats", "my case", "--result=" + FIELD]),
    (r"stats my\ case --result div\(p|", ["stats", "my case", "--result", FIELD]),
    (r"stats ~/my\ case --result d|", ["stats", "HOME/my case", "--result", FIELD]),
    (r"stats my\ case --state first,1.|", ["stats", "my case", "--state", "first,1.5"]),
    (r"stats my\ case --part flo|", ["stats", "my case", "--part", "floor"]),
    # Nothing to offer, and so nothing but what was typed.
    ("stats absent --result d|", ["stats", "absent", "--result", "d"]),
    (r"stats broken\ case --result d|", ["stats", "broken case", "--result", "d"]),
    ("sample --cells my|", ["sample", "--cells", "my"]),
]


class Terminal:
    """A shell at a terminal of its own."""

    def __init__(self, arguments, folder):
        self.text = ""
        environment = {"HOME": folder, "PATH": f"{folder}/bin:{os.environ['PATH']}", "TERM": "xterm",
                       "DDP_PLUGIN": plugin, "LC_ALL": "C.UTF-8", "XDG_CONFIG_HOME": folder, "XDG_DATA_HOME": folder}
        self.child, self.terminal = pty.fork()
        if self.child == 0:
            os.chdir(folder)
            os.execvpe(arguments[0], arguments, environment)

    def type(self, text):
        os.write(self.terminal, text.encode())

    def read_until(self, condition):
        """Reads what the shell shows until the condition holds."""
        end = time.monotonic() + SECONDS
        while not condition():
            if time.monotonic() > end:
                sys.exit(f"{shell} does not answer; it showed\n{self.text}")
            if select.select([self.terminal], [], [], 0.02)[0]:
                self.text += os.read(self.terminal, 65536).decode(errors="replace")

    def wait_for_prompt(self):
        self.read_until(lambda: PROMPT in self.text)
        self.text = ""

    def close(self):
        os.kill(self.child, signal.SIGKILL)
        os.waitpid(self.child, 0)


def write_case(folder):
    """A sample with a field, a patch and a path that a shell would take apart."""
    case = pathlib.Path(folder, "my case")
    subprocess.run([program, "sample", str(case), "--cells", "60", "--states", "5"], check=True, capture_output=True)
    for state in case.glob("[0-9]*"):
        field = (state / "p").read_text()
        (state / FIELD).write_text(field.replace("object p", f"object {FIELD}"))
    shutil.copytree(case, pathlib.Path(folder, "broken case"))
    shutil.rmtree(pathlib.Path(folder, "broken case/constant"))
    pathlib.Path(folder, "library file.so").touch()


def write_program(folder):
    """A program that completes as the real one and otherwise notes its arguments."""
    pathlib.Path(folder, "bin").mkdir()
    path = pathlib.Path(folder, "bin/ddphost")
    path.write_text(f"""#!/bin/sh
[ "$1" != complete ] || exec '{program}' "$@"
printf '%s\\0' "$@" >"$HOME/noted"
mv "$HOME/noted" "$HOME/arguments"
""")
    path.chmod(0o755)


def try_lines(terminal, folder):
    """Returns how many lines came out wrong."""
    faults = 0
    noted = pathlib.Path(folder, "arguments")
    for line, expected in LINES:
        terminal.type("ddphost " + line.replace("|", "\t") + "\n")
        terminal.read_until(noted.exists)
        # Some shells take the slash of a folder back when the line ends there.
        words = noted.read_bytes().decode().replace(folder, "HOME").split("\0")[:-1]
        arguments = [word.rstrip("/") for word in words]
        if arguments != expected:
            faults += 1
            print(f"{shell}: {line} became {arguments} instead of {expected}; it showed\n{terminal.text}")
        noted.unlink()
        terminal.wait_for_prompt()
    return faults


with tempfile.TemporaryDirectory() as work:
    write_case(work)
    write_program(work)
    started, commands = STARTS[shell]
    at_prompt = Terminal(started, work)
    try:
        for command in commands:
            at_prompt.type(command + "\n")
        at_prompt.wait_for_prompt()
        wrong = try_lines(at_prompt, work)
    finally:
        at_prompt.close()
sys.exit(1 if wrong else 0)

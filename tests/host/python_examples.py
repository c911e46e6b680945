#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the example of docs/python.md for one module and compares what it prints with what the document says.

usage: python_examples.py MODULE DDPHOST PLUGIN SOURCE_DIR
"""
import importlib.util
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

module, program, plugin, source = sys.argv[1:]
document = pathlib.Path(source, "docs/python.md").read_text()
examples = re.findall(r"^```python\n(.*?)^```\n\n^```text\n(.*?)^```", document, re.MULTILINE | re.DOTALL)
chosen = [example for example in examples if re.search(rf"^(?:import|from) {module}\b", example[0], re.MULTILINE)]
if not chosen:
    sys.exit(f"docs/python.md has no example for {module}")
if importlib.util.find_spec(module) is None:
    print(f"skipped: this python3 has no {module}")
    sys.exit(77)
for code, expected in chosen:
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(f"{source}/examples/cavity", f"{folder}/cavity")
        path = f"{os.path.dirname(program)}:{os.environ['PATH']}"
        environment = {**os.environ, "DDP_PLUGIN": plugin, "PATH": path}
        ended = subprocess.run([sys.executable, "-c", code], cwd=folder, env=environment, capture_output=True, text=True,
                               check=False)
        if ended.returncode != 0 or ended.stdout != expected:
            sys.exit(f"ended with {ended.returncode} and printed\n{ended.stdout}{ended.stderr}instead of\n{expected}")

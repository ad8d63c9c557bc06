"""check_views.py gdb|lldb PROGRAM VIEWS: runs a debugger and compares what it shows with shown.txt."""

import glob
import os
import pathlib
import re
import subprocess
import sys

# Debian's lldb does not find its own Python package, nor another Python than Debian's.
PACKAGES = glob.glob("/usr/lib/llvm-*/lib/python3.*/dist-packages")
PACKAGES.append("/usr/lib/python3/dist-packages")


def output_of(names):
    """What the debugger says, with each object's part behind its @name:."""
    if debugger.endswith("gdb"):
        start = [debugger, "-nx", "--batch"]
        option = "-ex"
        commands = [f"source {views}", "set print elements 0", "break Show", "run", "up"]
        for name in names:
            commands += [f'printf "@{name}:"', f"output known::{name}"]
    else:
        start = [debugger, "--no-lldbinit", "--batch"]
        option = "-o"
        commands = [f"command script import {views}", "breakpoint set -n Show", "run", "up"]
        for name in names:
            commands += [f'script print("@{name}:")', f"expression -- known::{name}"]
    for command in commands:
        start += [option, command]
    result = subprocess.run([*start, program], capture_output=True, text=True, check=False, timeout=120,
                            env=dict(os.environ, PYTHONPATH=":".join(PACKAGES)))
    return result.stdout + result.stderr


def in_one_form(text):
    text = re.sub(r"0x[0-9a-f]+", "*", text)
    text = re.sub(r"\b(\d+) '\S+'|'(.)'", lambda m: m[1] or str(ord(m[2])), text)
    text = re.sub(r'[,"]', " ", text.replace("= {", " {").replace("{", " { ").replace("}", " } "))
    return re.sub(r"\s+", " ", text)


debugger, program, views = sys.argv[1:]
lines = pathlib.Path(__file__).with_name("shown.txt").read_text().splitlines()
wanted = dict(line.split(" ", 1) for line in lines if not line.startswith("#"))
output = in_one_form(output_of(wanted))
parts = {name: output.rpartition(f"@{name}:")[2].partition("@")[0] for name in wanted}
missing = [name for name in wanted if wanted[name] not in parts[name]]
sys.exit("\n".join(f"{name}: expected {wanted[name]}\nshown: {parts[name]}" for name in missing) or 0)

"""check_views.py gdb|lldb PROGRAM VIEWS: runs a debugger and compares what it shows."""

import glob
import os
import re
import subprocess
import sys

PYTHON_PACKAGES = ["/usr/lib/python3/dist-packages"]

# What is shown of each object, without commas and with * for addresses.
SHOWN = """
numbers size 3 capacity 4 { [0] = 3 [1] = -1 [2] = 4 }
noNumbers size 0 capacity 0
core size 3 capacity 4 elements of 4 bytes { [0] = 03 00 00 00 [1] = ff ff ff ff [2] = 04 00 00 00 }
records size 2 capacity 2 elements of 3 bytes { [0] = 00 00 00 [1] = 00 00 00 }
map size 3 { [-1] = -0.5 [3] = 3.5 [4] = 4.5 }
emptyMap size 0
tree size 3 { [0] = ff ff ff ff [1] = 03 00 00 00 [2] = 04 00 00 00 }
position at node * { value = (3 3.5)
end end
emptyEnd end
array 2 x 3 column-major owned { (0 0) = 7 (0 1) = 7 (0 2) = 7 (1 0) = 7 (1 1) = 7 (1 2) = 8 }
borrowed 1 x 2 row-major borrowed { (0 0) = 1 (0 1) = 2 }
pair (0 2)
list size 2 { [0] = 5 [1] = 5 }
pool HYLBasMemPoolMap 0 bytes in use 0 at most not active
broken size 7 { [0] = 97 [1] = 98 [2] = 99 [3] = 100 broken = * links to * which has another parent }
cyclic size 7 { [0] = 97 [1] = 98 [2] = 99 [3] = 100 [4] = 101 [5] = 102 [6] = 103 broken = more nodes than the size says at * }
"""


def run(debugger, program, views):
    names = [line.split()[0] for line in SHOWN.split("\n") if line]
    if debugger.endswith("gdb"):
        show = [f'printf "@{name}:"\noutput known::{name}' for name in names]
        commands = [f"source {views}", "set print elements 0", "break Show", "run", "up", *show]
        start = ["-nx", "--batch"]
        option = "-ex"
    else:
        show = [f'script print("@{name}:")\nexpression -- known::{name}' for name in names]
        commands = [f"command script import {views}", "breakpoint set -n Show", "run", "up", *show]
        start = ["--no-lldbinit", "--batch"]
        option = "-o"
    for command in "\n".join(commands).split("\n"):
        start += [option, command]
    # Debian's lldb does not find its own Python package, nor another Python than Debian's.
    packages = glob.glob("/usr/lib/llvm-*/lib/python3.*/dist-packages") + PYTHON_PACKAGES
    environment = dict(os.environ, PYTHONPATH=":".join(packages))
    result = subprocess.run(
        [debugger, *start, program], capture_output=True, text=True, timeout=120, env=environment
    )
    return result.stdout + result.stderr


def in_one_form(text):
    text = re.sub(r"0x[0-9a-f]+", "*", text)
    text = re.sub(r"\b(\d+) '\S+'|'(.)'", lambda m: m.group(1) or str(ord(m.group(2))), text)
    text = re.sub(r'[,"]', " ", text.replace("= {", " {").replace("{", " { ").replace("}", " } "))
    return re.sub(r"\s+", " ", text)


def main():
    output = in_one_form(run(*sys.argv[1:]))
    missing = []
    for line in SHOWN.strip().split("\n"):
        name, shown = line.split(" ", 1)
        part = output.rpartition(f"@{name}:")[2].partition("@")[0]
        if shown not in part:
            missing.append(f"expected: {name}: {shown}\nshown:    {part[:400]}")
    if missing:
        sys.exit("\n".join(missing))
    print(f"{len(SHOWN.strip().splitlines())} objects are shown as expected")


main()

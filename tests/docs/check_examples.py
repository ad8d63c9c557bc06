#!/usr/bin/env python3
"""check_examples.py PAGE WORK-DIR COMPILER [ARGUMENT...] - compiles and runs every ```cpp block of
the page, each a whole program, and compares what it prints with the ```text block that follows it
directly, or with nothing. The first ARGUMENTs stand before the source, those after -- behind it."""

import difflib
import pathlib
import re
import subprocess
import sys

PROGRAM = re.compile(r"^```cpp\n(.*?)^```\n(?:\n*```text\n(.*?)^```\n)?", re.DOTALL | re.MULTILINE)

page, work, *command = sys.argv[1:]
text = pathlib.Path(page).read_text()
work = pathlib.Path(work)
work.mkdir(parents=True, exist_ok=True)
command[command.index("--")] = "example.cpp"
for example in PROGRAM.finditer(text):
    source, expected = example.groups("")
    (work / "example.cpp").write_text(source)
    subprocess.run([*command, "-o", "example"], cwd=work, check=True)
    ran = subprocess.run(["./example"], cwd=work, stdout=subprocess.PIPE, text=True, check=True)
    line = text.count("\n", 0, example.start()) + 1
    if ran.stdout != expected:
        lines = (text.splitlines(keepends=True) for text in (expected, ran.stdout))
        sys.exit("".join(difflib.unified_diff(*lines, f"{page}:{line}", "printed")))
    print(f"{page}:{line}: as the page says")

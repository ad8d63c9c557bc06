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


def problem_of(source, expected, compile_command, work):
    (work / "example.cpp").write_text(source)
    before, after = compile_command
    for command in ([*before, "example.cpp", "-o", "example", *after], ["./example"]):
        ran = subprocess.run(command, cwd=work, capture_output=True, text=True, check=False)
        if ran.returncode != 0:
            return f"{command[0]} ended with {ran.returncode}:\n{ran.stdout}{ran.stderr}"
    lines = [text.splitlines(keepends=True) for text in (expected or "", ran.stdout)]
    return "".join(difflib.unified_diff(*lines, "in the page", "printed"))


def main():
    page, work, *command = sys.argv[1:]
    page, work, split = pathlib.Path(page), pathlib.Path(work), command.index("--")
    work.mkdir(parents=True, exist_ok=True)
    text = page.read_text()
    failed = False
    for example in PROGRAM.finditer(text):
        problem = problem_of(*example.groups(), (command[:split], command[split + 1 :]), work)
        line = text.count("\n", 0, example.start()) + 1
        print(f"{page}:{line}: {problem or 'as the page says'}")
        failed |= bool(problem)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Compiles misuse of the library and compares the compiler's first error with what it should say.

check_misuse.py CASES HEADER-FOLDER -- COMPILER [FLAG...]

CASES holds a paragraph for each misuse: its title, `good:` statements that must compile, `bad:`
statements that must not, and `says:` a part of the first error.
"""
import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile

PRELUDE = "#include <HYLBasGenerics.h>\n#include <string>\n#include <vector>\n"
OLD_LANGUAGE = "TARNHYLBasGenericsLib needs C++20"

split = sys.argv.index("--")
compiler = sys.argv[split + 1:] + ["-w", "-Wfatal-errors"]
folder = tempfile.TemporaryDirectory()
prelude = pathlib.Path(folder.name, "prelude.h")


def compile_text(source, *options):
    """What the compiler says about the source: nothing when it compiles."""
    result = subprocess.run(compiler + list(options) + ["-x", "c++", "-"], input=source, text=True,
                            capture_output=True)
    return "" if result.returncode == 0 else result.stderr or "no message"


def precompile():
    prelude.write_text(PRELUDE)
    subprocess.run(compiler + ["-std=c++20", "-x", "c++-header", str(prelude), "-o",
                               f"{prelude}.gch"], check=True)


def after_prelude(statements):
    return compile_text(statements, "-std=c++20", "-fsyntax-only", "-include", str(prelude))


def read_cases(path):
    text = "\n".join(line for line in path.read_text().splitlines() if not line.startswith("#"))
    for paragraph in filter(None, map(str.strip, text.split("\n\n"))):
        title, *fields = paragraph.splitlines()
        yield title, dict(field.split(": ", 1) for field in fields)


cases = list(read_cases(pathlib.Path(sys.argv[1])))
headers = sorted(header.name for header in pathlib.Path(sys.argv[2]).glob("*.h"))
precompile()
jobs = [("good statements", "", after_prelude, "".join(
    f"void Case{i}() {{\n#line 1 \"{title}\"\n{case['good']}\n}}\n"
    for i, (title, case) in enumerate(cases)))]
jobs += [(title, case["says"], after_prelude, f"void Misuse() {{ {case['bad']} }}\n")
         for title, case in cases]
jobs += [(header + " before C++20", OLD_LANGUAGE, lambda source: compile_text(
    source, "-std=c++17", "-E"), f"#include <{header}>\n") for header in headers]

failures = 0
with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    for (title, expected, _, _), said in zip(jobs, pool.map(lambda job: job[2](job[3]), jobs)):
        if bool(said) != bool(expected) or expected not in said:
            failures += 1
            print(f"{title}: expected {expected!r}, the compiler says {said!r}")
print(f"{len(cases)} kinds of misuse, {len(headers)} headers, {failures} failures")
sys.exit(failures != 0 or not cases or not headers)

#!/usr/bin/env python3
"""Compiles misuse of the library and compares the compiler's first error with what it should say.

check_misuse.py CASES HEADER-FOLDER -- COMPILER [FLAG...]

CASES holds a paragraph for each misuse: its title, `good:` statements that must compile, `bad:`
statements that must not, and `says:` a part of the first error.
"""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

PRELUDE = "#include <HYLBasGenerics.h>\n#include <string>\n#include <vector>\n"
OLD_LANGUAGE = "TARNHYLBasGenericsLib needs C++20"


def said_of(source, *options):
    """What the compiler says about the source: nothing when it compiles."""
    command = [*compiler, "-w", "-Wfatal-errors", *options, "-"]
    result = subprocess.run(command, input=source, text=True, capture_output=True, check=False)
    return "" if result.returncode == 0 else result.stderr or "no message"


def failure_of(job):
    title, expected, source, *options = job
    said = said_of(source, *options)
    if expected not in said or bool(said) != bool(expected):
        return f"{title}: expected {expected!r}, the compiler says {said!r}"
    return None


def jobs(prelude):
    """[title, part of the error, source, compiler's options...]"""
    current = ["-std=c++20", "-fsyntax-only", "-include", prelude, "-x", "c++"]
    text = re.sub("^#.*\n", "", cases.read_text(), flags=re.MULTILINE)
    good = ""
    for number, paragraph in enumerate(text.strip().split("\n\n")):
        title, *fields = paragraph.strip().splitlines()
        case = dict(field.split(": ", 1) for field in fields)
        good += f"#line 1 \"{title}\"\nvoid Case{number}() {{ {case['good']} }}\n"
        yield title, case["says"], f"void Misuse() {{ {case['bad']} }}\n", *current
    yield "good statements", "", good, *current
    for header in headers.glob("*.h"):
        include = f"#include <{header.name}>\n"
        yield header.name, OLD_LANGUAGE, include, "-std=c++17", "-E", "-x", "c++"


cases, headers, _, *compiler = sys.argv[1:]
cases, headers = pathlib.Path(cases), pathlib.Path(headers)
with tempfile.TemporaryDirectory() as work:
    prelude = f"{work}/prelude.h"
    pathlib.Path(prelude).write_text(PRELUDE)
    make = [*compiler, "-w", "-std=c++20", "-x", "c++-header", prelude, "-o", f"{prelude}.gch"]
    subprocess.run(make, check=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failures = list(filter(None, pool.map(failure_of, jobs(prelude))))
sys.exit("\n".join(failures) or 0)

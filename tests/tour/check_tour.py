#!/usr/bin/env python3
"""check_tour.py COMMAND... - runs the tour on whole, broken and foreign files."""

import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
FILES = HERE.parent / "data/text"
NILE = HERE.parent.parent / "examples/data/nile.mtx"
EXAMPLE = r"\n\nA vector file has a banner, .*%%MatrixMarket vector array integer\n"
HAS_DEVICES = not sys.argv[-1].endswith(".exe")  # Windows knows none by these names


def run(arguments, **streams):
    """Status, report and messages."""
    streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **streams}
    result = subprocess.run([*sys.argv[1:], *map(str, arguments)], cwd=FILES, **streams)
    texts = [(text or b"").decode().replace("\r\n", "\n") for text in (result.stdout, result.stderr)]
    return result.returncode, *texts


def check(arguments, report, messages=""):
    ran = run(arguments)
    for expected, found in zip((str(int(not report)), report, messages), map(str, ran)):
        if not re.fullmatch(expected, found, re.DOTALL):
            sys.exit(f"tour {arguments}: {expected!r} is not {found!r}")


report = re.escape((HERE / "nile.txt").read_text())
check([], report)
check([NILE, "1871"], report)
for line in (HERE / "cases.txt").read_text().splitlines():
    if line.startswith("#") or (line.startswith("/dev") and not HAS_DEVICES):
        continue
    arguments, report, message = map(str.strip, line.split("|"))
    arguments = [word.replace("NILE", str(NILE)) for word in arguments.split()]
    message = message.replace("FILE", re.escape(arguments[0])).replace("EXAMPLE", EXAMPLE)
    check(arguments, report and f".*{report}.*", message and f"tour: {message}")

for path in sorted(FILES.glob("*/*.mtx")):
    status, report, messages = run([path])
    if status not in (0, 1) or re.search("[^\n -~\x80-\U0010ffff]", report + messages):
        sys.exit(f"tour {path}: {status} {report!r} {messages!r}")
if HAS_DEVICES and pathlib.Path("/dev/full").exists():
    with open("/dev/full", "w") as full:
        status, _, messages = run([], stdout=full)
    if status != 1 or "the report cannot be written" not in messages:
        sys.exit(f"tour >/dev/full: {status} {messages!r}")

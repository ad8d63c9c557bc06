#!/usr/bin/env python3
"""check_tour.py COMMAND... - runs the tour on whole, broken and foreign files."""

import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
FILES = HERE.parent / "data/text"
NILE = HERE.parent.parent / "examples/data/nile.mtx"
HAS_DEVICES = not sys.argv[-1].endswith(".exe")  # Windows knows none by these names

RIGHT = [  # arguments, expected in the report, expected on the error stream
    (["accepted/no-banner.mtx", "-44"], r"3 values, -44 to -42\n.*mean +-98.83\n.*highest +2.5  in -43\n.*lowest +-300  in -42\n.*Read back: 3 values", ""),
    (["accepted/comment-of-254.mtx"], r"1 value, 1871 to 1871\n.*Read back: 1 value,", ""),
    (["tolerated/skipped-lines.mtx"], "Read back", r'tour: .*skipped-lines.mtx: skipping 4 lines without a number; the first is line 7: "nothing"\n'),
    (["tolerated/decimal-comma.mtx"], "Read back", r'tour: .*: leaving out what follows the number in 2 lines; the first is line 3: "  3,250000"\n'),
    (["--help"], r"Usage: tour .*%%MatrixMarket vector array integer\n.*3 1 3\n", ""),
]
SIZES = "must be three integers, rows, columns and values, and is "
EXAMPLE = r".*\n\nA vector file has a banner, .*%%MatrixMarket vector array integer\n"
BROKEN = [  # file, expected behind its name
    ("missing.mtx", "cannot be opened: No such file"),
    ("accepted", "this is a folder"),
    ("refused/empty.mtx", "the file is empty" + EXAMPLE),
    ("refused/only-comments.mtx", "the file ends before its size line" + EXAMPLE),
    ("refused/words.mtx", f'line 2 {SIZES}"three one three"' + EXAMPLE),
    ("refused/two-integers.mtx", f'line 2 {SIZES}"3 1": the number of values is missing'),
    ("refused/binary.mtx", f'line 1 {SIZES}"\\?PNG"'),
    ("refused/utf-16.mtx", "line 1 holds a byte of value 0: this is no text file"),
    ("refused/byte-order-mark.mtx", "line 1 begins with a byte-order mark"),
    ("refused/carriage-returns.mtx", "line 1 holds carriage returns"),
    ("refused/comment-of-255.mtx", "line 2 has more than 254 characters"),
    ("accepted/empty-vector.mtx", "line 2 announces 0 values, and at least one is needed"),
    ("tolerated/coordinate.mtx", 'line 1 announces the format "coordinate"; only "array" can be read'),
    ("tolerated/complex.mtx", 'line 1 announces values that are "complex"'),
    ("tolerated/banner-of-three-words.mtx", "line 1 is a banner of fewer than four words"),
    ("tolerated/count-negative.mtx", "line 2 announces -1 values"),
    ("tolerated/count-over-32-bits.mtx", "line 2 announces 4294967298 values, more than the 6 bytes"),
    ("tolerated/more-values.mtx", "it announces 2 values and holds 4"),
    ("tolerated/not-numbers-integer.mtx", 'skipping 2 lines .* line 3: "nan"\n.*: it announces 2 values and holds 1'),
    ("tolerated/not-numbers.mtx", ".*\n.*not-numbers.mtx: value 1 is nan, which cannot be charted"),
    ("tolerated/integer-range.mtx", 'line 3 holds an integer beyond 32 bits: "4294967297"'),
]
if HAS_DEVICES:
    BROKEN.append(("/dev/null", "this is no ordinary file"))
MISUSES = [([NILE, year], f'"{year}" is no year') for year in ("year", "18x", "1871.5", "99999999999", "1000000")]
MISUSES += [(["--x"], '"--x" is no option'), (["a", "1", "2"], "too many arguments")]


def run(arguments, **options):
    command = [*sys.argv[1:], *map(str, arguments)]
    return subprocess.run(command, stderr=subprocess.PIPE, cwd=FILES, **{"stdout": subprocess.PIPE, **options})


def check(arguments, status, output, errors):
    result = run(arguments)
    texts = [stream.decode("utf-8").replace("\r\n", "\n") for stream in (result.stdout, result.stderr)]
    for expected, text in zip((output, errors), texts):
        if result.returncode != status or not re.fullmatch(expected, text, re.DOTALL):
            sys.exit(f"tour {arguments} ended with {result.returncode}:\n{texts[0]}---\n{texts[1]}---\nnot {expected}")


report = re.escape((HERE / "nile.txt").read_text())
check([], 0, report, "")
check([NILE, "1871"], 0, report, "")
for arguments, output, errors in RIGHT:
    check(arguments, 0, f".*{output}.*", errors)
for name, message in BROKEN:
    check([name], 1, "", f"tour: {re.escape(name)}: {message}.*")
for arguments, message in MISUSES:
    check(arguments, 1, "", f"tour: {message}.*Usage: .*")

for path in sorted(FILES.glob("*/*.mtx")):
    result = run([path])
    if result.returncode not in (0, 1) or re.search(rb"[^\n\r -~\x80-\xff]", result.stdout + result.stderr):
        sys.exit(f"tour {path}: {result}")
if HAS_DEVICES and pathlib.Path("/dev/full").exists():
    with open("/dev/full", "w") as full:
        result = run([], stdout=full)
    if result.returncode != 1 or b"the report cannot be written" not in result.stderr:
        sys.exit(f"tour >/dev/full: {result}")

"""The pictures of `tools/bench --plot`: how the time of one operation grows with the number of elements."""

import datetime
import importlib.util
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

SIZES = [16, 50, 200, 1000, 5000, 20000, 100000, 300000, 1000000, 3000000, 10000000]
TABLE_SIZES = [1000, 100000, 1000000]

# A picture for each family: its panels' headings and cases.
FAMILIES = {
    "sort": {
        "sort random int": "sort/random/int",
        "sort random 64-bit integers": "sort/random/int64",
        "sort random pairs of int": "sort/random/pair",
    },
    "map": {
        "insert random keys": "map/insert random/int-double",
        "find random keys": "map/find hit/int-double",
        "iterate": "map/iterate/int-double",
        "memory of map<int, double>": "memory/map/int-double",
    },
    "vector": {
        "push_back": "vector/push_back/int",
        "iterate": "vector/begin-end loop/int",
        "insert one in the middle": "vector/insert 1/int",
        "memory of vector<int>": "memory/vector/int",
    },
    "text": {
        "write double": "text/write/double",
        "read double": "text/read/double",
        "write int": "text/write/int",
        "read int": "text/read/int",
    },
}
# The same colour for the same peer everywhere.
COLOURS = ["#d62728", "#1f77b4", "#2ca02c", "#9467bd", "#8c564b", "#7f7f7f"]


def require_matplotlib():
    """Installs it; goes on in Debian's own Python, to which it belongs, where this is another."""
    subprocess.run([ROOT / "tools/bootstrap", "plot"], check=True, stdout=sys.stderr)
    debian = pathlib.Path("/usr/bin/python3")
    if importlib.util.find_spec("matplotlib") is None and debian.resolve() != pathlib.Path(sys.executable).resolve():
        os.execv(debian, [debian, *sys.argv])


def cases_of(cases):
    """Those of `cases` that a picture shows."""
    shown = {name for panels in FAMILIES.values() for name in panels.values()}
    return {case: peers for case, peers in cases.items() if case.rsplit("/", 1)[0] in shown}


def curves(medians, name):
    """{who: ([size], [median])} of the case's measurements {case: {who: median}}."""
    found = {}
    for case, times in medians.items():
        if case.rsplit("/", 1)[0] == name:
            for who, time in times.items():
                sizes, values = found.setdefault(who, ([], []))
                sizes.append(int(case.rsplit("/", 1)[1]))
                values.append(time)
    return found


def draw_panel(axes, heading, name, medians):
    for (who, (sizes, values)), colour in zip(curves(medians, name).items(), COLOURS):
        width = 2.2 if who == "ours" else 1.2
        axes.plot(sizes, values, label=who, color=colour, linewidth=width, marker="o", markersize=3)
    axes.set_title(heading, fontsize=10)
    axes.set_xscale("log")
    axes.set_xlabel("elements")
    if name.startswith("memory/"):
        axes.set_ylabel("bytes for an element")
        axes.set_ylim(bottom=0)
    else:
        axes.set_ylabel("ns for an element" if "insert 1" not in name else "ns for an insertion")
        axes.set_yscale("log")
    axes.grid(True, which="major", linewidth=0.4)
    axes.legend(fontsize=8)


def draw(medians, folder):
    """Writes one picture a family and returns their paths."""
    import matplotlib

    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.hashsalt": "bench", "svg.fonttype": "none", "font.size": 9})
    from matplotlib import pyplot

    folder.mkdir(parents=True, exist_ok=True)
    paths = []
    for family, panels in FAMILIES.items():
        panels = {heading: name for heading, name in panels.items() if curves(medians, name)}
        if not panels:
            continue
        figure = pyplot.figure(figsize=(7.4, 3.4 * -(-len(panels) // 2)), layout="constrained")
        for place, (heading, name) in enumerate(panels.items()):
            axes = figure.add_subplot(-(-len(panels) // 2), 2, place + 1)
            draw_panel(axes, heading, name, medians)
        paths.append(folder / f"{family}.svg")
        figure.savefig(paths[-1], metadata={"Date": None})
        pyplot.close(figure)
    return paths


def machine():
    info = pathlib.Path("/proc/cpuinfo").read_text()
    model = re.search(r"model name\s*: (.*)", info).group(1)
    flags = re.search(r"flags\s*: (.*)", info).group(1).split()
    vectors = "AVX-512" if "avx512f" in flags else "AVX2" if "avx2" in flags else "SSE2"
    compiler = subprocess.run(["g++", "--version"], capture_output=True, text=True).stdout.splitlines()[0]
    today = datetime.date.today().isoformat()
    count = info.count("processor\t")
    return f"{today}, {model}, {count} processors with {vectors}, {platform.system()}, {compiler}"


def table(medians, text_of):
    """The medians at a few sizes, as Markdown; `text_of(case, median)` with its unit."""
    lines = ["| | elements | ours | peers (our time over theirs) |", "|---|---|---|---|"]
    for panels in FAMILIES.values():
        for name in panels.values():
            for size in TABLE_SIZES:
                times = medians.get(f"{name}/{size}", {})
                if "ours" in times:
                    ours = times["ours"]
                    peers = ", ".join(
                        f"{who} {text_of(name, time).strip()} ({ours / time:.2f})"
                        for who, time in times.items()
                        if who != "ours"
                    )
                    lines.append(f"| {name} | {size:,} | {text_of(name, ours).strip()} | {peers} |")
    return "\n".join(lines)


def fill_in(path, text):
    """Puts `text` between the marks of the document."""
    mark = r"(<!-- tools/bench --plot -->\n).*?(<!-- end -->)"
    document, count = re.subn(mark, lambda m: m[1] + text + "\n" + m[2], path.read_text(), flags=re.S)
    if count != 1:
        raise SystemExit(f"bench: {path} has no single place for the table")
    path.write_text(document)


def publish(measured, folder, document, text_of):
    """`measured` is {case: {who: [values]}}."""
    medians = {
        case: {who: statistics.median(values) for who, values in peers.items()}
        for case, peers in measured.items()
    }
    paths = draw(medians, folder)
    fill_in(document, f"\nMeasured on {machine()}.\n\n{table(medians, text_of)}\n")
    return paths

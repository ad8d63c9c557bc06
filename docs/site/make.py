#!/usr/bin/env python3
"""make.py OUT - makes the site OUT/html/index.html of the pages and the headers' comments. Any
warning of doxygen or Sphinx fails it."""

import pathlib
import re
import shutil
import subprocess
import sys

SITE = pathlib.Path(__file__).resolve().parent
ROOT = SITE.parent.parent
ORDER = """briefdescription detaileddescription derivedcompoundref innerclass user-defined
  public-type public-func public-static-func public-attrib public-static-attrib
  protected-type protected-func protected-static-func protected-attrib protected-static-attrib
  friend define typedef enum var func"""


def extract_comments(out):
    settings = (SITE / "Doxyfile").read_text() + f"\nOUTPUT_DIRECTORY = {out}\n"
    subprocess.run(["doxygen", "-"], cwd=ROOT, input=settings, text=True, check=True)


def stage_pages(pages):
    """Lays the pages out as in the repository, so that links between them hold here as there."""
    for page in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), *ROOT.glob("docs/plots/*.svg")]:
        target = pages / page.relative_to(ROOT)
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(page, target)
    if not (ROOT / "docs/plots").exists():
        page = pages / "docs/performance.md"
        page.write_text(re.sub(r"(?m)^!\[.*\]\(plots/.*\)\n", "", page.read_text()))
    (pages / "docs/README.md").unlink()  # a list of the pages, which index.md has too
    for page in SITE.glob("*.md"):
        shutil.copy(page, pages)


def write_reference(folder):
    """A page for each header."""
    folder.mkdir()
    for header in [*ROOT.glob("ProtectedInterfaces/*.h"), *ROOT.glob("HostInterfaces/*.h")]:
        (folder / f"{header.stem}.md").write_text(
            f"# {header.name}\n\n```{{doxygenfile}} {header.name}\n"
            f":sections: {' '.join(ORDER.split())}\n```\n")


def version():
    text = (ROOT / "ProtectedInterfaces/HYLBasVersion.h").read_text()
    return ".".join(re.findall(r"^#define HYLBAS_VERSION_[A-Z]+ (\d+)$", text, re.M))


def make(out):
    for folder in ("xml", "pages", "html"):
        shutil.rmtree(out / folder, ignore_errors=True)
    out.mkdir(parents=True, exist_ok=True)
    extract_comments(out)
    stage_pages(out / "pages")
    write_reference(out / "pages/reference")
    subprocess.run(["sphinx-build", "-q", "-n", "-W", "--keep-going", "-c", SITE,
                    "-d", out / "cache", "-D", f"release={version()}",
                    "-D", f"breathe_projects.headers={out / 'xml'}", out / "pages", out / "html"],
                   check=True)


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]).resolve())

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
  define typedef enum var func"""


def extract_comments(out):
    settings = (SITE / "Doxyfile").read_text() + f"\nOUTPUT_DIRECTORY = {out}\n"
    subprocess.run(["doxygen", "-"], cwd=ROOT, input=settings, text=True, check=True)


def stage_pages(pages):
    """Lays the pages out as in the repository, so that links between them hold here as there."""
    for page in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), *ROOT.glob("docs/plots/*.svg")]:
        target = pages / page.relative_to(ROOT)
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(page, target)
    (pages / "docs/README.md").unlink()  # a list of the pages, which the site has on its side
    shutil.copy(SITE / "index.md", pages)
    split_readme(pages)
    if not (ROOT / "docs/plots").exists():
        for page in [pages / "index.md", pages / "docs/performance.md"]:
            page.write_text(re.sub(r"(?m)^!\[.*\]\(.*plots/.*\)\n", "", page.read_text()))


def split_readme(pages):
    """Its opening belongs to the start page, and the rest is a page of its own."""
    opening, rest = (pages / "README.md").read_text().split("\n## ", 1)
    (pages / "opening.txt").write_text(opening.split("\n", 1)[1])
    (pages / "README.md").write_text(f"# Install and use\n\n## {rest}")


def first_sentence(header):
    comment = re.match(r"/// \\file\n((?:/// .*\n)+)", header.read_text()).group(1)
    return re.match(r".*?\.(?= |$)", comment.replace("///", "").replace("\n", "").strip()).group()


def write_reference(pages):
    """A page for each header, one for each group of them, and one for all groups."""
    folder = pages / "reference"
    folder.mkdir()
    headers = [*ROOT.glob("ProtectedInterfaces/*.h"), *ROOT.glob("HostInterfaces/*.h")]
    lines = {header.name: f"- [`{header.name}`](/reference/{header.stem}.md): "
                          f"{first_sentence(header)}" for header in headers}
    text = (SITE / "reference.md").read_text()
    for group in text.split("\n## ")[1:]:
        write_group(folder, group, lines)
    (pages / "reference.md").write_text(describe(text, lines))
    for header in headers:
        if not (folder / f"{header.stem}.md").exists():
            sys.exit(f"make.py: docs/site/reference.md does not name {header.name}")


def write_group(folder, group, lines):
    title = group.partition("\n")[0]
    headers = re.findall(r"(?m)^- (\w+)\.h$", group)
    guides = ", ".join(re.findall(r"\[[^]]+\]\(/docs/[^)]+\)", group))
    for header in headers:
        (folder / f"{header}.md").write_text(
            f"# {header}.h\n\n{guides and f'Guide: {guides}'}\n\n```{{doxygenfile}} {header}.h\n"
            f":sections: {' '.join(ORDER.split())}\n```\n")
    page = folder / f"{title.lower().replace(' ', '-')}.md"
    contents = "\n".join(["```{toctree}", ":hidden:", "", *headers, "```"])
    page.write_text(f"# {describe(group, lines)}\n\n{contents}\n")


def describe(text, lines):
    return re.sub(r"(?m)^- (\w+\.h)$", lambda match: lines[match[1]], text)


def make(out):
    for folder in ("xml", "pages", "cache", "html"):
        shutil.rmtree(out / folder, ignore_errors=True)
    out.mkdir(parents=True, exist_ok=True)
    extract_comments(out)
    stage_pages(out / "pages")
    write_reference(out / "pages")
    subprocess.run(["sphinx-build", "-q", "-n", "-W", "--keep-going", "-c", SITE,
                    "-D", f"breathe_projects.headers={out / 'xml'}",
                    "-d", out / "cache", out / "pages", out / "html"], check=True)


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]).resolve())

#!/usr/bin/env python3
"""check_site.py SOURCE-DIR WORK-DIR - makes the site and checks that it warns of nothing, describes
every class, gives members their own text (members.txt), shows and finds every member, has no broken
links and fetches nothing from elsewhere."""

import html
import pathlib
import re
import shutil
import subprocess
import sys
import urllib.parse
import xml.etree.ElementTree

SKIPPED = 77


def text_of(element):
    parts = (element.find(kind) for kind in ("briefdescription", "detaileddescription"))
    return " ".join("".join(part.itertext()) for part in parts if part is not None).strip()


def classes(xml_folder):
    for path in [*xml_folder.glob("class*.xml"), *xml_folder.glob("struct*.xml")]:
        yield path.stem, xml.etree.ElementTree.parse(path).getroot().find("compounddef")


def wrong_texts(xml_folder):
    texts = {}
    for stem, root in classes(xml_folder):
        if not text_of(root):
            yield f"{stem} has no description"
        for member in root.iter("memberdef"):
            name = f"{stem.removeprefix('class')}::{member.findtext('name')}"
            texts.setdefault(name, []).append(text_of(member))
    for line in pathlib.Path(__file__).with_name("members.txt").read_text().splitlines():
        name, _, start = line.partition(" ")
        if not any(text.startswith(start) if start else not text for text in texts[name]):
            yield f"{name}: {texts[name]}, expected {start!r}"


def missing_members(xml_folder, pages, index):
    shown = set(re.findall('id="([^"]+)"', "".join(pages.values())))
    for stem, root in classes(xml_folder):
        for member in root.iter("memberdef"):
            if member.get("prot") != "private":
                if member.get("id") not in shown:
                    yield f"{stem}: {member.findtext('name')} is not shown"
                if f'::{member.findtext("name")}"' not in index:
                    yield f"{stem}: {member.findtext('name')} is not found"


def broken_links(pages):
    anchors = {path: set(re.findall('(?:id|name)="([^"]+)"', text)) for path, text in pages.items()}
    for page, text in pages.items():
        for link in set(re.findall('(?:href|src)="(?![a-z]+:)([^"]+)"', text)):
            name, _, anchor = html.unescape(link).partition("#")
            name, _, _ = name.partition("?")
            target = (page.parent / urllib.parse.unquote(name)).resolve() if name else page
            if not target.exists() or (anchor and anchor not in anchors.get(target, [anchor])):
                yield f"{page.name}: broken link to {link}"
        for link in re.findall('<(?:link|script|img)[^>]*"(https?:[^"]*)', text):
            yield f"{page.name}: fetches {link}"


if shutil.which("doxygen") is None or shutil.which("sphinx-build") is None:
    print("skipped: doxygen or Sphinx is not installed")
    sys.exit(SKIPPED)
source, work = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
subprocess.run([sys.executable, source / "docs/site/make.py", work], check=True)
pages = {path: path.read_text() for path in (work / "html").rglob("*.html")}
index = html.unescape((work / "html/searchindex.js").read_text())
sys.exit("\n".join([*wrong_texts(work / "xml"), *missing_members(work / "xml", pages, index),
                    *broken_links(pages)]) or 0)

#!/usr/bin/env python3
"""check_reference.py SOURCE-DIR WORK-DIR - makes the reference and checks that it warns of nothing,
describes every class, gives members their own text (members.txt) and has no broken links."""

import html
import pathlib
import re
import shutil
import subprocess
import sys
import urllib.parse
import xml.etree.ElementTree

SKIPPED = 77


def make(source, work):
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    settings = (source / "docs/Doxyfile.in").read_text() + "\nGENERATE_XML = YES\n"
    for name, value in (("PROJECT_SOURCE_DIR@", source), ("PROJECT_BINARY_DIR@/docs", work),
                        ("HYLBAS_HAVE_DOT@", "NO")):
        settings = settings.replace(f"@{name}", str(value))
    subprocess.run(["doxygen", "-"], cwd=source, input=settings, text=True, check=True)


def text_of(element):
    parts = (element.find(kind) for kind in ("briefdescription", "detaileddescription"))
    return " ".join("".join(part.itertext()) for part in parts if part is not None).strip()


def wrong_texts(xml_folder):
    texts = {}
    for path in xml_folder.glob("class*.xml"):
        root = xml.etree.ElementTree.parse(path).getroot().find("compounddef")
        if not text_of(root):
            yield f"{path.stem} has no description"
        for member in root.iter("memberdef"):
            name = f"{path.stem.removeprefix('class')}::{member.findtext('name')}"
            texts.setdefault(name, []).append(text_of(member))
    for line in pathlib.Path(__file__).with_name("members.txt").read_text().splitlines():
        name, _, start = line.partition(" ")
        if not any(text.startswith(start) if start else not text for text in texts[name]):
            yield f"{name}: {texts[name]}, expected {start!r}"


def broken_links(folder):
    pages = {path: path.read_text() for path in folder.glob("*.html")}
    anchors = {path: re.findall('(?:id|name)="([^"]+)"', text) for path, text in pages.items()}
    for page, text in pages.items():
        for link in set(re.findall('href="(?![a-z]+:)([^"]+)"', text)):
            name, _, anchor = html.unescape(link).partition("#")
            target = folder / urllib.parse.unquote(name) if name else page
            if not target.exists() or (anchor and anchor not in anchors.get(target, [anchor])):
                yield f"{page.name}: broken link to {link}"


if shutil.which("doxygen") is None:
    print("skipped: doxygen is not installed")
    sys.exit(SKIPPED)
source, work = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
make(source, work)
sys.exit("\n".join([*wrong_texts(work / "xml"), *broken_links(work / "html")]) or 0)

#!/usr/bin/env python3
"""check_reference.py SOURCE-DIR WORK-DIR - makes the reference and checks that it warns of nothing,
describes every class, gives members their own text, and has no broken links."""

import html
import pathlib
import re
import shutil
import subprocess
import sys
import urllib.parse
import xml.etree.ElementTree

SKIPPED = 77
# What the reference says of a member; nothing where only its group has a text.
MEMBERS = [
    ("classHYLBasVector", "size", ""),
    ("classHYLBasVector", "max_size", "The largest 32-bit byte count divided by the element size"),
    ("classHYLBasVector", "clear", ""),
    ("classHYLBasVector", "reserve", "Makes room for n elements in all"),
    ("classHYLBasVectorGeneric", "PopBack", "Removes the last element"),
    ("classHYLBasMap", "size", ""),
    ("classHYLBasMap", "max_size", "4294967295."),
    ("classHYLBasMap", "InsertOver", "The element with key, whose value is value afterwards."),
    ("classHYLBasArray2D", "GetNumberOfRows", ""),
    ("classHYLBasReplicatorGeneric", "m_destroy", "may be null"),
]


def make(source, work):
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    settings = (source / "docs/Doxyfile.in").read_text()
    settings = settings.replace("@PROJECT_SOURCE_DIR@", str(source))
    settings = settings.replace("@PROJECT_BINARY_DIR@/docs", str(work))
    settings = settings.replace("@HYLBAS_HAVE_DOT@", "NO") + "\nGENERATE_XML = YES\n"
    if subprocess.run(["doxygen", "-"], cwd=source, input=settings, text=True).returncode != 0:
        sys.exit("the reference cannot be made")


def text_of(element):
    parts = (element.find(kind) for kind in ("briefdescription", "detaileddescription"))
    return " ".join("".join(part.itertext()) for part in parts if part is not None).strip()


def wrong_texts(xml):
    classes = {path.stem: xml_root(path) for path in xml.glob("class*.xml")}
    for name, root in classes.items():
        if not text_of(root):
            yield f"{name} has no description"
    for name, member, expected in MEMBERS:
        texts = [text_of(m) for m in classes[name].iter("memberdef") if m.findtext("name") == member]
        if not any(text.startswith(expected) and bool(text) == bool(expected) for text in texts):
            yield f"{name}::{member}: {texts}, expected {expected!r}"


def xml_root(path):
    return xml.etree.ElementTree.parse(path).getroot().find("compounddef")


def broken_links(folder):
    pages = {path: path.read_text() for path in folder.glob("*.html")}
    anchors = {path: set(re.findall(r'(?:id|name)="([^"]+)"', text)) for path, text in pages.items()}
    for page, text in pages.items():
        for link in map(html.unescape, re.findall(r'href="([^"]+)"', text)):
            if re.match(r"[a-z]+:", link):
                continue
            name, _, anchor = link.partition("#")
            target = folder / urllib.parse.unquote(name) if name else page
            if not target.exists() or (anchor and anchor not in anchors.get(target, {anchor})):
                yield f"{page.name}: broken link to {link}"


def main():
    if shutil.which("doxygen") is None:
        print("skipped: doxygen is not installed")
        return SKIPPED
    source, work = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    make(source, work)
    problems = [*wrong_texts(work / "xml"), *sorted(set(broken_links(work / "html")))]
    print("\n".join(problems) or "the reference is as it should be")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

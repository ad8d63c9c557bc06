"""What Sphinx needs to know of the site; make.py calls it."""

import pathlib
import re

from docutils import nodes
from sphinx import addnodes
from sphinx.domains.cpp import CPPDomain
from sphinx.util import logging
from sphinx.util.nodes import make_refnode

logger = logging.getLogger(__name__)
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

project = "TARNHYLBasGenericsLib"
numbers = re.findall(r"(?m)^#define HYLBAS_VERSION_[A-Z]+ (\d+)$",
                     (ROOT / "ProtectedInterfaces/HYLBasVersion.h").read_text())
version = release = ".".join(numbers)
extensions = ["myst_parser", "breathe"]

html_theme = "furo"
html_title = f"{project} {release}"
html_static_path = ["static"]
html_css_files = ["site.css"]
html_show_copyright = False
html_copy_source = False

highlight_language = "none"
primary_domain = "cpp"
toc_object_entries = True

myst_heading_anchors = 4
breathe_default_project = "headers"
breathe_default_members = ("members", "protected-members", "undoc-members")
breathe_show_include = False

# Names that signatures mention and that the reference does not explain: of the standard library,
# of details, private ones, and one of the host's.
nitpick_ignore_regex = [
    ("cpp:identifier", r"(std|hylbas_detail)(::.*)?"),
    ("cpp:identifier", r"Node|Reading|Modifying|IsModifying::value|HYLBasMemCacheManager"),
    ("cpp:identifier", r"HYLBasArray2D<T, Order>::NormType"),  # Sphinx looks into no template
]


class Names(CPPDomain):
    """Finds no parameters, of which there are more than of everything else."""

    def get_objects(self):
        for found in super().get_objects():
            if not found[2].endswith("Param"):
                yield found


def resolve(app, env, node, content):
    """Links to headers lead to their pages. Those to files and folders that are not part of the
    site, which a code host shows, become plain text; they must exist all the same."""
    target, page = node["reftarget"], node.get("refdoc", "")
    if node["reftype"] == "ref" and target.endswith("_8h"):
        return make_refnode(app.builder, page, f"reference/{target[:-3]}", None, content)
    if node["reftype"] in ("any", "myst") and (ROOT / page).parent.joinpath(target).exists():
        return content
    return None


def move_inner_classes(app, doctree):
    """Puts the classes in a class behind its other members."""
    for content in doctree.findall(addnodes.desc_content):
        for inner in [child for child in content if isinstance(child, addnodes.desc)]:
            content.remove(inner)
            content.append(inner)


def name_signatures(app, doctree):
    """Puts every name once into the table of contents of its page, and drops `inline`, which tells
    a caller nothing."""
    named = set()
    for signature in doctree.findall(addnodes.desc_signature):
        for word in list(signature.findall(addnodes.desc_sig_keyword)):
            if word.astext() == "inline":
                line, place = word.parent, word.parent.index(word)
                del line[place:place + 2]  # and the space behind it
        path = tuple(scope_of(signature))
        if path not in named and signature.parent["objtype"] != "enumerator":
            named.add(path)
            signature["_toc_parts"], signature["_toc_name"] = path, path[-1]


def scope_of(signature):
    """The names of the classes round what is declared, and its own."""
    outer = signature.parent.parent
    while outer is not None and not isinstance(outer, addnodes.desc):
        outer = outer.parent
    if outer is not None:
        yield from scope_of(outer[0])
    *_, name = signature.findall(addnodes.desc_name)  # behind those of template parameters
    yield name.astext()


def link_names(app, doctree, page):
    """Makes links of the headers, classes and functions that a page names in passing, and warns of
    those that are not there."""
    env = app.builder.env
    targets = {f"docs/{name}.md": (f"docs/{name}", None) for name in names_in(env, "docs")}
    targets |= {f"{name}.h": (f"reference/{name}", None) for name in names_in(env, "reference")}
    for name, _, _, where, anchor, _ in env.get_domain("cpp").get_objects():
        targets.setdefault(name, (where, anchor))
        if where == page:
            targets.setdefault(name.rpartition("::")[2], (where, anchor))
    for literal in list(doctree.findall(nodes.literal)):
        if literal.next_node(nodes.reference) or isinstance(
                literal.parent, (nodes.reference, nodes.title)):
            continue
        name = re.sub(r"<.*>|\(\)$", "", literal.astext())
        if name in targets and re.search("[A-Z/]", name):
            link = make_refnode(app.builder, page, *targets[name], literal.deepcopy())
            literal.replace_self(link)
        elif re.fullmatch(r"HYL(Bas|Asp)\w+(\.h|::\w+)?", name):
            logger.warning("nothing is called %s", name, location=literal)


def names_in(env, folder):
    return [page.partition("/")[2] for page in env.found_docs if page.startswith(f"{folder}/")]


def setup(app):
    app.add_domain(Names, override=True)
    app.connect("missing-reference", resolve)
    app.connect("doctree-read", move_inner_classes, priority=400)
    app.connect("doctree-read", name_signatures, priority=400)  # before Sphinx collects contents
    app.connect("doctree-resolved", link_names)

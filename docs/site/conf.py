"""What Sphinx needs to know of the site; make.py calls it."""

import pathlib

from docutils import nodes
from sphinx import addnodes
from sphinx.util.nodes import make_refnode

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

project = "TARNHYLBasGenericsLib"
extensions = ["myst_parser", "breathe"]

html_theme = "furo"
html_title = project
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


def resolve(app, env, node, content):
    """Links to headers lead to their pages. Those to files and folders that are not part of the
    site, which a code host shows, become plain text; they must exist all the same."""
    target, page = node["reftarget"], node.get("refdoc", "")
    if node["reftype"] == "ref" and target.endswith("_8h"):
        return make_refnode(app.builder, page, f"reference/{target[:-3]}", None, content)
    if node["reftype"] in ("any", "myst") and (ROOT / page).parent.joinpath(target).exists():
        return content
    return None


def setup(app):
    app.connect("missing-reference", resolve)

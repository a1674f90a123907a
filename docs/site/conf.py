# How the site looks: Sphinx with the theme Furo, pages in Markdown.
project = "DVLORQPAL"
html_title = "DVLORQPAL"
extensions = ["myst_parser"]
myst_enable_extensions = ["deflist"]
myst_heading_anchors = 3
html_theme = "furo"
html_copy_source = False
html_show_sourcelink = False
html_show_copyright = False
html_show_sphinx = False
html_static_path = ["static"]
html_css_files = ["site.css"]
add_function_parentheses = False
toc_object_entries_show_parents = "hide"
# The platform's types, which no page describes.
nitpick_ignore = [("c:identifier", name) for name in ("BOOL", "DWORD", "HRESULT", "LONG", "WCHAR")]

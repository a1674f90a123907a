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
html_js_files = [("scripts/gumshoe-patched.js", {"priority": 100})]
# Debian's build of the theme lost its colours for those whose browser asks for a dark page.
html_theme_options = {"dark_css_variables": {
    "color-foreground-primary": "#ffffffcc", "color-foreground-secondary": "#9ca0a5",
    "color-foreground-muted": "#81868d", "color-foreground-border": "#666666",
    "color-background-primary": "#131416", "color-background-secondary": "#1a1c1e",
    "color-background-hover": "#1e2124ff", "color-background-hover--transparent": "#1e212400",
    "color-background-border": "#303335", "color-background-item": "#444",
    "color-brand-primary": "#2b8cee", "color-brand-content": "#368ce2",
    "color-problematic": "#ee5151", "color-api-keyword": "var(--color-foreground-secondary)",
    "color-highlighted-background": "#083563", "color-highlight-on-target": "#333300",
    "color-card-background": "#18181a", "color-admonition-background": "#18181a",
}}
add_function_parentheses = False
toc_object_entries_show_parents = "hide"
# The platform's types, which no page describes.
nitpick_ignore = [("c:identifier", name) for name in ("BOOL", "DWORD", "HRESULT", "LONG", "WCHAR")]

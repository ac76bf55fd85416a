#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Fixes the links that Doxygen leaves as they stand in the Markdown pages, and fails for one that leads nowhere.

usage: links.py HTML-DIRECTORY SOURCE-DIR

A link to a heading of another page gets that heading's name in the HTML; one to a file of the source tree that is
no page becomes plain text, unless the file lies beside the HTML too."""
import html
import pathlib
import posixpath
import re
import sys
import urllib.parse


def slug(heading):
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def page_name(path):
    """Name of the HTML of docs/guides/first-client.md, as Doxygen makes it."""
    if path == "docs/README.md":
        return "index.html"
    return "md_" + path.removesuffix(".md").replace("-", "_").replace("/", "_") + ".html"


def anchors(text):
    """Headings of a page, as links call them, and their names in the HTML."""
    found = re.findall(r'<a class="anchor" id="(autotoc_md\d+)"></a>\s*(.*?)</h\d>', text, re.DOTALL)
    return {slug(html.unescape(re.sub(r"<[^>]+>", "", heading)).strip()): name for name, heading in found}


def fix(match, folder, pages, root):
    link = html.unescape(match.group(1))
    target, _, anchor = link.partition("#")
    if re.match(r"[a-z]+:", link) or (target and (root / urllib.parse.unquote(target)).is_file()):
        return match.group(0)
    if not target and anchor not in pages[folder[1]]:
        return match.group(0)
    path = posixpath.normpath(posixpath.join(folder[0], target)) if target else folder[2]
    name = page_name(path)
    if name in pages and (not anchor or anchor in pages[name]):
        return f'<a href="{name}{"#" + pages[name][anchor] if anchor else ""}">{match.group(2)}</a>'
    if (root / posixpath.basename(path)).is_file():
        return f'<a href="{posixpath.basename(path)}">{match.group(2)}</a>'
    return match.group(2) if (source / path).exists() and not anchor else match.group(0)


def broken(root):
    names = {path.name: set(re.findall(r'(?:id|name)="([^"]+)"', path.read_text(encoding="utf-8")))
             for path in root.glob("*.html")}
    for path in sorted(root.glob("*.html")):
        for link in re.findall(r'href="([^"]*)"', path.read_text(encoding="utf-8")):
            target, _, anchor = html.unescape(link).partition("#")
            target = urllib.parse.unquote(target) or path.name
            known = (root / target).is_file() and (not anchor or anchor in names.get(target, {anchor}))
            if not known and not re.match(r"[a-z]+:", link):
                yield f"{path.name}: {link} leads nowhere"


root, source = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
sources = ["README.md", "CHANGELOG.md", "CONTRIBUTING.md", "SECURITY.md", *(str(path.relative_to(source)) for path in source.glob("docs/**/*.md"))]
texts = {page_name(path): (root / page_name(path)).read_text(encoding="utf-8") for path in sources}
names_of_headings = {name: anchors(text) for name, text in texts.items()}
for path in sources:
    name = page_name(path)
    place = (posixpath.dirname(path), name, path)
    fixed = re.sub(r'<a href="([^"]+)">(.*?)</a>',
                   lambda match, place=place: fix(match, place, names_of_headings, root), texts[name])
    (root / name).write_text(fixed, encoding="utf-8")
wrong = list(broken(root))
print("\n".join(wrong), end="\n" if wrong else "")
sys.exit(1 if wrong else 0)

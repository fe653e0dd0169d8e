#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the HTML of the user guide (docs/guide) and of the reference pages beside it (docs).

    make_guide.py SOURCES FOLDER

cmark-gfm reads Markdown as the web sites do that show it, so that a page looks alike in both. The
pages are read in the help window, too, which knows HTML without style: text comes first in a page,
the navigation behind it.
"""

import html
import pathlib
import re
import shutil
import subprocess
import sys

NAME = "Kiv_Skyhold"
PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>{title} – {name}</title>
<link rel="stylesheet" href="{up}guide.css">
</head>
<body>
<main>
{text}
</main>
<nav>
<hr>
<p><b><a href="{up}index.html">{name}: the guide</a></b></p>
{entries}
</nav>
</body>
</html>
"""


def anchor(heading):
    """The name of a heading as web sites make it of its text."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def pages_of(sources):
    """Where each Markdown file goes, as paths below the folders of sources and guide."""
    pages = {}
    for path in sorted((sources / "docs/guide").glob("*.md")):
        pages[path.relative_to(sources)] = pathlib.Path(path.stem + ".html")
    for path in [*sorted((sources / "docs").glob("*.md")), *sorted(sources.glob("*.md"))]:
        pages[path.relative_to(sources)] = pathlib.Path("reference", path.stem.lower() + ".html")
    return pages


def title_of(markdown):
    found = re.search(r"^# (.+)$", markdown, re.MULTILINE)
    return found.group(1) if found else NAME


def with_anchors(text):
    def named(found):
        words = html.unescape(re.sub(r"<[^>]+>", "", found.group(2)))
        level = found.group(1)
        return f'<h{level} id="{anchor(words)}">{found.group(2)}</h{level}>'
    return re.sub(r"<h([1-6])>(.*?)</h\1>", named, text)


def up_from(page):
    return "../" * (len(page.parts) - 1)


class Guide:
    def __init__(self, sources, folder):
        self.sources = sources
        self.folder = folder
        self.pages = pages_of(sources)
        self.sections = self.navigation()

    def navigation(self):
        """The sections of the guide's first page, each a title and the pages that its list names."""
        index = pathlib.Path("docs/guide/index.md")
        sections = []
        for line in (self.sources / index).read_text().splitlines():
            if line.startswith("## "):
                sections.append((line[3:], []))
            found = re.match(r"- \[[^]]*\]\(([\w\-]+\.md)\)", line)
            if found:
                sections[-1][1].append(index.parent / found.group(1))
        named = {page for _, pages in sections for page in pages}
        left_out = {page for page in self.pages if page.parent == index.parent} - {index, *named}
        if left_out:
            sys.exit(f"{index} does not name {', '.join(sorted(map(str, left_out)))}")
        return [(title, pages) for title, pages in sections if pages]

    def entries(self, titles, page):
        """The navigation of a page."""
        lines = []
        for section, pages in self.sections:
            lines.append(f"<h4>{html.escape(section)}</h4>\n<ul>")
            lines += [f'<li><a href="{up_from(page)}{self.pages[entry]}">'
                      f"{html.escape(titles[entry])}</a></li>" for entry in pages]
            lines.append("</ul>")
        return "\n".join(lines)

    def make(self):
        if (self.folder / "guide.css").exists():  # a guide, with pages that may be no more
            shutil.rmtree(self.folder)
        self.folder.mkdir(parents=True, exist_ok=True)
        titles = {page: title_of((self.sources / page).read_text()) for page in self.pages}
        for source, page in self.pages.items():
            target = self.folder / page
            target.parent.mkdir(exist_ok=True)
            target.write_text(PAGE.format(title=html.escape(titles[source]), name=NAME,
                                          up=up_from(page), text=self.text_of(source, page),
                                          entries=self.entries(titles, page)))
        shutil.copy(self.sources / "docs/guide/guide.css", self.folder)

    def text_of(self, source, page):
        made = subprocess.run(["cmark-gfm", "-e", "table", "-e", "autolink", self.sources / source],
                              capture_output=True, check=True, text=True).stdout
        return re.sub(r'(href|src)="([^"#:]+)(#[^"]*)?"',
                      lambda found: self.link(found, source, page), with_anchors(made))

    def link(self, found, source, page):
        """A link to another page of the guide, or to a file that is copied beside the pages."""
        name, target, place = found.group(1), html.unescape(found.group(2)), found.group(3) or ""
        path = (self.sources / source.parent / target).resolve()
        if not path.exists():
            sys.exit(f"{source} links to {target}, which does not exist")
        below = path.relative_to(self.sources)
        if path.is_dir():
            return f'{name}="#"'
        if below not in self.pages:
            self.copy(below)
        goal = self.pages.get(below) or self.copied(below)
        return f'{name}="{up_from(page)}{goal}{place}"'

    @staticmethod
    def copied(below):
        """Pictures of the guide stand beside its pages, all else below "reference"."""
        in_guide = below.parent == pathlib.Path("docs/guide")
        return pathlib.Path(below.name) if in_guide else pathlib.Path("reference", below.name)

    def copy(self, below):
        target = self.folder / self.copied(below)
        target.parent.mkdir(exist_ok=True)
        shutil.copy(self.sources / below, target)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    Guide(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])).make()

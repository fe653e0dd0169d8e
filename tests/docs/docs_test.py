#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks what the documents say about files, commands and codes.

    docs_test.py SOURCES GUIDE PROGRAMS

Every relative link and its anchor leads somewhere, in the Markdown and in the guide's HTML; every
command and option that is shown exists; every status code has its row in the guide, and boxes
and buttons their names on screen; what is
made from tables is up to date; all that names the version agrees.
"""

import html.parser
import pathlib
import re
import subprocess
import sys
import unittest

SOURCES, GUIDE, PROGRAMS = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
sys.path[:0] = [str(SOURCES / "docs"), str(SOURCES / "scripts")]
from make_guide import anchor  # noqa: E402
import release  # noqa: E402

# Of other programs, or of what a reader has to put in.
OPTIONS_OF_OTHERS = {"--user", "--now", "--prefix", "--prune", "--install", "--preset", "--build"}
CHECKED_PROGRAMS = ("Kiv_Skyhold", "skyhold-sensor", "skyhold-gateway", "skyholdctl")


def documents():
    hidden = ("build", ".git")
    return [path for path in sorted(SOURCES.rglob("*.md"))
            if path.relative_to(SOURCES).parts[0] not in hidden]


def without_code(markdown):
    fenced = re.sub(r"^```.*?^```", "", markdown, flags=re.MULTILINE | re.DOTALL)
    indented = re.sub(r"^(?: {4}|\t).*$", "", fenced, flags=re.MULTILINE)
    return indented


def anchors_of(path):
    names = set()
    for heading in re.findall(r"^#{1,6} +(.+)$", without_code(path.read_text()), re.MULTILINE):
        words = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading)
        names.add(anchor(words.replace("`", "").replace("*", "")))
    return names


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.links, self.names = [], set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src"):
                self.links.append(value)
            elif name == "id":
                self.names.add(value)


class Links(unittest.TestCase):
    def test_markdown(self):
        for path in documents():
            text = re.sub(r"`[^`]*`", "", without_code(path.read_text()))
            for link in re.findall(r"\]\(([^)\s]+)\)", text):
                with self.subTest(file=str(path.relative_to(SOURCES)), link=link):
                    if re.match(r"[a-z]+:", link):
                        continue
                    name, _, place = link.partition("#")
                    target = (path.parent / name).resolve() if name else path
                    self.assertTrue(target.exists())
                    if place:
                        self.assertIn(place, anchors_of(target))

    def test_html(self):
        pages = {path: Page(path) for path in GUIDE.rglob("*.html")}
        self.assertGreater(len(pages), 20)
        for path, page in pages.items():
            for link in page.links:
                with self.subTest(page=str(path.relative_to(GUIDE)), link=link):
                    if re.match(r"[a-z]+:", link):
                        continue
                    name, _, place = link.partition("#")
                    target = (path.parent / name).resolve() if name else path
                    self.assertTrue(target.is_file())
                    self.assertTrue(target.is_relative_to(GUIDE))
                    if place:
                        self.assertIn(place, pages[target].names)


def help_of(program, *arguments):
    environment = {"QT_QPA_PLATFORM": "offscreen", "HOME": "/nonexistent", "PATH": "/usr/bin:/bin"}
    return subprocess.run([PROGRAMS / program, *arguments], capture_output=True, text=True,
                          env=environment, timeout=20).stdout


class Commands(unittest.TestCase):
    def setUp(self):
        self.lines = [(path.relative_to(SOURCES), line)
                      for path in documents()
                      for line in path.read_text().splitlines()]

    def test_dev(self):
        usage = subprocess.run([SOURCES / "dev", "help"], capture_output=True, text=True).stdout
        known = set(re.findall(r"^  ([\w-]+)", usage, re.MULTILINE)) | {"help"}
        for name, line in self.lines:
            for command in re.findall(r"\./dev ([a-z][\w-]*)", line):
                with self.subTest(file=str(name), line=line):
                    self.assertIn(command, known)

    def test_programs(self):
        options = {program: set(re.findall(r"--[a-z][\w-]*", help_of(program, "--help")))
                   for program in CHECKED_PROGRAMS}
        commands = set(re.findall(r"^  ([a-z][\w-]*) ", help_of("skyholdctl", "--help"), re.MULTILINE))
        for program, known in options.items():
            self.assertGreater(len(known), 5, program)
        for name, line in self.lines:
            for program in CHECKED_PROGRAMS:
                for shown in re.findall(rf"(?:^|[\s`/]){program}((?: +[^\s|;&`]+)*)", line):
                    words = shown.split("#")[0].split()
                    with self.subTest(file=str(name), line=line):
                        for option in re.findall(r"(?:^|\s)(--[a-z][\w-]*)", " " + " ".join(words)):
                            if option not in OPTIONS_OF_OTHERS | {"--help", "--version"}:
                                self.assertIn(option, options[program])
                        is_command = line.startswith("    ") or f"`{program}{shown}" in line
                        if program == "skyholdctl" and is_command and words and \
                                re.fullmatch(r"[a-z][\w-]*", words[0]):
                            self.assertIn(words[0], commands)


class Tables(unittest.TestCase):
    def test_status_codes(self):
        source = (SOURCES / "src/records/status_lines.cpp").read_text()
        codes = re.findall(r'"([a-z]\d\d) - ([^"]+)"', source)
        self.assertGreater(len(codes), 9)
        trouble = (SOURCES / "docs/guide/trouble.md").read_text()
        self.assertEqual(codes and sorted(codes),
                         sorted(re.findall(r"^\| ([a-z]\d\d) \| ([^|]+) \|", trouble, re.MULTILINE)))

    def test_version(self):
        self.assertRegex(release.version(), r"^\d+\.\d+\.\d+$")
        self.assertEqual(release.disagreements(), [])

    def test_names_on_screen(self):
        """What begins an entry of a page's settings is the text of a box or button, as it is shown."""
        texts = set()
        for path in (SOURCES / "src").rglob("*.cpp"):
            source = re.sub(r'"(_s)?\s*\n\s*u?"', "", path.read_text())
            texts.update(text.replace("&&", "\0").replace("&", "").replace("\0", "&").rstrip(":")
                         for text in re.findall(r'"((?:[^"\\\n]|\\.)*)"', source))
        pages = (SOURCES / "src/ui/pages/settings_pages.cpp").read_text()
        names = re.findall(r'u"([\w\-]+)\.html"', pages)
        self.assertGreater(len(names), 9)
        for name in names:
            page = (SOURCES / f"docs/guide/{name}.md").read_text()
            for shown in re.findall(r"^- \*\*([^*]+)\*\*", page, re.MULTILINE):
                with self.subTest(page=name, text=shown):
                    self.assertIn(" ".join(shown.split()), texts)

    def test_state_document(self):
        """Each name in it is explained."""
        source = (SOURCES / "src/core/state_document.cpp").read_text()
        names = set(re.findall(r'u"(\w+)"_s\s*[,\]]', source)) - {"control", "delay"}  # kinds of causes
        names |= set(re.findall(r'\.key = "(\w+)"', (SOURCES / "src/model/quantity.cpp").read_text()))
        self.assertGreater(len(names), 60)
        explained = set(re.findall(r"`(\w+)`", (SOURCES / "docs/state.md").read_text()))
        self.assertEqual(names - explained, set())

    def test_metrics(self):
        made = subprocess.run([SOURCES / "docs/metrics_reference.py", SOURCES], capture_output=True,
                              text=True, check=True).stdout
        self.assertEqual(made, (SOURCES / "docs/metrics.md").read_text())

    def test_topics(self):
        """Of MQTT, each that the gateway publishes, and no other."""
        source = "".join((SOURCES / f"gateway/{name}.cpp").read_text()
                         for name in ("mqtt_messages", "mqtt_publisher"))
        published = {topic.replace("readings/", "readings/NAME") for topic in
                     re.findall(r'(?:\bmessage\(u"|prefix \+ u"/)([\w/]+)"_s', source)}
        table = re.findall(r"^\| `PREFIX/([\w/]+)`", (SOURCES / "docs/house.md").read_text(), re.MULTILINE)
        self.assertEqual(published, set(table))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

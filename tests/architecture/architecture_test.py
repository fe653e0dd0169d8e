"""Reads the include lines of the sources and fails on one that breaks the rule of the rooms.

usage: architecture_test.py SOURCE_FOLDER QT_WIDGETS_INCLUDE_FOLDER
"""

import os
import pathlib
import sys
import unittest

from includes import faults

SOURCES = None
WIDGET_HEADERS = None


def read_sources(folder):
    return {
        path.relative_to(folder).as_posix(): path.read_text(encoding="utf-8")
        for path in folder.rglob("*")
        if path.suffix in (".h", ".cpp")
    }


class TheRule(unittest.TestCase):
    """The rule itself, on single lines."""

    CASES = [
        # file, line, what is wrong with it
        ("core/a.cpp", '#include "core/b.h"', None),
        ("core/a.cpp", '#include "platform/b.h"', None),
        ("ui/pages/a.cpp", '#include "core/b.h"', None),
        ("ui/a.cpp", "#include <QLabel>", None),
        ("core/a.cpp", "#include <QString>", None),
        ("main.cpp", '#include "ui/b.h"', None),
        ("main.cpp", "#include <QApplication>", None),
        ("core/a.cpp", '// like #include "ui/b.h"', None),
        ("core/a.cpp", '#include "ui/b.h"', "runs up"),
        ("platform/a.h", ' # include "records/b.h"', "runs up"),
        ("model/a.h", '#include "judge/b.h"', "runs up"),
        ("judge/a.cpp", '#include "platform/b.h"', "runs sideways"),
        ("conditions/a.cpp", '#include "datafiles/b.h"', "runs sideways"),
        ("automation/a.cpp", '#include "ui/b.h"', "runs sideways"),
        ("core/a.cpp", "#include <QLabel>", "Qt Widgets"),
        ("core/a.cpp", "#include <QtWidgets/QLabel>", "Qt Widgets"),
        ("core/a.cpp", '#include "terminal.h"', "not a header of a room"),
        ("core/a.cpp", '#include "../ui/b.h"', "not a header of a room"),
        ("weather/a.cpp", '#include "core/b.h"', "no place"),
    ]

    def test_cases(self):
        for path, line, expected in self.CASES:
            with self.subTest(path=path, line=line):
                found = faults({path: line}, WIDGET_HEADERS)
                if expected is None:
                    self.assertEqual(found, [])
                else:
                    self.assertEqual(len(found), 1)
                    self.assertIn(expected, found[0])


class TheSources(unittest.TestCase):
    def test_includes_run_downwards(self):
        self.assertIn("main.cpp", SOURCES)
        found = faults(SOURCES, WIDGET_HEADERS)
        self.assertEqual(found, [], "\n" + "\n".join(found))


if __name__ == "__main__":
    SOURCES = read_sources(pathlib.Path(sys.argv[1]))
    WIDGET_HEADERS = set(os.listdir(sys.argv[2]))
    unittest.main(argv=sys.argv[:1])

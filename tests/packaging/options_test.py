# SPDX-License-Identifier: GPL-3.0-or-later
"""The options that a program lists with --help are those of its man page, and those that the shells
complete."""

import os
import pathlib
import re
import subprocess
import unittest

PACKAGING = pathlib.Path(__file__).resolve().parents[2] / "packaging"
PROGRAMS = pathlib.Path(os.environ["SKYHOLD_PROGRAMS"])
ALWAYS = {"help", "help-all"}

LISTED = re.compile(r"^ +(?:-\w, )?--([a-z][a-z-]*)( <[^>]+>| [A-Z]\S*)?", re.MULTILINE)
# skyholdctl groups its options in sentences.
LISTED_ANYWHERE = re.compile(r"--([a-z][a-z-]*)(\s+[A-Z][A-Z=:\[\]]*)?")
IN_MAN_PAGE = re.compile(r"^\.It (?:Fl \w , -|Fl -)([a-z][a-z-]*)( Ar .*)?$", re.MULTILINE)


def help_of(program):
    environment = os.environ | {"QT_QPA_PLATFORM": "offscreen"}
    return subprocess.run([PROGRAMS / program, "--help"], env=environment, check=True, text=True,
                          capture_output=True, timeout=20).stdout


def options(pattern, text):
    """The names, each with whether it takes a value."""
    found = {name: bool(value and value.strip()) for name, value in pattern.findall(text)}
    return {name: value for name, value in found.items() if name not in ALWAYS}


class OptionsTest(unittest.TestCase):
    def test_man_pages_list_what_the_programs_do(self):
        for program in ["Kiv_Skyhold", "skyhold-gateway", "skyhold-sensor", "Kiv_NubiloSim",
                        "Kiv_StationSim", "skyholdctl"]:
            with self.subTest(program=program):
                text = help_of(program)
                page = (PACKAGING / f"man/{program}.1").read_text(encoding="utf-8")
                pattern = LISTED if "Options:" in text else LISTED_ANYWHERE
                listed = options(pattern, text)
                self.assertGreater(len(listed), 5)
                self.assertEqual(options(IN_MAN_PAGE, page), listed)
        commands = re.findall(r"^  ([a-z][a-z-]+) ", help_of("skyholdctl"), re.MULTILINE)
        page = (PACKAGING / "man/skyholdctl.1").read_text(encoding="utf-8")
        self.assertEqual(re.findall(r"^\.It Cm (\S+)", page, re.MULTILINE), commands)

    def test_shells_complete_what_the_programs_list(self):
        for program in ["skyhold-gateway", "skyhold-sensor", "skyholdctl"]:
            text = help_of(program)
            pattern = LISTED if "Options:" in text else LISTED_ANYWHERE
            listed = set(options(pattern, text))
            for file in [f"{program}.bash", f"_{program}"]:
                with self.subTest(file=file):
                    script = (PACKAGING / "completions" / file).read_text(encoding="utf-8")
                    offered = set(re.findall(r"--([a-z][a-z-]*)", script)) - ALWAYS
                    self.assertEqual(offered, listed)
                    if program == "skyholdctl":
                        commands = re.findall(r"^  ([a-z][a-z-]+) ", text, re.MULTILINE)
                        for command in commands:
                            self.assertRegex(script, rf"['\" ]{command}[:' ]", command)


if __name__ == "__main__":
    unittest.main()

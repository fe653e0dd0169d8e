# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the fuzzers of build/fuzz, two at a time, and prints what each came to.

New inputs collect in build/fuzz/corpus/TARGET, beside those of fuzz/corpus/TARGET that every run
begins with; what breaks a rule lies in build/fuzz/findings/TARGET.
"""

import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "fuzz"
SEEDS = ROOT / "fuzz" / "corpus"
# Leaks are looked for once, at the end: what Qt keeps for later would look like one in each run.
LIMITS = ["-max_len=4096", "-timeout=10", "-rss_limit_mb=4096", "-detect_leaks=0"]


def command(target, *options):
    program = BUILD / "bin" / f"fuzz_{target}"
    words = ROOT / "fuzz" / "words.dict"
    return ["dbus-run-session", "--", str(program), f"-dict={words}", *LIMITS, *options]


def environment(folder):
    """Nothing of the user's is read or written."""
    own = {"TMPDIR": folder, "XDG_CONFIG_HOME": folder, "XDG_DATA_HOME": folder,
           "QT_LOGGING_RULES": "*=false", "UBSAN_OPTIONS": "print_stacktrace=1"}
    return os.environ | own


def folder_of(kind, target):
    folder = BUILD / kind / target
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def last(pattern, text):
    found = re.findall(pattern, text)
    return found[-1] if found else "?"


def run(target, seconds):
    """One row of the table, and whether the target found nothing."""
    corpus = folder_of("corpus", target)
    findings = folder_of("findings", target)
    before = set(findings.iterdir())
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run(
            command(target, f"-max_total_time={seconds}", f"-artifact_prefix={findings}/",
                    "-print_final_stats=1", str(corpus), str(SEEDS / target)),
            env=environment(folder), stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
            text=True, errors="replace", check=False)
    (BUILD / f"{target}.log").write_text(done.stderr)
    new = set(findings.iterdir()) - before
    broken = re.findall(r"BROKEN RULE: .*|runtime error: .*|SUMMARY: .*", done.stderr)
    what = broken[0] if broken else f"exit status {done.returncode}"
    row = [target, last(r"stat::number_of_executed_units: +(\d+)", done.stderr),
           last(r"cov: (\d+)", done.stderr), last(r"ft: (\d+)", done.stderr),
           last(r"corp: (\d+)", done.stderr), str(len(new))]
    return row, "" if done.returncode == 0 else what


def keep(target):
    """Adds the fewest short inputs of this machine that cover what the kept ones do not."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(command(target, "-set_cover_merge=1", "-max_len=1024",
                               str(SEEDS / target), str(folder_of("corpus", target))),
                       env=environment(folder), capture_output=True, check=True)
    print(target, len(list((SEEDS / target).iterdir())), "inputs are kept")


def main():
    every = sorted(path.name for path in SEEDS.iterdir())
    parser = argparse.ArgumentParser(prog="./dev fuzz", description=__doc__.split("\n")[0])
    parser.add_argument("seconds", type=int, help="for each target")
    parser.add_argument("targets", nargs="*", metavar="TARGET", help="of: " + ", ".join(every))
    parser.add_argument("--keep", action="store_true",
                        help="then add to fuzz/corpus what covers more")
    options = parser.parse_args()
    targets = options.targets or every
    if unknown := set(targets) - set(every):
        parser.error("no target " + ", ".join(sorted(unknown)))

    row = "{:20}{:>12}{:>9}{:>10}{:>9}{:>10}"
    print(row.format("target", "inputs run", "edges", "features", "corpus", "findings"), flush=True)
    failed = False
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        for figures, what in pool.map(lambda target: run(target, options.seconds), targets):
            print(row.format(*figures), what, flush=True)
            failed = failed or bool(what)
    if options.keep:
        for target in targets:
            keep(target)
    sys.exit(1 if failed else 0)


main()

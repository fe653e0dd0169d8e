#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints docs/metrics.md from the families of gateway/metrics.cpp: metrics_reference.py SOURCES"""

import pathlib
import re
import sys

HEAD = """# Metrics

What `/metrics` of the [gateway](network.md) offers Prometheus. While the monitor is not heard, only
`skyhold_safe` (0), `skyhold_up` (0) and those of the gateway itself are there: never an old value. A
reading that is not known is left out.

| name | type | holds |
|---|---|---|"""

source = (pathlib.Path(sys.argv[1]) / "gateway/metrics.cpp").read_text()
families = re.findall(r'text\.family\("(\w+)",\s*"(\w+)",\s*"([^"]*)"\)', source)
if len(families) != source.count("text.family("):
    sys.exit("a family is not written as expected")
rows = sorted(f"| `{name}` | {kind} | {words} |" for name, kind, words in families)
print(HEAD, *rows, sep="\n")

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the pictures of the user guide, docs/guide/*.png, from those of `screenshots`.

    guide_pictures.py SCREENSHOTS FOLDER

SCREENSHOTS is a folder of pictures of the window at 1280x800. A palette of 256 colours keeps them
small. A picture that no page shows is removed, and one that a page shows must be in the table.
"""

import pathlib
import re
import sys

from PIL import Image

COLOURS = 256
WIDEST = 1280
# What the guide calls it, what `screenshots` calls it.
PICTURES = {
    "safe": "panel-now-safe-1280x800",
    "rain": "panel-now-rain-1280x800",
    "night": "night-now-safe-1280x800",
    "wall": "panel-wall-waiting-1920x1080",
    "setup": "panel-dialog-setup-1",
    "tonight": "panel-now-waiting-1280x800",
    "sources": "panel-sources-1280x800",
    "limits": "panel-limits-rain-1280x800",
    "sector": "panel-dialog-sector",
    "caution": "panel-caution-1280x800",
    "graphs": "panel-graphs-1280x800",
    "data-file": "panel-data-file-1280x800",
    "ccdap": "panel-ccdap-1280x800",
    "images": "panel-images-1280x800",
    "upload": "panel-upload-1280x800",
    "network": "panel-network-1280x800",
    "sound": "panel-dialog-sound",
}


def shown(guide):
    """The pictures that the pages show."""
    text = "".join(page.read_text() for page in guide.glob("*.md"))
    return set(re.findall(r"!\[[^]]*\]\(([\w\-]+)\.png\)", text))


def main(taken, guide):
    wanted = shown(guide)
    if wanted - PICTURES.keys():
        sys.exit(f"not in the table of {sys.argv[0]}: {', '.join(sorted(wanted - PICTURES.keys()))}")
    for old in guide.glob("*.png"):
        if old.stem not in wanted:
            old.unlink()
    size = 0
    for name in sorted(wanted):
        picture = Image.open(taken / (PICTURES[name] + ".png")).convert("RGB")
        if picture.width > WIDEST:
            picture = picture.resize((WIDEST, picture.height * WIDEST // picture.width), Image.LANCZOS)
        target = guide / (name + ".png")
        picture.quantize(COLOURS, method=Image.MAXCOVERAGE, kmeans=3, dither=Image.Dither.NONE).save(
            target, optimize=True)
        size += target.stat().st_size
    print(f"{len(wanted)} pictures, {size // 1024} KB")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))

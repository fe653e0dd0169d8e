# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the sounds that come with the program: short, pleasant, and easy to tell apart.

usage: make_sounds.py FOLDER

Each is a handful of decaying tones, 16 bits mono. A sound ends in silence, so that it may be
repeated. The same files come out of every run.
"""

import array
import math
import pathlib
import sys
import wave

RATE = 22050  # samples a second
PEAK = 0.6    # of full scale
FADE = 0.004  # seconds of rise, and of fall at the end: no clicks

# Partials of an instrument: (multiple of the tone's frequency, strength, decay in 1/s).
BELL = [(0.5, 0.3, 1.8), (1, 1, 2.6), (1.19, 0.5, 3.2), (2, 0.6, 4), (2.74, 0.25, 6), (4.07, 0.1, 9)]
BAR = [(1, 1, 7), (3.93, 0.35, 16), (9.2, 0.08, 30)]
STRING = [(n, 1 / n ** 1.3, 2.5 + 1.5 * n) for n in range(1, 8)]
GLASS = [(1, 1, 4.5), (2.32, 0.4, 6), (4.25, 0.12, 10)]
WOOD = [(1, 1, 28), (2.57, 0.5, 45), (4.94, 0.2, 70)]
SONAR = [(1, 1, 3.2), (1.004, 0.6, 3.2)]

C5, D5, E5, G5, A5, C6, E6, G6 = 523.25, 587.33, 659.26, 783.99, 880.0, 1046.5, 1318.5, 1568.0

# Name: (seconds, [(start in seconds, frequency in Hz, instrument)]).
SOUNDS = {
    "Bell": (1.8, [(0, D5, BELL)]),
    "Chime": (1.8, [(0, E6, GLASS), (0.22, C6, GLASS), (0.44, G5, GLASS)]),
    "Harp": (1.6, [(0, C5, STRING), (0.1, E5, STRING), (0.2, G5, STRING), (0.3, C6, STRING)]),
    "Knock": (1.0, [(0, 310, WOOD), (0.14, 310, WOOD), (0.28, 390, WOOD)]),
    "Marimba": (1.2, [(0, G5, BAR), (0.15, A5, BAR), (0.3, G5, BAR), (0.45, E5, BAR)]),
    "Sonar": (1.8, [(0, G6, SONAR)]),
}


def add_tone(samples, start, frequency, instrument):
    first = round(start * RATE)
    for multiple, strength, decay in instrument:
        step = 2 * math.pi * frequency * multiple / RATE
        for i in range(len(samples) - first):
            seconds = i / RATE
            samples[first + i] += (strength * math.exp(-decay * seconds) *
                                   min(1, seconds / FADE) * math.sin(step * i))


def render(seconds, tones):
    samples = [0.0] * round(seconds * RATE)
    for start, frequency, instrument in tones:
        add_tone(samples, start, frequency, instrument)
    fall = round(FADE * 25 * RATE)
    for i in range(fall):
        samples[-1 - i] *= i / fall
    scale = PEAK * 32767 / max(abs(sample) for sample in samples)
    return array.array("h", [round(sample * scale) for sample in samples])


def write(path, samples):
    if sys.byteorder == "big":
        samples.byteswap()
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(samples.tobytes())


def main():
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        sys.exit("usage: make_sounds.py FOLDER")
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, (seconds, tones) in SOUNDS.items():
        write(folder / f"{name}.wav", render(seconds, tones))


if __name__ == "__main__":
    main()

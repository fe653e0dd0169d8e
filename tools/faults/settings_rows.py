# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of the settings file."""

import collections
import re
import signal

from table import Monitored, row
from monitored import PUT, Client

NUMBER = r"-?[0-9.]+(e\+[0-9]+)?"
RUBBISH = ["", "x", "-", "1e999", "nan", "\\x0\\xff", "9" * 300, "@Invalid()",
           "a, b, c", "[x]"]


def settings_file(monitored):
    return monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini"


def keys_of(text):
    """Values by section and key."""
    keys, section = {}, ""
    for line in text.splitlines():
        if line.startswith("["):
            section = line
        elif "=" in line:
            key, _, value = line.partition("=")
            keys[section, key] = value
    return keys


def end_monitor(monitored):
    monitored.ends = True
    monitored.monitor.send_signal(signal.SIGTERM)
    assert monitored.monitor.wait(10) == 0, monitored.errors


def start_again(monitored):
    monitored.start_monitor()
    monitored.ends = False


def saved_by(monitored):
    """A running monitor's settings, all of them, after an orderly end; limits are the user's."""
    client = Client(monitored)
    client.invoke("Kiv_SafeDelayValue", PUT, [45])
    client.invoke("ThreshWindCalm", PUT, [11.5])
    client.close()
    end_monitor(monitored)
    return settings_file(monitored).read_text(encoding="utf-8")


@row("settings", "every value of a section replaced by rubbish")
def rubbish(seen):
    with Monitored() as monitored:
        whole = saved_by(monitored)
        kept = keys_of(whole)
        sections = collections.defaultdict(list)
        for section, key in kept:
            sections[section].append(key)
        assert len(kept) > 300, len(kept)
        tried = 0
        for section, keys in sections.items():
            bad = {(section, key): RUBBISH[number % len(RUBBISH)] for number, key in enumerate(keys)
                   # Without these two there is nothing to start.
                   if key not in ("Emulator", "HTMFile")}
            tried += len(bad)
            lines = [f"{name}\n" + "".join(f"{key}={bad.get((name, key), kept[name, key])}\n"
                                           for key in names) for name, names in sections.items()]
            settings_file(monitored).write_text("\n".join(lines), encoding="utf-8")
            start_again(monitored)
            client = Client(monitored)
            client.invoke("Device_Start", 1)
            cycle = monitored.next_cycle("a cycle", lambda c: True)
            assert cycle.verdict in ("SAFE", "UNSAFE"), cycle.line
            client.close()
            end_monitor(monitored)
            after = keys_of(settings_file(monitored).read_text(encoding="utf-8"))
            lost = {name: after.get(name) for name in kept
                    if name[0] != section and after.get(name) != kept[name]}
            assert not lost, (section, lost)
            none = [name for name, value in kept.items()
                    if re.fullmatch(NUMBER, value) and not re.fullmatch(NUMBER, after[name])]
            assert not none, none
        seen.say(f"{tried} values in {len(sections)} sections: the program starts and judges with "
                 "the defaults in their place (a text that is a number counts as one); every value "
                 "elsewhere is kept")


@row("settings", "file cut short at twenty lengths")
def cut(seen):
    with Monitored() as monitored:
        whole = saved_by(monitored)
        kept = keys_of(whole)
        size = len(whole.encode())
        for part in range(20):
            settings_file(monitored).write_bytes(whole.encode()[:size * part // 20 + part])
            monitored.errors.clear()
            start_again(monitored)
            client = Client(monitored)
            assert client.invoke("Kiv_SafeDelayValue") == 45
            assert client.invoke("ThreshWindCalm") == 11.5
            client.close()
            end_monitor(monitored)
            after = keys_of(settings_file(monitored).read_text(encoding="utf-8"))
            lost = {name: after.get(name) for name in kept if after.get(name) != kept[name]}
            assert not lost, (part, lost)
            assert any("cut short" in line for line in monitored.errors), monitored.errors
        seen.say(f"all {len(kept)} values are there again, those behind the cut from the last whole "
                 "copy; standard error says which")
        settings_file(monitored).write_bytes(whole.encode()[:size // 2] + bytes(size // 2))
        start_again(monitored)
        end_monitor(monitored)
        after = keys_of(settings_file(monitored).read_text(encoding="utf-8"))
        assert after == kept
        seen.say("the same for a second half of zero bytes")
        # Limits, and the last key before the mark, by an editor that leaves out the last line end.
        lines = [line for line in whole.splitlines() if not line.startswith("Wind")]
        end = lines.index("[End]")
        settings_file(monitored).write_text("\n".join(lines[:end - 2] + lines[end:]),
                                            encoding="utf-8")
        monitored.errors.clear()
        start_again(monitored)
        client = Client(monitored)
        assert client.invoke("ThreshWindCalm") == 10
        client.close()
        end_monitor(monitored)
        assert not any("cut short" in line for line in monitored.errors), monitored.errors
        seen.say("what was taken out by hand stays out")


@row("settings", "half-written beside it by a crash; of a newer version")
def crash_and_newer(seen):
    with Monitored() as monitored:
        whole = saved_by(monitored)
        half = settings_file(monitored).with_name("Kiv_Skyhold.ini.AbCdEf")
        half.write_text(whole[:len(whole) // 2], encoding="utf-8")
        (settings_file(monitored).parent / "Kiv_Skyhold.ini.lock").write_text(
            "999999\nKiv_Skyhold\nhere\n")
        newer = whole.replace("[Window]\n", "[Window]\nTheme=\"dark, blue\"\n") + "[Moon]\nPhase=3\n"
        settings_file(monitored).write_text(newer, encoding="utf-8")
        start_again(monitored)
        end_monitor(monitored)
        after = keys_of(settings_file(monitored).read_text(encoding="utf-8"))
        assert after == keys_of(newer), set(after.items()) ^ set(keys_of(newer).items())
        seen.say("the file stays as it was, unknown keys and sections are kept")


@row("settings", "locked by a program that hangs")
def locked(seen):
    with Monitored() as monitored:
        lock = settings_file(monitored).parent / "Kiv_Skyhold.ini.lock"
        # A lock is the process and the name of the program that holds it.
        lock.write_text(f"{monitored.sensor.pid}\nKiv_NubiloSim\n"
                        f"{open('/proc/sys/kernel/hostname').read()}\n")
        text = saved_by(monitored)
        assert keys_of(text)["[Window]", "SafeDelayVal"] == "45"
        seen.say("saved all the same, without a longer wait")

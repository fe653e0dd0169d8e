# SPDX-License-Identifier: GPL-3.0-or-later
"""The automation server of the whole program, as other programs see it."""

import json
import pathlib
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

import dbus
import dbus.lowlevel

from monitored import METHOD, PUT, READ, Client, Monitored
import run

HERE = pathlib.Path(__file__).resolve().parent
MONITOR = "Kiv.Skyhold.Monitor1"
DESCRIPTION = HERE.parents[1] / "docs" / "Kiv_Skyhold.Nubilo.xml"
NAME = "Kiv_Skyhold.Nubilo"
FACTORY = "/Kiv_Skyhold/Nubilo"
TYPED = "Kiv_Skyhold._Nubilo"
DISPATCH = "Kiv.Automation.Dispatch"
PROPERTIES = "org.freedesktop.DBus.Properties"
ERROR = "Kiv.Automation.Error."


def interface_of(xml, name):
    return next(part for part in ElementTree.fromstring(xml).iter("interface")
                if part.get("name") == name)


def plain(element):
    return (element.tag, sorted(element.attrib.items()), [plain(child) for child in element])


class Instance(Client):
    """A client that sees the messages themselves."""

    def ask(self, interface, method, signature="", *arguments, path=None):
        """The signature and the values of the answer."""
        message = dbus.lowlevel.MethodCallMessage(NAME, path or self.path, interface, method)
        message.append(*arguments, signature=signature)
        answer = self.bus.send_message_with_reply_and_block(message, 10)
        return answer.get_signature(), answer.get_args_list()

    def get(self, name):
        return self.ask(PROPERTIES, "Get", "ss", TYPED, name)[1][0]

    def set(self, name, value):
        self.ask(PROPERTIES, "Set", "ssv", TYPED, name, value)


class AutomationTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.monitored = cls.enterClassContext(Monitored(["--start"]))
        cls.monitored.next_cycle("a first cycle", lambda c: not c.codes)

    def setUp(self):
        self.instance = Instance(self.monitored)
        self.addCleanup(self.instance.close)

    def assertError(self, name, call, *arguments):
        with self.assertRaises(dbus.DBusException) as refused:
            call(*arguments)
        self.assertEqual(refused.exception.get_dbus_name(), name)
        if name.startswith(ERROR):
            self.assertRegex(refused.exception.get_dbus_message(), "^0x[0-9A-F]{8}: ")

    def test_introspection_is_the_installed_description(self):
        _, [xml] = self.instance.ask("org.freedesktop.DBus.Introspectable", "Introspect")
        installed = DESCRIPTION.read_text(encoding="utf-8")
        for name in [TYPED, DISPATCH, "Kiv.Automation.IObjectSafety"]:
            self.assertEqual(plain(interface_of(xml, name)), plain(interface_of(installed, name)))
        _, [monitor] = self.instance.ask("org.freedesktop.DBus.Introspectable", "Introspect",
                                         path="/Kiv_Skyhold/Monitor")
        installed = DESCRIPTION.with_name(f"{MONITOR}.xml").read_text(encoding="utf-8")
        self.assertEqual(plain(interface_of(monitor, MONITOR)),
                         plain(interface_of(installed, MONITOR)))
        _, [factory] = self.instance.ask("org.freedesktop.DBus.Introspectable", "Introspect",
                                         path=FACTORY)
        children = [node.get("name") for node in ElementTree.fromstring(factory).iter("node")]
        self.assertIn("MForm", children)
        self.assertIn(self.instance.path.rpartition("/")[2], children)
        names = [part.get("name") for part in ElementTree.fromstring(xml).iter("interface")]
        self.assertEqual(len(names), len(set(names)), names)

    def test_state_document_is_signalled_and_attaches_nobody(self):
        interface = MONITOR
        monitor = "/Kiv_Skyhold/Monitor"

        def read(name):
            return self.instance.ask(PROPERTIES, "Get", "ss", interface, name, path=monitor)[1][0]

        with subprocess.Popen(["dbus-monitor", "--session", f"interface='{interface}'"],
                              env=self.monitored.run.variables, stdout=subprocess.PIPE,
                              text=True) as watch:
            self.addCleanup(watch.kill)

            def next_of(member):
                for line in watch.stdout:
                    if f"member={member}" in line:
                        text = next(watch.stdout).strip()
                        return json.loads(text.removeprefix('string "').removesuffix('"'))
                return self.fail(f"no {member} came")

            first, second = next_of("CycleDone"), next_of("CycleDone")
            self.assertEqual([second["cycle"], second["schema"], second["attached"]],
                             [first["cycle"] + 1, 1, 1])
            self.assertEqual(read("Version"), 1)
            state = json.loads(read("State"))
            self.assertEqual([state["session"], state["attached"]], ["running", 1])

            self.instance.invoke("Kiv_LocalControl", METHOD, [True, "Dome"])
            self.instance.invoke("SetUnSafe", METHOD, [True])
            changed = next_of("StateChanged")
            self.instance.invoke("Kiv_LocalControl", METHOD, [False, ""])
            self.assertEqual([changed["safe"], changed["verdict"], changed["decided_by"],
                              changed["controller"], changed["causes"][0]["text"]],
                             [False, "unsafe", "client", "Dome", "Unsafe by Dome"])
            watch.kill()

    def test_typed_members_answer_with_their_types(self):
        instance = self.instance
        for name, arguments, types in [
                ("Safe", [], "b"), ("Condition_Rain", [], "i"), ("SkyTemperature", [], "d"),
                ("LastReading", [], "v"), ("RecordStop", [], ""), ("MForm", [], "o"),
                ("Kiv_AlarmStart", [dbus.String("")], "s"),
                ("GraphTemperatureMax", [dbus.Int32(1)], "ii")]:
            with self.subTest(method=name):
                sent = "".join({dbus.String: "s", dbus.Int32: "i"}[type(each)]
                               for each in arguments)
                signature, _ = instance.ask(TYPED, name, sent, *arguments)
                self.assertEqual(signature, types)
        everything = instance.ask(PROPERTIES, "GetAll", "s", TYPED)[1][0]
        for name, value in everything.items():
            with self.subTest(property=name):
                self.assertEqual(instance.get(name), value)
        for name, value in [("ThreshWindWindy", 17.5), ("ReadCycle", 30), ("DescWindCalm", "≤ 10"),
                            ("DescriptionRain", "pouring"), ("TempFactorON", True)]:
            with self.subTest(property=name):
                instance.set(name, value)
                self.assertEqual(instance.get(name), value)
                self.assertEqual(instance.invoke(name), value)
        instance.set("ReadCycle", 10)

        # Tables within values: the graphs' points, with the time of each.
        history = instance.ask(TYPED, "Kiv_GraphArray")[1][0]
        newest = instance.invoke("Kiv_GraphArrayLastElem", READ, [0])
        self.assertEqual((len(history), len(history[2])), (8, 121))
        self.assertIsInstance(history[7][newest], dbus.Double)
        self.assertIsInstance(history[1][newest][0], dbus.Double)
        self.assertEqual(len(history[0][0]), 0)  # an empty value

    def test_dispatch_by_name_and_number(self):
        instance = self.instance
        ids = instance.ask(DISPATCH, "GetIDsOfNames", "as", ["safe", "READCYCLE"])[1][0]
        self.assertEqual([int(number) for number in ids], [0x600300C5, 0x68030000])
        for use, answers in [(READ, True), (METHOD, True), (2, False), (PUT, False)]:
            call = [DISPATCH, "Invoke", "iuav", ids[0], use, dbus.Array([], signature="v")]
            if answers:
                self.assertIsInstance(instance.ask(*call)[1][0], dbus.Boolean)
            else:
                self.assertError(ERROR + "MemberNotFound", instance.ask, *call)

        _, [result, changed] = instance.ask(DISPATCH, "InvokeByName", "suav", "Kiv_AlarmStart",
                                            METHOD, dbus.Array(["/none.wav"], signature="v"))
        self.assertEqual((len(result), list(changed)), (0, ["/none.wav"]))

    def test_errors_by_name(self):
        instance = self.instance

        def invoke(name, use, *arguments):
            return lambda: instance.invoke(name, use, arguments)
        bare = "org.freedesktop.DBus.Error."
        for error, call in [
                (ERROR + "UnknownName", invoke("NoSuchMember", READ)),
                (ERROR + "MemberNotFound", lambda: instance.ask(
                    DISPATCH, "Invoke", "iuav", 0x600300D1, READ, dbus.Array([], signature="v"))),
                (ERROR + "MemberNotFound", invoke("Version", PUT, "1")),
                (ERROR + "BadParamCount", invoke("SetUnSafe", METHOD)),
                (ERROR + "BadParamCount", lambda: instance.ask(TYPED, "Safe", "i", 1)),
                (ERROR + "TypeMismatch", invoke("ReadCycle", PUT, 3e9)),
                (ERROR + "TypeMismatch", lambda: instance.set("SafeRain", "yes")),
                (ERROR + "Exception", invoke("SafeRain", PUT, True)),
                (bare + "UnknownMethod", lambda: instance.ask(TYPED, "NoSuchMember")),
                (bare + "UnknownProperty", lambda: instance.get("Safe")),
                (bare + "PropertyReadOnly", lambda: instance.set("Version", "1")),
                (bare + "UnknownObject", lambda: instance.ask(
                    DISPATCH, "Release", path=instance.path.replace("Nubilo/", "Nubilo/0")))]:
            self.assertError(error, call)

        safety = "Kiv.Automation.IObjectSafety"
        dispatch_id = "{00020400-0000-0000-C000-000000000046}"
        self.assertEqual(instance.ask(safety, "GetInterfaceSafetyOptions", "s", dispatch_id),
                         ("uu", [3, 1]))
        instance.ask(safety, "SetInterfaceSafetyOptions", "suu", dispatch_id, 1, 1)
        for error, iid, mask in [("Fail", dispatch_id, 2), ("NoInterface", "{}", 1)]:
            self.assertError(ERROR + error, lambda iid=iid, mask=mask: instance.ask(
                safety, "SetInterfaceSafetyOptions", "suu", iid, mask, mask))


if __name__ == "__main__":
    unittest.main()

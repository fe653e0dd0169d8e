"""The automation server of the whole program, as other programs see it."""

import json
import os
import pathlib
import signal
import subprocess
import sys
import time
import unittest
import unittest.mock
import xml.etree.ElementTree as ElementTree

import dbus
import dbus.lowlevel

from monitored import METHOD, PUT, READ, Client, Monitored
import run

HERE = pathlib.Path(__file__).resolve().parent
DESCRIPTION = HERE.parents[1] / "docs" / "Kiv_Skyhold.Nubilo.xml"
NAME = "Kiv_Skyhold.Nubilo"
FACTORY = "/Kiv_Skyhold/Nubilo"
TYPED = "Kiv_Skyhold._Nubilo"
DISPATCH = "Kiv.Automation.Dispatch"
PROPERTIES = "org.freedesktop.DBus.Properties"
ERROR = "Kiv.Automation.Error."

# They would end the session that the other members are asked in.
STOPPING = {"Device_Stop", "Kiv_DeviceStop"}
# Written as false it reads back as true.
INVERTED = "Kiv_DeviceSwitchCtrl"
VALUES = {"i": dbus.Int32(1), "d": dbus.Double(1.5), "b": dbus.Boolean(False), "s": dbus.String("")}


def interface_of(xml, name):
    return next(part for part in ElementTree.fromstring(xml).iter("interface")
                if part.get("name") == name)


def arguments_of(method, direction):
    return [argument.get("type") for argument in method.findall("arg")
            if argument.get("direction") == direction]


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
        _, [factory] = self.instance.ask("org.freedesktop.DBus.Introspectable", "Introspect",
                                         path=FACTORY)
        children = [node.get("name") for node in ElementTree.fromstring(factory).iter("node")]
        self.assertIn("MForm", children)
        self.assertIn(self.instance.path.rpartition("/")[2], children)
        names = [part.get("name") for part in ElementTree.fromstring(xml).iter("interface")]
        self.assertEqual(len(names), len(set(names)), names)

    def test_state_document_is_signalled_and_attaches_nobody(self):
        interface = "Kiv.Skyhold.Monitor1"
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
        typed = interface_of(DESCRIPTION.read_text(encoding="utf-8"), TYPED)
        methods = typed.findall("method")
        self.assertEqual(len(methods), 208 - len(typed.findall("property")))
        for method in methods:
            name = method.get("name")
            if name in STOPPING:
                continue
            with self.subTest(method=name):
                types = arguments_of(method, "in")
                signature, _ = instance.ask(TYPED, name, "".join(types),
                                            *[VALUES[kind] for kind in types])
                self.assertEqual(signature, "".join(arguments_of(method, "out")))

        everything = instance.ask(PROPERTIES, "GetAll", "s", TYPED)[1][0]
        self.assertEqual({str(name) for name in everything},
                         {entry.get("name") for entry in typed.findall("property")})
        for entry in typed.findall("property"):
            name = entry.get("name")
            with self.subTest(property=name):
                value = instance.get(name)
                self.assertIsInstance(value, type(VALUES[entry.get("type")]))
                self.assertEqual(everything[name], value)
                if entry.get("access") == "readwrite" and name != INVERTED:
                    instance.set(name, value)
                    self.assertEqual(instance.get(name), value)

    def test_values_reach_monitor_and_sensor_program(self):
        instance = self.instance
        for name, value in [("ThreshWindWindy", 17.5), ("ThreshRainRain", 2100.5),
                            ("CloudUnknowConditionValue", 7), ("TempFactorON", True),
                            ("DescriptionRain", "pouring"), ("DescWindCalm", "Calm ≤ 10"),
                            ("ReadCycle", 30), ("ColorWet", 0x80FF)]:
            with self.subTest(property=name):
                instance.set(name, value)
                self.assertEqual(instance.invoke(name), value)
        instance.invoke("ReadCycle", PUT, [10])

        # What a limit is copied to on the sensor program's own window.
        sensor = self.monitored.bus
        for control, value in [("UnknowRainLT", 2100.5), ("CloudLimit2", 7)]:
            box = sensor.get_object(run.SENSOR_NAME, f"/Kiv_Nubilo/Nubilo/MForm/{control}",
                                    introspect=False)
            result, _ = box.InvokeByName("Value", dbus.UInt32(READ), dbus.Array([], signature="v"),
                                         dbus_interface=DISPATCH)
            self.assertEqual(result, value)

        rain = instance.invoke("Kiv_GraphArrayRain")
        self.assertEqual(rain.signature, "av")
        last = instance.invoke("Kiv_GraphArrayLastElem", READ, [2])
        self.assertEqual(len(rain[1]), last + 1)
        history = instance.ask(TYPED, "Kiv_GraphArray")[1][0]
        self.assertEqual(len(history), 8)
        self.assertEqual(len(history[2]), 121)
        newest = instance.invoke("Kiv_GraphArrayLastElem", READ, [0])
        self.assertIsInstance(history[7][newest], dbus.Double)
        [date] = history[1][newest]
        self.assertIsInstance(date, dbus.Double)
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

        # Numbers of any kind, numeric text and booleans convert; halves go to even.
        for sent, stored in [(dbus.Byte(7), 7), (dbus.Int16(-8), -8), (dbus.UInt64(9), 9),
                             (2.5, 2), (3.5, 4), ("12", 12), (True, -1), (False, 0)]:
            with self.subTest(sent=sent):
                instance.invoke("kiv_safedelayvalue", PUT, [sent])
                self.assertEqual(instance.invoke("Kiv_SafeDelayValue"), stored)
        instance.invoke("Kiv_SafeDelayValue", PUT, [30])

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
                (ERROR + "UnknownName", lambda: instance.ask(DISPATCH, "GetIDsOfNames", "as",
                                                             ["Safe", "Unsafe"])),
                (ERROR + "MemberNotFound", lambda: instance.ask(
                    DISPATCH, "Invoke", "iuav", 0x600300D1, READ, dbus.Array([], signature="v"))),
                (ERROR + "MemberNotFound", invoke("Version", PUT, "1")),
                (ERROR + "MemberNotFound", invoke("DescDirWindCalm", PUT, "000  359  01")),
                (ERROR + "BadParamCount", invoke("SetUnSafe", METHOD)),
                (ERROR + "BadParamCount", lambda: instance.ask(TYPED, "Safe", "i", 1)),
                (ERROR + "TypeMismatch", invoke("ThreshWindCalm", PUT, "windy")),
                (ERROR + "TypeMismatch", invoke("ThreshWindCalm", PUT, "12,5")),
                (ERROR + "TypeMismatch", invoke("ThreshWindCalm", PUT, float("nan"))),
                (ERROR + "TypeMismatch", invoke("ReadCycle", PUT, 3e9)),
                (ERROR + "TypeMismatch", lambda: instance.set("SafeRain", "yes")),
                (ERROR + "Exception", invoke("SafeRain", PUT, True)),
                (bare + "UnknownMethod", lambda: instance.ask(TYPED, "NoSuchMember")),
                (bare + "UnknownMethod", lambda: instance.ask(DISPATCH, "Invoke", "s", "Safe")),
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

    def test_main_window_is_an_object(self):
        path = str(self.instance.invoke("MForm"))
        self.assertEqual(path, FACTORY + "/MForm")

        def ask(name, use, *arguments):
            return self.instance.ask(DISPATCH, "InvokeByName", "suav", name, use,
                                     dbus.Array(arguments, signature="v"), path=path)[1][0]
        self.assertTrue(str(ask("Caption", READ)).startswith("Kiv_Skyhold (v"))
        ask("WindowState", PUT, 1)
        self.assertEqual(ask("WindowState", READ), 1)
        self.instance.invoke("WindowNormal", METHOD)
        self.assertEqual(ask("WindowState", READ), 0)
        self.assertError(ERROR + "UnknownName", ask, "RegisterUsers", METHOD, 1)
        self.assertError("org.freedesktop.DBus.Error.UnknownMethod",
                         lambda: self.instance.ask(DISPATCH, "Release", path=path))


class Clients:
    """Client processes; those that still run are killed at the end."""

    def __init__(self, address):
        self.address = address
        self.processes = []

    def start(self, instances):
        process = subprocess.Popen(
            [sys.executable, "-B", HERE / "polling_client.py", self.address, str(instances)],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.processes.append(process)
        return process

    @staticmethod
    def answers_of(process):
        """Ends a client in order and tells how many answers it had."""
        process.stdin.close()
        answers = int(process.stdout.readline())
        if process.wait(10) != 0:
            raise AssertionError("a client failed")
        return answers

    def end(self):
        for process in self.processes:
            process.kill()
            process.wait()
            process.stdin.close()
            process.stdout.close()


class ManyClientsTest(unittest.TestCase):
    def clients(self, address):
        clients = Clients(address)
        self.addCleanup(clients.end)
        return clients

    def assertReady(self, process):
        self.assertEqual(process.stdout.readline(), "ready\n")

    def test_fifty_clients_of_which_half_are_killed(self):
        with Monitored() as monitored:
            own = Instance(monitored)
            clients = self.clients(monitored.run.variables["DBUS_SESSION_BUS_ADDRESS"])
            polling = [clients.start(5) for _ in range(10)]
            for process in polling:
                self.assertReady(process)

            def users():
                return own.invoke("Kiv_TotalNoUsers")
            self.assertEqual(users(), 51)
            # They ask without a pause, so that every one dies in mid-call.
            for process in polling[:5]:
                process.kill()
            monitored.wait_until("half of them", lambda: users() == 26)
            for process in polling[5:]:
                self.assertGreater(clients.answers_of(process), 0)
            monitored.wait_until("the last of them", lambda: users() == 1)
            # A connection that asks, but never reads what it is answered, holds nobody up.
            deaf = dbus.bus.BusConnection(clients.address)
            for _ in range(2000):
                deaf.send_message(dbus.lowlevel.MethodCallMessage(
                    NAME, own.path, "org.freedesktop.DBus.Introspectable", "Introspect"))
            begin = time.monotonic()
            for _ in range(10):
                users()
            self.assertLess(time.monotonic() - begin, 20)
            deaf.close()
            own.release()
            again = Instance(monitored)
            self.assertEqual(again.invoke("Kiv_TotalNoUsers"), 1)
            self.assertIsNone(monitored.monitor.poll())

    def test_program_starts_on_demand(self):
        services = run.PROGRAMS.parent / "share" / "dbus-1" / "services"
        configuration = run.BUS_CONFIGURATION.replace(
            "<auth>", f"<servicedir>{services}</servicedir><auth>")
        monitored = Monitored()
        variables = monitored.run.variables
        for display in ["DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"]:
            variables.pop(display, None)
        with unittest.mock.patch.object(run, "BUS_CONFIGURATION", configuration):
            monitored.run.start_bus()
        self.addCleanup(monitored.run.started[0].stdout.close)
        self.addCleanup(monitored.run.end)
        address = variables["DBUS_SESSION_BUS_ADDRESS"]
        bus = dbus.bus.BusConnection(address)
        self.assertFalse(bus.name_has_owner(NAME))

        # Both ask before anybody runs; neither loses what it asked for.
        clients = self.clients(address)
        first, second = clients.start(1), clients.start(2)
        self.assertReady(first)
        process = int(bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                        "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                                        "s", (NAME,)))
        self.addCleanup(lambda: pathlib.Path(f"/proc/{process}").exists()
                        and os.kill(process, signal.SIGKILL))
        self.assertReady(second)
        self.assertEqual(Instance(monitored).invoke("Kiv_TotalNoUsers"), 4)
        for client in [first, second]:
            self.assertGreater(clients.answers_of(client), 0)
        os.kill(process, signal.SIGTERM)
        monitored.wait_until("its end", lambda: not pathlib.Path(f"/proc/{process}").exists())


if __name__ == "__main__":
    unittest.main()

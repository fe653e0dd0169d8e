"""A client process: `polling_client.py ADDRESS INSTANCES`.

Makes its instances, each over a bus connection of its own, and says "ready". Then it asks each in
turn without a pause, until its standard input ends; the instances go with it.
"""

import select
import sys

import dbus

DISPATCH = "Kiv.Automation.Dispatch"


def make_instance(address):
    bus = dbus.bus.BusConnection(address)
    # A service that nobody has started yet is started by the call itself.
    path = bus.call_blocking("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo",
                             "Kiv.Automation.ClassFactory", "CreateInstance", "", ())

    def invoke(name, use, *arguments):
        result, _changed = bus.call_blocking(
            "Kiv_Skyhold.Nubilo", path, DISPATCH, "InvokeByName", "suav",
            (name, use, dbus.Array(arguments, signature="v")))
        return result
    return bus, invoke


def main():
    instances = [make_instance(sys.argv[1]) for _ in range(int(sys.argv[2]))]
    print("ready", flush=True)
    answers = 0
    while not select.select([sys.stdin], [], [], 0)[0]:
        for _bus, invoke in instances:
            if not isinstance(invoke("Safe", 3), dbus.Boolean):
                sys.exit("Safe is not a boolean")
            if str(invoke("Name", 3)) != "Kiv_Skyhold":
                sys.exit("the name is another")
            answers += 2
    print(answers, flush=True)


if __name__ == "__main__":
    main()

"""The daemon's interfaces on the private bus of a virtual instrument, through Gio."""

import contextlib
import socket

from gi.repository import Gio, GLib

from .waiting import deliver, wait_until

SERVICE = "com.orvendis.Strandel.BoardManager"
OBJECTS = ("/KyConfigMgr", "/KyComMgr", "/KyDeviceMgr")
ANSWER_SECONDS = 25


class CallError(Exception):
    """The D-Bus error that a call returned: name and message are those of docs/dbus-api.md.

    short_name is the name without the prefix of the daemon's own errors,
    "com.orvendis.Strandel.BoardManager.Error.".
    """

    def __init__(self, error):
        self.name = Gio.DBusError.get_remote_error(error) or ""
        # From Python, Gio.DBusError.strip_remote_error() would change only a copy of the error.
        self.message = error.message.removeprefix(f"GDBus.Error:{self.name}: ")
        self.short_name = self.name.removeprefix(f"{SERVICE}.Error.")
        super().__init__(f"{self.name}: {self.message}")


@contextlib.contextmanager
def named_errors():
    """Converts Gio's exceptions of a call to CallError."""
    try:
        yield
    except GLib.Error as error:
        raise CallError(error) from None


def connect(path):
    """Connects to the bus of an instrument, at the socket path, as the root user of its world.

    An ordinary user who runs the tests is root only in that world. Gio would authenticate with
    the user's ID outside the world, and the bus would reject that ID.
    """
    with socket.socket(socket.AF_UNIX) as end:
        end.settimeout(ANSWER_SECONDS)
        end.connect(str(path))
        root = b"0".hex().encode()
        end.sendall(b"\0AUTH EXTERNAL " + root + b"\r\n")
        answer = b""
        while not answer.endswith(b"\r\n") and (part := end.recv(256)):
            answer += part
        if not answer.startswith(b"OK "):
            raise ConnectionError(f"the bus answers {answer!r}")
        end.sendall(b"BEGIN\r\n")
        connected = Gio.Socket.new_from_fd(end.detach())
    stream = connected.connection_factory_create_connection()
    return Gio.DBusConnection.new_sync(stream, None, Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
                                       None, None)


def variant(value):
    """Packs a Python value for a map of type a{sv}: str as s, bool as b, int as i (from 2147483648 on
    as u), bytes as ay, list as av."""
    if isinstance(value, GLib.Variant):
        return value
    if isinstance(value, bool):
        return GLib.Variant("b", value)
    if isinstance(value, int):
        return GLib.Variant("i" if value < 2**31 else "u", value)
    if isinstance(value, bytes):
        return GLib.Variant("ay", value)
    if isinstance(value, list):
        return GLib.Variant("av", [variant(one) for one in value])
    return GLib.Variant("s", value)


def argument(signature, value):
    """Prepares an argument of a call for GLib.Variant: packs the values of an a{sv}, and returns any
    other argument unchanged."""
    if signature == "a{sv}":
        return {key: variant(one) for key, one in value.items()}
    return value


def plain(value):
    """Converts a GLib.Variant to Python's own types; ay to bytes."""
    kind = value.get_type_string()
    if kind == "ay":
        return bytes(value.unpack())
    if kind == "v":
        return plain(value.get_variant())
    if kind.startswith("a{"):
        pairs = (value.get_child_value(index) for index in range(value.n_children()))
        return {plain(pair.get_child_value(0)): plain(pair.get_child_value(1)) for pair in pairs}
    if kind[0] in "a(":
        children = [plain(value.get_child_value(index)) for index in range(value.n_children())]
        return tuple(children) if kind[0] == "(" else children
    return value.unpack()


class Signals:
    """Collects the signals of one name, from construction until close() or the end of "with".

    After the reply to a call, received holds every signal that the daemon sent before the
    reply.
    """

    def __init__(self, bus, path, interface, name):
        self._name = name
        self._bus = bus
        self._values = []
        self._waited_for = 0
        self._subscription = bus.signal_subscribe(
            SERVICE, interface, name, path, None, Gio.DBusSignalFlags.NONE,
            lambda *arguments: self._values.append(plain(arguments[5])))
        # Round trip to the bus: from here on it delivers the signals.
        bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                      "GetId", None, None, Gio.DBusCallFlags.NONE, ANSWER_SECONDS * 1000, None)

    @property
    def received(self):
        """The values of all signals so far, as tuples."""
        deliver()
        return list(self._values)

    def wait(self, matches=lambda *values: True, timeout=30):
        """Waits for the next signal for which matches(*values) is true.

        Returns these values. Raises TimeoutError after timeout seconds, with the signals that
        arrived.
        """
        def look():
            for index in range(self._waited_for, len(self._values)):
                if matches(*self._values[index]):
                    self._waited_for = index + 1
                    return [self._values[index]]
            return []

        return wait_until(look, timeout, lambda: f"{self._name}; came: {self._values}")[0]

    def close(self):
        self._bus.signal_unsubscribe(self._subscription)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


class Interface:
    """One of the daemon's interfaces, from its introspection data."""

    def __init__(self, bus, path, info):
        self._bus = bus
        self._path = path
        self._info = info

    def call(self, name, *values, timeout=ANSWER_SECONDS):
        """Calls a method. Returns None, a value, or a tuple of several values.

        Pass a map as a dict; its values are packed by their types, unless they are
        GLib.Variants. Raises CallError if the call returns an error.
        """
        method = self._info.lookup_method(name)
        if method is None:
            raise AttributeError(f"{self._info.name} has no method {name}")
        signatures = [one.signature for one in method.in_args]
        if len(values) != len(signatures):
            raise TypeError(f"{name} takes {len(signatures)} arguments, not {len(values)}")
        arguments = GLib.Variant(f"({''.join(signatures)})",
                                 tuple(map(argument, signatures, values)))
        with named_errors():
            answer = self._bus.call_sync(
                SERVICE, self._path, self._info.name, name, arguments, None,
                Gio.DBusCallFlags.NONE, int(timeout * 1000), None)
        results = plain(answer)
        return results if len(results) > 1 else next(iter(results), None)

    def get(self, name):
        """Reads a property."""
        with named_errors():
            answer = self._bus.call_sync(
                SERVICE, self._path, "org.freedesktop.DBus.Properties", "Get",
                GLib.Variant("(ss)", (self._info.name, name)), None,
                Gio.DBusCallFlags.NONE, ANSWER_SECONDS * 1000, None)
        return plain(answer)[0]

    def signals(self, name):
        """Subscribes to a signal."""
        if self._info.lookup_signal(name) is None:
            raise AttributeError(f"{self._info.name} has no signal {name}")
        return Signals(self._bus, self._path, self._info.name, name)


def find_interface(bus, short_name):
    """Returns the daemon's interface with that short name, such as "WIFI", or None."""
    for path in OBJECTS:
        with named_errors():
            text, = bus.call_sync(
                SERVICE, path, "org.freedesktop.DBus.Introspectable", "Introspect", None, None,
                Gio.DBusCallFlags.NONE, ANSWER_SECONDS * 1000, None).unpack()
        info = Gio.DBusNodeInfo.new_for_xml(text).lookup_interface(f"{SERVICE}.{short_name}")
        if info is not None:
            return Interface(bus, path, info)
    return None

"""The surroundings of the daemon in a virtual instrument: board, cards and cable."""

import contextlib
import os
import pathlib

from .waiting import wait_until


class Files:
    """A directory of small text files: files["temperature/SOM"] = 61.

    A read returns the value as text, without leading and trailing blanks.
    """

    def __init__(self, directory):
        self.directory = pathlib.Path(directory)

    def __getitem__(self, name):
        return (self.directory / name).read_text().strip()

    def __setitem__(self, name, value):
        path = self.directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        # Replace atomically: a reader never sees an empty file.
        fresh = path.with_name(f".{path.name}.{os.getpid()}")
        fresh.write_text(f"{value}\n")
        fresh.replace(path)

    def __delitem__(self, name):
        (self.directory / name).unlink()

    def __contains__(self, name):
        return (self.directory / name).exists()

    def wait(self, name, value, timeout=30):
        """Waits until a file has the value."""
        def holds():
            try:
                return self[name] == str(value)
            except FileNotFoundError:
                return False

        wait_until(holds, timeout, lambda: f"{name} should be {str(value)!r}, but is "
                   f"{self[name] if name in self else 'absent'!r}")


class Board(Files):
    """The simulated board; docs/simulated-board.md lists its files and faults."""

    @contextlib.contextmanager
    def fault(self, operation, words="always"):
        """Makes an operation, such as "KyLeds.setLedState", fail or misbehave during "with".

        The words are the text of the fault's file.
        """
        name = f"faults/{operation}"
        self[name] = words
        try:
            yield
        finally:
            # The file may be gone: if the words are a number of calls, the board removes the file
            # at the last of these calls.
            (self.directory / name).unlink(missing_ok=True)


class Card:
    """Controls the SD card or the USB key: inserts, mounts, unmounts and removes it."""

    def __init__(self, run, device):
        self._run = run
        self._device = device

    def insert(self):
        self._run("storage", "insert", self._device)

    def mount(self):
        self._run("storage", "mount", self._device)

    def unmount(self):
        self._run("storage", "unmount", self._device)

    def remove(self):
        self._run("storage", "remove", self._device)


class Cable:
    """The cable of eth0, and the DHCP server at its other end."""

    def __init__(self, run):
        self._run = run

    def unplug(self):
        self._run("ethernet", "unplug")

    def plug(self):
        self._run("ethernet", "plug")

    def mute_server(self):
        self._run("ethernet", "mute")

    def unmute_server(self):
        self._run("ethernet", "unmute")

"""A virtual instrument, from its start to its end."""

import os
import pathlib
import select
import shlex
import shutil
import subprocess
import tempfile

from . import bus
from .hardware import Board, Cable, Card, Files

# In a source tree, the command builds the instrument before it starts the instrument.
START_SECONDS = 600
END_SECONDS = 30
COMMAND_SECONDS = 60


def find_command():
    """Returns the command that starts an instrument: the words of KYBOARD_INSTRUMENT, this tree's
    ./run, or kyboard-instrument in PATH."""
    if "KYBOARD_INSTRUMENT" in os.environ:
        return shlex.split(os.environ["KYBOARD_INSTRUMENT"])
    tree = pathlib.Path(__file__).resolve().parents[3]
    if (tree / "simulator/world").exists() and (tree / "run").exists():
        return [str(tree / "run")]
    command = shutil.which("kyboard-instrument")
    if command is None:
        raise FileNotFoundError("no virtual instrument: install kyboardmanager-simulator, or set "
                                "KYBOARD_INSTRUMENT")
    return [command]


class Instrument:
    """A virtual instrument, independent of all others; use it in a "with" statement.

    It runs in a private world. Its files and its bus are accessible from outside through the
    root directory of one of its processes in /proc. It ends with the process that created it.
    speed, from 1 to 60, is how many times faster time passes in it.
    """

    def __init__(self, speed=1):
        self._directory = tempfile.mkdtemp(prefix="instrument-")
        self._handle = os.path.join(self._directory, "handle")
        #: The start of a command line: append "--" and a command to run it in this instrument.
        self.command = [*find_command(), "--handle", self._handle]
        self._interfaces = {}
        self._process = None
        try:
            self._start(speed)
            #: The root directory of the instrument's world, a pathlib.Path.
            self.root = pathlib.Path(f"/proc/{pathlib.Path(self._handle).read_text().strip()}/root")
            socket = self.root / "run/dbus/system_bus_socket"
            #: The address of the private bus, for other programs of the user who created the
            #: instrument. This user is root in the world. If the user is not root on the machine,
            #: the programs must authenticate without a user ID, as busctl does.
            self.address = f"unix:path={socket}"
            #: A Gio.DBusConnection to the private bus, authenticated as the root user of the world.
            self.bus = bus.connect(socket)
            #: The simulated board.
            self.board = Board(self.root / "run/strandel-board")
            #: The access points, one directory each.
            self.air = Files(self.root / "run/strandel-air")
            #: The cable of eth0.
            self.cable = Cable(self.run)
        except BaseException:
            self.close()
            raise

    def _start(self, speed):
        complaints = os.path.join(self._directory, "complaints")
        # cat ends when its stdin has no writer left: after close(), or when this process ends.
        with open(complaints, "wb") as file:
            self._process = subprocess.Popen(
                [*self.command, "--speed", str(speed), "--", "sh", "-c", "echo up; exec cat"],
                stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=file, start_new_session=True)
        ready, _, _ = select.select([self._process.stdout], [], [], START_SECONDS)
        if not ready or self._process.stdout.readline() != b"up\n":
            with open(complaints, encoding="utf-8", errors="replace") as file:
                raise RuntimeError(f"the virtual instrument did not come up:\n{file.read()}")

    def __getitem__(self, name):
        """Returns an interface of the daemon, for example instrument["WIFI"]."""
        if name not in self._interfaces:
            found = bus.find_interface(self.bus, name)
            if found is None:
                raise KeyError(f"the daemon has no interface {name}")
            self._interfaces[name] = found
        return self._interfaces[name]

    def card(self, device="SD"):
        """Returns the SD card ("SD") or the USB key ("USB")."""
        return Card(self.run, device)

    def run(self, *command, input=None, check=True, timeout=COMMAND_SECONDS):
        """Runs a command in the instrument and returns its subprocess.CompletedProcess, with text
        output.

        Unless check is false, a status other than 0 raises subprocess.CalledProcessError.
        """
        words = [*self.command, "--", *command]
        feed = {"stdin": subprocess.DEVNULL} if input is None else {"input": input}
        done = subprocess.run(words, capture_output=True, text=True, timeout=timeout, **feed)
        if check and done.returncode != 0:
            raise subprocess.CalledProcessError(done.returncode, command, done.stdout,
                                                done.stderr)
        return done

    def stop_daemon(self):
        """Stops the daemon, as a shutdown of the instrument does."""
        self.run("daemon", "stop")

    def kill_daemon(self):
        """Ends the daemon with SIGKILL, to simulate a crash."""
        self.run("daemon", "kill")

    def start_daemon(self):
        """Starts the daemon again and waits until it answers."""
        self._interfaces = {}
        self.run("daemon", "start")

    def restart_daemon(self):
        """Stops and starts the daemon; it reads settings and records again."""
        self.stop_daemon()
        self.start_daemon()

    @property
    def log(self):
        """The daemon's log."""
        return (self.root / "run/KyBoardManager.log").read_text(errors="replace")

    def close(self):
        """Ends the instrument, with everything in it."""
        if self._process is not None:
            self._process.stdin.close()
            try:
                self._process.wait(END_SECONDS)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.wait()
            self._process.stdout.close()
            self._process = None
        shutil.rmtree(self._directory, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

"""The measured services, their surroundings, and the measuring programs."""

import json
import os
import pathlib
import re
import signal
import subprocess
import time

TREE = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = TREE / "build"
PROGRAMS = BUILD / "benchmarks"
STILL_BOARD = PROGRAMS / "board"
SIMULATED_BOARD = BUILD / "simulator/board"
MEASURED_PEERS = BUILD / "measured-peers"

DAEMON = "com.orvendis.Strandel.BoardManager"
BARE = "com.orvendis.Strandel.Bare"
ECHO = "com.orvendis.Strandel.Echo"
CONNMAN = "net.connman"
UPOWER = "org.freedesktop.UPower"
DEADLINE = 20


def run(*command, **options):
    """Returns the output of a command; a failure ends the benchmark."""
    return subprocess.run([str(word) for word in command], check=True, text=True,
                          stdout=subprocess.PIPE, **options).stdout


def wait_until(condition, what):
    end = time.monotonic() + DEADLINE
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError(what)
        time.sleep(0.01)


class Service:
    """A program that owns a bus name."""

    def __init__(self, name, *command, libraries=STILL_BOARD, label=None):
        self.name = name
        self.command = [str(word) for word in command]
        self.environment = dict(os.environ, LD_LIBRARY_PATH=str(libraries))
        self.label = label or name
        self.process = None

    def __enter__(self):
        self.process = subprocess.Popen(self.command, env=self.environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        run("gdbus", "wait", "--system", "--timeout", DEADLINE, self.name)
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        wait_until(lambda: "false" in on_bus("NameHasOwner", self.name), f"{self.name} stays")

    @property
    def pid(self):
        return self.process.pid

    def cpu_time(self):
        """The CPU time of all threads of the service so far, in microseconds."""
        return time.clock_gettime_ns((~self.pid << 3) | 2) / 1000

    def memory(self):
        """Memory in kilobytes, threads and descriptors."""
        text = pathlib.Path(f"/proc/{self.pid}/smaps_rollup").read_text()
        kilobytes = {name: int(re.search(rf"^{name}:\s+(\d+)", text, re.M)[1])
                     for name in ("Rss", "Pss", "Private_Dirty")}
        return kilobytes | {"threads": len(os.listdir(f"/proc/{self.pid}/task")),
                            "descriptors": len(os.listdir(f"/proc/{self.pid}/fd"))}

    def sleeps(self):
        """How often each thread of the service has gone to sleep so far."""
        counts = {}
        for task in pathlib.Path(f"/proc/{self.pid}/task").iterdir():
            status = (task / "status").read_text()
            counts[task.name] = int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", status,
                                              re.M)[1])
        return counts

    def thread_name(self, thread):
        return pathlib.Path(f"/proc/{self.pid}/task/{thread}/comm").read_text().strip()


def daemon(**options):
    return Service(DAEMON, "KyBoardManager", label="daemon", **options)


def bare(**options):
    return Service(BARE, PROGRAMS / "bareqt", label="bare Qt", **options)


def echo():
    return Service(ECHO, PROGRAMS / "echo", label="libdbus echo")


def upower():
    libraries = ":".join(str(path) for path in MEASURED_PEERS.glob("usr/lib/*-linux-*"))
    return Service(UPOWER, MEASURED_PEERS / "usr/libexec/upowerd", libraries=libraries,
                   label="upowerd")


def connman():
    """The real ConnMan with a wired interface."""
    run(TREE / "simulator/network/ethernet", "build")
    return Service(CONNMAN, TREE / "simulator/network/ethernet", "connmand", label="connmand")


class ConnmanStandIn(Service):
    """The stand-in for ConnMan, which replies immediately."""

    def __init__(self):
        super().__init__(CONNMAN, BUILD / "simulator/connman/connmand", label="ConnMan stand-in")

    def __enter__(self):
        super().__enter__()
        technologies = [f"('/net/connman/technology/{name}', {{'Type': <'{name}'>, "
                        "'Name': <''>, 'Powered': <false>, 'Connected': <false>})"
                        for name in ("ethernet", "wifi")]
        self.drive("SetTechnologies", f"@a(oa{{sv}}) [{', '.join(technologies)}]")
        return self

    def has_been_called(self, call):
        return call in self.drive("Journal")

    def drive(self, method, *arguments):
        return run("gdbus", "call", "--system", "--dest", CONNMAN, "--object-path", "/standin",
                   "--method", f"com.orvendis.Strandel.ConnManStandIn.{method}", "--", *arguments)

    def set_services(self, services):
        self.drive("SetServices", f"@a(oa{{sv}}) [{', '.join(services)}]")


def on_bus(method, *arguments):
    return run("gdbus", "call", "--system", "--dest", "org.freedesktop.DBus", "--object-path",
               "/org/freedesktop/DBus", "--method", f"org.freedesktop.DBus.{method}", *arguments)


def call(words, calls=1, **options):
    """Calls a method repeatedly; returns the figures of the calling program."""
    flags = [part for name, value in options.items() for part in (f"--{name}", value)]
    return json.loads(run(PROGRAMS / "call", "--calls", calls, *flags, *words))


def own_method(service, path, method, *arguments):
    """Returns the arguments of benchmarks/call for a method of the daemon or the bare service."""
    return [service, path, f"{service}.{method}", *arguments]


def operate(method, *arguments, path=None):
    """Calls a method of the daemon once, with arguments in gdbus's format."""
    path = path or {"Users": "/KyConfigMgr", "Ethernet": "/KyComMgr", "WIFI": "/KyComMgr",
                    "WIFIAP": "/KyComMgr"}.get(method.split(".")[0], "/KyDeviceMgr")
    return run("gdbus", "call", "--system", "--timeout", 120, "--dest", DAEMON, "--object-path",
               path, "--method", f"{DAEMON}.{method}", "--", *arguments)


# A method that the daemon answers from memory: a late reply shows that its event loop is blocked.
PROBE = own_method(DAEMON, "/KyDeviceMgr", "Alimentation.getBatteryVoltage")


class Probe:
    """Another client, which calls continuously while an operation runs in the daemon."""

    def __init__(self, microseconds):
        self.interval = microseconds
        self.result = None

    def __enter__(self):
        self.process = subprocess.Popen(
            [str(PROGRAMS / "call"), "--every", str(self.interval), *PROBE], text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        # Give the client time to start: this call starts another program, and usually takes longer.
        call(PROBE)
        return self

    def __exit__(self, *failure):
        # The daemon replies in order: after this reply, everything sent before has been handled.
        call(PROBE)
        output, _ = self.process.communicate()
        if failure[0] is None:
            self.result = json.loads(output)


class Listener:
    """Clients that are subscribed to a signal of the daemon."""

    def __init__(self, clients, signals, member):
        rule = f"type='signal',sender='{DAEMON}',member='{member}'"
        self.process = subprocess.Popen(
            [str(PROGRAMS / "listen"), str(clients), str(signals), rule], text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        if self.process.stdout.readline() != "ready\n":
            raise RuntimeError("no listener")

    def received_all(self):
        """Waits until all clients have received all signals; returns the seconds this took."""
        output = self.process.stdout.readline()
        self.process.stdin.close()
        self.process.wait()
        return json.loads(output)["seconds"]

    def received_so_far(self):
        output, _ = self.process.communicate()
        return json.loads(output)["received"]


def system_calls(service, words, calls):
    """Returns a service's system calls for each call of a method."""
    strace = subprocess.Popen(
        ["strace", "-f", "-c", "-p", str(service.pid)], text=True, stderr=subprocess.PIPE)
    threads = len(os.listdir(f"/proc/{service.pid}/task"))
    line = strace.stderr.readline()
    if "attached" not in line:
        raise RuntimeError(f"strace with {threads} threads: {line}")
    call(words, calls)
    strace.send_signal(signal.SIGINT)
    table = strace.stderr.read()
    strace.wait()
    total = re.search(r"^100\.00 .*$", table, re.M)[0].split()
    return int(total[3]) / calls


def lay_out_world():
    """Creates the files of an instrument, and lets every user own every bus name and call every
    service."""
    profiles = pathlib.Path("/tmp/User_part")
    profiles.mkdir()
    for user in ("default_user", "user1", "user2", "user3", "user4"):
        run("cp", "-a", TREE / "simulator/profile", profiles / f"{user}_profile")
    (profiles / "system").symlink_to(profiles / "user1_profile")
    run("cp", *(TREE / "simulator/redpine").iterdir(), "/usr/share/redpine/")
    application = pathlib.Path("/opt/KyApp")
    application.write_text("#!/bin/sh\necho 4.1.0\n")
    application.chmod(0o755)
    pathlib.Path("/etc/sw_version").write_text("Strandel BSP 3.2\n")
    pathlib.Path("/var/lib/upower").mkdir()
    pathlib.Path("/run/dbus/extra.conf").write_text(
        '<busconfig><policy context="default"><allow own="*"/><allow send_type="method_call"/>'
        '</policy></busconfig>\n')
    on_bus("ReloadConfig")


def wifi_service(index):
    """Returns a Wi-Fi service as text; 500 such texts fit into one argument of a program."""
    return (f"('/net/connman/service/wifi_02aabbccdd01_{index:08x}_managed_psk', {{'Type': <'wifi'>,"
            f" 'Name': <'Network {index}'>, 'State': <'idle'>, 'Strength': <byte {index % 100}>,"
            " 'Security': <['psk']>, 'Favorite': <false>, 'IPv4': <@a{sv} {}>})")


def wired_service():
    return ("('/net/connman/service/ethernet_02aabbccdd02_cable', {'Type': <'ethernet'>,"
            " 'Name': <'Wired'>, 'State': <'ready'>, 'Security': <@as []>, 'Favorite': <true>,"
            " 'IPv4': <{'Method': <'dhcp'>, 'Address': <'10.77.0.50'>, 'Netmask':"
            " <'255.255.255.0'>, 'Gateway': <'10.77.0.1'>}>})")


def connect_ethernet(standin):
    """Brings the wired interface to the state in which it waits for a service."""
    standin.drive("ClearJournal")
    operate("Ethernet.connect")
    wait_until(lambda: standin.has_been_called(
        'Technology.SetProperty /net/connman/technology/ethernet ("Powered", <true>)'),
        "the wired interface is not powered on")


def use_wired_service(standin):
    """Makes the daemon use the wired service, one of ten services of the stand-in."""
    standin.set_services([wired_service(), *map(wifi_service, range(9))])
    connect_ethernet(standin)
    standin.drive("AnnounceServices")
    wait_until(lambda: "Address" in operate("Ethernet.getIPv4"), "no wired service")

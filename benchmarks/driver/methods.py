"""The cost of a call of each method, compared with the same call of the bare service."""

import statistics
from contextlib import ExitStack

import services
from figures import ratio, summary
from services import BARE, DAEMON

ROUNDS = 7
# In each round the compared services take turns, so that disturbances affect all services equally.
TURNS = 5
CALLS = 500
PIPELINED = 500
WINDOW = 64
TRACED = 300
WARMING = 2000

PROPERTIES = "org.freedesktop.DBus.Properties.Get"
METHODS = {
    "getUser": lambda name: services.own_method(name, "/KyConfigMgr", "Users.getUser"),
    "getLEDStatus": lambda name: services.own_method(name, "/KyDeviceMgr", "LED.getLEDStatus"),
    "getTemperatures": lambda name: services.own_method(
        name, "/KyDeviceMgr", "Temperature.getTemperatures"),
    "batteryStatus": lambda name: [name, "/KyDeviceMgr", PROPERTIES, f"{name}.Alimentation",
                                   "batteryStatus"],
    "getEepromInstrument": lambda name: services.own_method(
        name, "/KyDeviceMgr", "Version.getEepromInstrument"),
    "keepAlive": lambda name: services.own_method(name, "/KyDeviceMgr", "Watchdog.keepAlive"),
    "getIPv4": lambda name: services.own_method(name, "/KyComMgr", "Ethernet.getIPv4"),
}
FEW = {"getIPv4": 4}

FIGURES = ("latency", "p99", "per_second", "cpu")


class Row:
    """One method of one service, with the figures of each round."""

    def __init__(self, service, words, share=1):
        self.service = service
        self.words = words
        self.share = share
        self.turns = []
        self.rounds = {name: [] for name in FIGURES}
        self.system_calls = None

    def take_turn(self):
        before = self.service.cpu_time()
        one_by_one = services.call(self.words, CALLS // self.share)
        spent = self.service.cpu_time() - before
        at_once = services.call(self.words, PIPELINED // self.share, window=WINDOW)
        self.turns.append({"latency": one_by_one["median"], "p99": one_by_one["p99"],
                           "per_second": at_once["calls"] / at_once["seconds"],
                           "cpu": spent / one_by_one["calls"]})

    def end_round(self):
        for name in FIGURES:
            self.rounds[name].append(statistics.median(turn[name] for turn in self.turns))
        self.turns = []

    def trace(self):
        self.system_calls = services.system_calls(self.service, self.words, TRACED)

    def result(self, reference=None):
        figures = {name: summary(values) for name, values in self.rounds.items()}
        figures["system_calls"] = self.system_calls
        if reference:
            figures["ratio"] = {name: ratio(self.rounds[name], reference.rounds[name])
                                for name in FIGURES}
        return figures


def take_rounds(groups):
    """Measures several rounds of each group. The rows of a group take turns."""
    for rows in groups:
        for row in rows:
            services.call(row.words, WARMING // row.share)
    for _ in range(ROUNDS):
        for rows in groups:
            for _ in range(TURNS):
                for row in rows:
                    row.take_turn()
            for row in rows:
                row.end_round()
    for rows in groups:
        for row in rows:
            row.trace()


def measure_methods():
    """Measures the same methods of the daemon and of the bare service."""
    with ExitStack() as stack:
        standin = stack.enter_context(services.ConnmanStandIn())
        daemon = stack.enter_context(services.daemon())
        bare = stack.enter_context(services.bare())
        services.use_wired_service(standin)
        pairs = {method: (Row(daemon, words(DAEMON), FEW.get(method, 1)),
                          Row(bare, words(BARE), FEW.get(method, 1)))
                 for method, words in METHODS.items()}
        take_rounds(pairs.values())
        return {method: {"daemon": own.result(other), "bare": other.result()}
                for method, (own, other) in pairs.items()}


def measure_peers():
    """Measures calls of the daemon and of other services."""
    with ExitStack() as stack:
        rows = {}
        for service, words in (
                (services.echo(), [services.ECHO, "/", "com.orvendis.Strandel.Echo.getUser"]),
                (services.bare(), METHODS["getUser"](BARE)),
                (services.connman(), [services.CONNMAN, "/",
                                      "net.connman.Manager.GetTechnologies"]),
                (services.upower(), [services.UPOWER, "/org/freedesktop/UPower", PROPERTIES,
                                     services.UPOWER, "OnBattery"])):
            rows[service.label] = Row(stack.enter_context(service), words)
        rows["daemon getUser"] = Row(stack.enter_context(services.daemon()),
                                     METHODS["getUser"](DAEMON))
        rows["daemon batteryStatus"] = Row(rows["daemon getUser"].service,
                                           METHODS["batteryStatus"](DAEMON))
        take_rounds([list(rows.values())])
        return {label: row.result(rows["libdbus echo"]) for label, row in rows.items()}

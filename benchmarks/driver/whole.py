"""The daemon as a whole: start, memory, idleness, and blocking of its event loop."""

import time
from contextlib import ExitStack

import methods
import profiles
import services
from figures import ratio, summary

START_ROUNDS = 15
SLOW = 200
CALLS = 100000
CHECKPOINTS = (0, 2000, CALLS // 2, CALLS)
IDLE_SECONDS = 60
SAMPLES_PER_SECOND = 4
SETTLING = 3


def time_of_start(service):
    """Returns the milliseconds from the start of a service to its bus name."""
    return float(services.run(services.PROGRAMS / "start", service.name, *service.command,
                              env=service.environment, stderr=-3)) / 1000


def take_starts(daemons):
    """Measures starts of several daemons and of the bare service, which take turns."""
    candidates = {**daemons, "bare": services.bare()}
    rounds = {label: [] for label in candidates}
    for label in candidates:
        time_of_start(candidates[label])
    for _ in range(START_ROUNDS):
        for label, service in candidates.items():
            rounds[label].append(time_of_start(service))
    return rounds


def measure_start():
    result = {}

    def take(**daemons):
        rounds = take_starts({label.replace("_", " "): service
                              for label, service in daemons.items()})
        bare = rounds.pop("bare")
        for label, values in rounds.items():
            result[label] = summary(values) | {"ratio": ratio(values, bare)}
        result["bare Qt"] = summary(bare)

    simulated = services.daemon(libraries=services.SIMULATED_BOARD)
    take(without_ConnMan=services.daemon())
    with services.connman():
        take(with_ConnMan=services.daemon(), with_ConnMan_and_the_simulated_board=simulated)
    with services.ConnmanStandIn() as standin:
        standin.drive("Delay", "Technology.SetProperty", f"uint32 {SLOW}")
        take(**{f"with_a_ConnMan_that_takes_{SLOW}_ms_for_each_call": services.daemon()})
    result["libdbus echo"] = summary(time_of_start(services.echo()) for _ in range(START_ROUNDS))
    result["upowerd"] = summary(time_of_start(services.upower()) for _ in range(START_ROUNDS))
    return result


def memory_over_calls(service, name):
    """Measures memory at the start, and after each checkpoint of calls of all methods."""
    words = [words(name) for method, words in methods.METHODS.items() if method != "getIPv4"]
    checkpoints = {0: service.memory()}
    for before, after in zip(CHECKPOINTS, CHECKPOINTS[1:]):
        for each in words:
            services.call(each, (after - before) // len(words))
        checkpoints[after] = service.memory()
    return checkpoints


def measure_memory():
    with ExitStack() as stack:
        stack.enter_context(services.ConnmanStandIn())
        daemon = stack.enter_context(services.daemon())
        bare = stack.enter_context(services.bare())
        return {"daemon": memory_over_calls(daemon, services.DAEMON),
                "bare Qt": memory_over_calls(bare, services.BARE)}


def measure_idleness():
    """Measures the wake-ups of an idle daemon in a minute."""
    with services.daemon() as daemon:
        listener = services.Listener(1, 1000, "batteryStatus")
        time.sleep(SETTLING)
        first = before = daemon.sleeps()
        moments = 0
        was_awake = False
        for _ in range(IDLE_SECONDS * SAMPLES_PER_SECOND):
            time.sleep(1 / SAMPLES_PER_SECOND)
            counts = daemon.sleeps()
            is_awake = counts != before
            # A wake-up that two successive samples see counts once.
            moments += is_awake and not was_awake
            was_awake = is_awake
            before = counts
        woken = {}
        for thread, count in before.items():
            name = daemon.thread_name(thread)
            woken[name] = woken.get(name, 0) + count - first[thread]
        return {"seconds": IDLE_SECONDS, "moments": moments,
                "battery_checks": listener.received_so_far(), "wake_ups": woken}


def hold(label, operation, result):
    """Measures the longest wait of another client during an operation; stores it in the result."""
    longest = []
    for _ in range(5):
        with services.Probe(1000) as probe:
            operation()
        longest.append(probe.result["longest"] / 1000)
    result[label] = summary(longest)


def measure_holds():
    operate = services.operate
    result = {}
    with ExitStack() as stack:
        standin = stack.enter_context(services.ConnmanStandIn())
        stack.enter_context(services.daemon(libraries=services.SIMULATED_BOARD))
        services.use_wired_service(standin)
        hold("nothing", lambda: time.sleep(0.2), result)
        for method in ("LED.getLEDStatus", "Temperature.getTemperatures", "Watchdog.keepAlive",
                       "Version.getEepromMesure", "Ethernet.getIPv4", "Ethernet.getHardwareInfos"):
            hold(method, lambda method=method: operate(method), result)
        hold("Ethernet.setIPv4", lambda: operate("Ethernet.setIPv4", "{'Method': <'dhcp'>}"),
             result)
        hold("Storage.umount", lambda: operate("Storage.umount", "SD"), result)
        users = iter(("user2", "user3") * 3)
        hold("Users.setUser", lambda: operate("Users.setUser", next(users)), result)
        with profiles.default_profile(2000, 2048):
            hold("Users.factoryReset, 2,000 files",
                 lambda: operate("Users.factoryReset", "user4"), result)

        def connect():
            operate("Ethernet.disconnect")
            services.connect_ethernet(standin)

        hold("Ethernet.connect, until the state association", connect, result)
    longest = []
    for _ in range(5):
        # Start a new daemon each time: a daemon determines the versions only once.
        with services.daemon(), services.Probe(1000) as probe:
            operate("Version.getSoftwareVersions")
        longest.append(probe.result["longest"] / 1000)
    result["Version.getSoftwareVersions, the first time"] = summary(longest)
    return result

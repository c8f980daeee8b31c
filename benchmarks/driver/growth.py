"""How processor time and delays grow with the number of clients, networks and kernel events."""

import services
from figures import ratio, summary
from services import BARE, DAEMON

ROUNDS = 5
SUBSCRIBERS = (1, 10, 50, 100)
SIGNALS = 500
NETWORKS = (1, 10, 50, 100, 200, 500)
ANNOUNCEMENTS = 20
STORM = 100
EVENTS = 10000
CLIENTS = 64

GET_TEMPERATURES = services.own_method(DAEMON, "/KyDeviceMgr", "Temperature.getTemperatures")
ANNOUNCE = [services.CONNMAN, "/standin", "com.orvendis.Strandel.ConnManStandIn.AnnounceServices"]


def measure_signals():
    """Measures calls that each cause a signal, with an increasing number of subscribers."""
    result = {}
    with services.daemon() as daemon:
        services.operate("Temperature.setTemperatureThreshold", "SOM", "0")
        for clients in SUBSCRIBERS:
            cpu, delivered = [], []
            for _ in range(ROUNDS):
                listener = services.Listener(clients, SIGNALS, "temperatureReached")
                before = daemon.cpu_time()
                services.call(GET_TEMPERATURES, SIGNALS)
                cpu.append((daemon.cpu_time() - before) / SIGNALS)
                delivered.append(listener.received_all() / SIGNALS * 1e6)
            result[clients] = {"cpu": summary(cpu), "delivered": summary(delivered)}
    return result


def measure_services():
    """Measures the processor time and the delay of a ServicesChanged signal of ConnMan, with an
    increasing number of networks: at each signal, the daemon fetches the whole list of services."""
    result = {}
    with services.ConnmanStandIn() as standin, services.daemon() as daemon:
        for networks in NETWORKS:
            standin.set_services(map(services.wifi_service, range(networks)))
            # For a minute after this call, the daemon searches the list for a wired service at each
            # announcement. The list has none, so the daemon searches the whole list.
            services.connect_ethernet(standin)
            cpu, elapsed = [], []
            for _ in range(ROUNDS):
                before = daemon.cpu_time()
                announcing = services.call(ANNOUNCE, ANNOUNCEMENTS)["seconds"]
                waiting = services.call(services.PROBE)["seconds"]
                cpu.append((daemon.cpu_time() - before) / ANNOUNCEMENTS)
                elapsed.append((announcing + waiting) / ANNOUNCEMENTS * 1e6)
            storms = [storm(standin) for _ in range(ROUNDS)]
            result[networks] = {
                "cpu": summary(cpu), "elapsed": summary(elapsed),
                "storm": {name: summary(each[name] / 1000 for each in storms)
                          for name in ("median", "p99", "longest")}}
            services.operate("Ethernet.disconnect")
    return result


def storm(standin):
    """Returns how long another client waits for replies during many announcements at once."""
    standin.drive("ClearJournal")
    with services.Probe(2000) as probe:
        services.call(ANNOUNCE, STORM, window=STORM)
    fetched = standin.drive("Journal").count("Manager.GetServices")
    if fetched < STORM:
        raise RuntimeError(f"{fetched} lists fetched for {STORM} announcements")
    return probe.result


def send_events(text, count):
    services.run(services.BUILD / "simulator/uevent", "--count", count, text)


def measure_events():
    """Measures bursts of kernel events: first of an inserted card, then of other devices."""
    card, other = [], []
    with services.daemon() as daemon:
        before = daemon.memory()
        for _ in range(ROUNDS):
            listener = services.Listener(1, EVENTS, "sdcardPresence")
            start = daemon.cpu_time()
            send_events("add@/devices/platform/mmcblk0p1", EVENTS)
            seconds = listener.received_all()
            card.append({"cpu": (daemon.cpu_time() - start) / EVENTS,
                         "elapsed": seconds / EVENTS * 1e6})
            start = daemon.cpu_time()
            listener = services.Listener(1, 1, "sdcardPresence")
            send_events("change@/devices/platform/leds/led0", EVENTS)
            send_events("add@/devices/platform/mmcblk0p1", 1)
            listener.received_all()
            other.append((daemon.cpu_time() - start) / EVENTS)
        return {"events": EVENTS, "cpu": summary(each["cpu"] for each in card),
                "elapsed": summary(each["elapsed"] for each in card),
                "others_cpu": summary(other), "before": before, "after": daemon.memory()}


def measure_clients():
    """Measures how fast the daemon, and for comparison the bare Qt service, reply to many concurrent
    clients."""
    rounds = {DAEMON: [], BARE: []}
    with services.daemon(), services.bare():
        for _ in range(ROUNDS):
            for name, results in rounds.items():
                words = services.own_method(name, "/KyDeviceMgr", "Temperature.getTemperatures")
                results.append(services.call(words, 12800, clients=CLIENTS))
    rate = {name: [each["calls"] / each["seconds"] for each in results]
            for name, results in rounds.items()}
    return {"clients": CLIENTS,
            **{figure: summary(each[figure] / 1000 for each in rounds[DAEMON])
               for figure in ("median", "p99", "longest")},
            "per_second": summary(rate[DAEMON]), "ratio": ratio(rate[DAEMON], rate[BARE])}

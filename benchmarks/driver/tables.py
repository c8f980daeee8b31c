"""Formats the results as tables, as text or for docs/measurements.md."""

import textwrap

from figures import number, shown
from growth import ANNOUNCEMENTS, EVENTS, SIGNALS, STORM
from methods import WINDOW

# What the document says below the title of a table.
NOTES = {
    "Methods":
        "Round trip: the median time from a call to its reply, one call at a time. CPU: the service's "
        "processor time for each of these calls. Calls/s: with up to "
        f"{WINDOW} calls pending at a time. The columns that do not name bare Qt are the daemon's. A "
        "ratio is the daemon's figure divided by that of bare Qt.",
    "Other services":
        "The calls are getUser for the libdbus echo and bare Qt, GetTechnologies for connmand, and Get "
        "of the property OnBattery for upowerd. The libdbus echo replies to every call with a "
        "constant. The ratio is a service's round trip divided by that of the libdbus echo.",
    "Start":
        "The time from the start of the process until it owns its bus name.",
    "Memory":
        "Calls: how many calls the service has replied to, spread evenly over all methods of the first "
        "table except getIPv4. RSS: resident memory. PSS: resident memory in which each page is divided "
        "by the number of processes that share it. Private dirty: pages of this process only, to which "
        "it has written. Descriptors: open file descriptors.",
    "Idle":
        "A daemon that no client calls.",
    "How long another client waits at most":
        "The other client calls Alimentation.getBatteryVoltage every millisecond. The daemon uses the "
        "simulated board; in the last row, it uses the libraries in `benchmarks/board`, which answer at "
        "once.",
    "Signals":
        f"The daemon sends {SIGNALS} signals temperatureReached, each in answer to a call of "
        "getTemperatures. The figures include the calls.",
    "ConnMan's announcements":
        "An announcement is ConnMan's signal ServicesChanged, after which the daemon fetches the list of "
        "services. Services: the length of this list. CPU: the daemon's processor time. Until handled: "
        f"the time from the first of {ANNOUNCEMENTS} announcements until the daemon has handled all of "
        f"them, divided by {ANNOUNCEMENTS}. A storm is {STORM} announcements at once; the other client "
        "calls Alimentation.getBatteryVoltage every two milliseconds.",
    "Profiles":
        "Copy: the daemon's factory reset of a profile that does not exist. Erase: the reset of a full "
        "profile when the default profile is empty. \"cp -a and sync\" also waits until the file system "
        "is written to the disk.",
    "Kernel events":
        f"The daemon gets {EVENTS:,} kernel events without a pause. It sends signals for each event of "
        "a card. CPU: the daemon's processor time.",
    "Many clients":
        "Each client calls getTemperatures again as soon as it has its reply. Median, p99 and longest "
        "are round trips of the daemon; the ratio divides its calls/s by those of bare Qt.",
    "Goals":
        "A figure without a unit is the ratio that the goal limits.",
}


def of_methods(figures):
    head = ["method", "round trip µs", "p99 µs", "bare Qt's round trip µs", "round-trip ratio",
            "CPU µs", "CPU ratio", "calls/s", "calls/s ratio", "system calls per call",
            "bare Qt's system calls"]
    rows = []
    for method, row in figures.items():
        own, bare = row["daemon"], row["bare"]
        rows.append([method, number(own["latency"]["median"]), number(own["p99"]["median"]),
                     number(bare["latency"]["median"]), shown(own["ratio"]["latency"], 3),
                     number(own["cpu"]["median"]), shown(own["ratio"]["cpu"], 3),
                     number(own["per_second"]["median"]), shown(own["ratio"]["per_second"], 3),
                     f"{own['system_calls']:.1f}", f"{bare['system_calls']:.1f}"])
    yield "Methods", head, rows


def of_peers(figures):
    head = ["service", "round trip µs", "p99 µs", "ratio to libdbus", "CPU µs", "calls/s",
            "system calls per call"]
    rows = [[label, number(row["latency"]["median"]), number(row["p99"]["median"]),
             shown(row["ratio"]["latency"], 2), number(row["cpu"]["median"]),
             number(row["per_second"]["median"]), f"{row['system_calls']:.1f}"]
            for label, row in figures.items()]
    yield "Other services", head, rows


def of_start(figures):
    head = ["service", "ms to the bus name", "ratio to bare Qt"]
    rows = [[label if "Qt" in label or "with" not in label else f"daemon {label}", shown(row),
             shown(row["ratio"], 2) if "ratio" in row else ""] for label, row in figures.items()]
    yield "Start", head, rows


def of_memory(figures):
    head = ["service", "calls", "RSS kB", "PSS kB", "private dirty kB", "threads", "descriptors"]
    rows = [[name, f"{int(calls):,}", *(f"{at[key]:,}" for key in (
        "Rss", "Pss", "Private_Dirty", "threads", "descriptors"))]
        for name, points in figures.items() for calls, at in points.items()]
    yield "Memory", head, rows


def of_idleness(figures):
    head = ["event", f"number in {figures['seconds']} s"]
    rows = [["battery checks", figures["battery_checks"]],
            ["moments at which any thread woke up (wake-ups close together count once)",
             figures["moments"]],
            *([f"wake-ups of the thread {name}", count]
              for name, count in figures["wake_ups"].items())]
    yield "Idle", head, [[label, str(count)] for label, count in rows]


def of_holds(figures):
    yield ("How long another client waits at most", ["while the daemon handles", "longest wait ms"],
           [[label, shown(figure)] for label, figure in figures.items()])


def of_signals(figures):
    head = ["subscribed clients", "CPU µs of the daemon per signal", "µs per signal until all have it"]
    yield "Signals", head, [[str(clients), shown(row["cpu"]), shown(row["delivered"])]
                            for clients, row in figures.items()]


def of_services(figures):
    head = ["services", "CPU µs per announcement", "µs until handled",
            "other client's wait in a storm: median ms", "p99 of this wait ms",
            "longest of these waits ms"]
    yield "ConnMan's announcements", head, [
        [str(count), shown(row["cpu"]), shown(row["elapsed"]),
         *(shown(row["storm"][name]) for name in ("median", "p99", "longest"))]
        for count, row in figures.items()]


def of_profiles(figures):
    head = ["files", "bytes each", "on", "copy ms", "cp -a ms", "copy / cp -a", "cp -a and sync ms",
            "copy / cp -a and sync", "erase ms", "rm -r ms", "erase / rm -r"]
    yield "Profiles", head, [
        [f"{row['files']:,}", f"{row['size']:,}", row["place"], number(row["copy"]["median"]),
         number(row["cp"]["median"]), shown(row["copy_ratio"], 2),
         number(row["cp and sync"]["median"]), shown(row["synchronised_ratio"], 2),
         number(row["erase"]["median"]), number(row["rm"]["median"]),
         shown(row["erase_ratio"], 2)] for row in figures]


def of_events(figures):
    head = ["burst", "CPU µs per event", "µs per event until a client has all signals"]
    yield "Kernel events", head, [
        [f"{figures['events']:,} of a card", shown(figures["cpu"]), shown(figures["elapsed"])],
        [f"{figures['events']:,} of other devices", shown(figures["others_cpu"]), ""]]


def of_clients(figures):
    head = ["clients at once", "median ms", "p99 ms", "longest ms", "calls/s",
            "calls/s ratio"]
    yield "Many clients", head, [[str(figures["clients"]), *(shown(figures[name]) for name in (
        "median", "p99", "longest", "per_second")), shown(figures["ratio"], 2)]]


def of_goals(goals):
    if goals:
        yield "Goals", ["goal", "measured", "result"], [
            [each["goal"], each["measured"], "met" if each["reached"] else "missed"]
            for each in goals]


SECTIONS = {"methods": of_methods, "peers": of_peers, "start": of_start, "memory": of_memory,
            "idleness": of_idleness, "holds": of_holds, "signals": of_signals,
            "services": of_services, "profiles": of_profiles, "events": of_events,
            "clients": of_clients, "goals": of_goals}


def as_text(title, head, rows):
    widths = [max(len(line[column]) for line in [head, *rows]) for column in range(len(head))]
    lines = ["  ".join(cell.ljust(width) if column == 0 else cell.rjust(width)
                       for column, (cell, width) in enumerate(zip(line, widths))).rstrip()
             for line in [head, *rows]]
    return "\n".join([title, *(f"  {line}" for line in lines), ""])


def as_markdown(title, head, rows):
    lines = [f"| {' | '.join(line)} |" for line in [head, ["---"] * len(head), *rows]]
    note = textwrap.fill(NOTES[title], 120, break_on_hyphens=False)
    return "\n".join([f"### {title}", "", note, "", *lines, ""])


def render(results, layout):
    """Returns all tables of the results."""
    machine = results["machine"]
    tables = [layout(*table) for section, of_section in SECTIONS.items() if section in results
              for table in of_section(results[section])]
    return "\n".join([", ".join(machine.values()) + ".", "", *tables]).rstrip()

"""The daemon's goals, and whether it meets them."""

LATENCY = 1.03
DIRTY = 1.15
START = 1.3
COPY = 1.2
# For fewer files, starting "cp" takes longer than copying.
LEAST_FILES = 100
STORM_MEDIAN = 250
# For n times the services, an announcement may cost at most ANNOUNCEMENT * n times the CPU time.
ANNOUNCEMENT = 1.1
# The memory that the allocator keeps varies by a few pages.
GROWTH_KILOBYTES = 64


def goal(text, measured, reached):
    return {"goal": text, "measured": measured, "reached": bool(reached)}


def of_methods(figures):
    for method, row in figures.items():
        for name, what in (("latency", "median round trip"), ("cpu", "CPU time per call")):
            value = row["daemon"]["ratio"][name]["median"]
            yield goal(f"{method}: {what} at most {LATENCY} times the bare Qt service's",
                       f"{value:.3f}", value <= LATENCY)


def of_peers(figures):
    upower = figures["upowerd"]
    own = figures["daemon batteryStatus"]
    for name, what in (("latency", "median round trip"), ("cpu", "CPU time per call")):
        value = own[name]["median"] / upower[name]["median"]
        yield goal(f"property batteryStatus: {what} below that of upowerd's property",
                   f"{value:.2f} times", value < 1)


def of_start(figures):
    value = figures["with ConnMan"]["ratio"]["median"]
    yield goal("time from the start to the bus name, daemon with ConnMan (hardware that answers at "
               f"once): at most {START} times the bare Qt service's", f"{value:.2f}", value <= START)


def of_memory(figures):
    dirty = {name: {int(calls): at["Private_Dirty"] for calls, at in points.items()}
             for name, points in figures.items()}
    calls = sorted(dirty["daemon"])
    for at, when in ((0, "at start"), (calls[-1], f"after {calls[-1]:,} calls")):
        value = dirty["daemon"][at] / dirty["bare Qt"][at]
        yield goal(f"private dirty memory {when} at most {DIRTY} times the bare Qt service's",
                   f"{value:.2f}", value <= DIRTY)
    points = {int(count): at for count, at in figures["daemon"].items()}
    growth = dirty["daemon"][calls[-1]] - dirty["daemon"][calls[1]]
    yield goal(f"no growth in memory from {calls[1]:,} to {calls[-1]:,} calls",
               f"{growth} kB", growth <= GROWTH_KILOBYTES)
    more = points[calls[-1]]["descriptors"] - points[0]["descriptors"]
    yield goal(f"no more descriptors after {calls[-1]:,} calls", f"{more} more", more <= 0)


def of_idleness(figures):
    yield goal("no wake-up except for the battery check",
               f"{figures['moments']} moments with a wake-up, {figures['battery_checks']} checks",
               figures["moments"] <= figures["battery_checks"])


def of_services(figures):
    worst = figures[max(figures, key=int)]["storm"]["median"]["median"]
    counts = sorted(figures, key=int)
    yield goal(f"calls during a storm of announcements of {counts[-1]} services answered within "
               f"{STORM_MEDIAN} ms (median)", f"{worst:.1f} ms", worst <= STORM_MEDIAN)
    few, many = figures[counts[-3]], figures[counts[-1]]
    value = many["cpu"]["median"] / few["cpu"]["median"]
    limit = ANNOUNCEMENT * int(counts[-1]) / int(counts[-3])
    yield goal(f"CPU time of an announcement of {counts[-1]} services at most {limit:.3g} times that "
               f"of {counts[-3]} services", f"{value:.2f}", value <= limit)


def of_profiles(figures):
    for row in figures:
        if row["files"] < LEAST_FILES and row["size"] < 1000000:
            continue
        reference = "copy_ratio" if row["place"] == "memory" else "synchronised_ratio"
        against = "`cp -a`" if row["place"] == "memory" else "`cp -a` followed by a sync"
        value = row[reference]["median"]
        yield goal(f"copy of {row['files']:,} files of {row['size']:,} bytes on {row['place']} at "
                   f"most {COPY} times as long as {against}", f"{value:.2f}", value <= COPY)


CHECKS = {"methods": of_methods, "peers": of_peers, "start": of_start, "memory": of_memory,
          "idleness": of_idleness, "services": of_services, "profiles": of_profiles}


def judge(results):
    """Returns the goals of the measured sections."""
    return [each for section, check in CHECKS.items() if section in results
            for each in check(results[section])]

"""Measures the daemon and other services for comparison. Runs in a private world on one processor."""

import argparse
import datetime
import json
import os
import pathlib
import platform
import re
import sys
import time

import goals
import growth
import methods
import profiles
import services
import tables
import whole

SECTIONS = {
    "methods": methods.measure_methods,
    "peers": methods.measure_peers,
    "start": whole.measure_start,
    "memory": whole.measure_memory,
    "idleness": whole.measure_idleness,
    "holds": whole.measure_holds,
    "signals": growth.measure_signals,
    "services": growth.measure_services,
    "profiles": profiles.measure,
    "events": growth.measure_events,
    "clients": growth.measure_clients,
}


def describe_machine():
    cpuinfo = pathlib.Path("/proc/cpuinfo").read_text()
    model = re.search(r"^model name\s*:\s*(.*)$", cpuinfo, re.M)
    qt = next(pathlib.Path("/usr/lib").glob("*/libQt5Core.so.5.*.*")).name
    return {"date": datetime.date.today().isoformat(),
            "processor": model[1] if model else platform.machine(),
            "cores": f"{os.cpu_count()} cores", "kernel": f"Linux {platform.release()}",
            "qt": f"Qt {qt.split('.so.')[1]}",
            "bus": f"dbus {services.run('dbus-daemon', '--version').split()[4]}",
            "load": f"load {os.getloadavg()[0]:.1f} at the start"}


def document(text):
    """Replaces the tables between the marks of the document."""
    path = services.TREE / "docs/measurements.md"
    marks = "<!-- from here on as ./bench prints it -->", "<!-- as far as here -->"
    before, _, rest = path.read_text().partition(marks[0])
    _, _, after = rest.partition(marks[1])
    path.write_text(f"{before}{marks[0]}\n\n{text}\n{marks[1]}{after}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, prog="./bench")
    layout = parser.add_mutually_exclusive_group()
    layout.add_argument("--json", action="store_true", help="the results for a machine")
    layout.add_argument("--markdown", action="store_true", help="the tables for a document")
    layout.add_argument("--document", action="store_true",
                        help="puts the tables into docs/measurements.md")
    parser.add_argument("sections", nargs="*", metavar="SECTION", choices=[*SECTIONS, []],
                        help=f"{', '.join(SECTIONS)}; all of them unless some are named")
    options = parser.parse_args()

    results = {"machine": describe_machine()}
    services.lay_out_world()
    for section in options.sections or SECTIONS:
        start = time.monotonic()
        results[section] = SECTIONS[section]()
        print(f"bench: {section} took {time.monotonic() - start:.0f} s", file=sys.stderr)
    results["goals"] = goals.judge(results)
    if options.document:
        document(tables.render(results, tables.as_markdown))
    elif options.json:
        print(json.dumps(results, indent=1))
    else:
        print(tables.render(results, tables.as_markdown if options.markdown else tables.as_text))


main()

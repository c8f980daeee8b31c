"""Compares the number of instructions of the daemon's calls with recorded figures.

A figure is the ratio to the bare Qt service (benchmarks/bareqt.cpp). Both services run the same
library code on the same processor, so the ratio does not depend on the machine. Runs in a private
world.

usage: instructions.py      compares with the figures in instructions.txt
       instructions.py -w   records new figures
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "benchmarks/driver"))

import methods  # noqa: E402
import services  # noqa: E402

FIGURES = TREE / "tests/campaigns/instructions.txt"
WARMING = 20
CALLS = 25
BATCHES = 4
TOLERANCE = 0.05


def under_callgrind(service):
    service.command = ["valgrind", "--quiet", "--tool=callgrind", "--instr-atstart=no",
                       f"--callgrind-out-file=callgrind.{service.name}", *service.command]
    return service


def control(service, *options):
    services.run("callgrind_control", *options, service.pid, stderr=subprocess.DEVNULL)


def dump(service):
    """Returns the instructions since the last dump."""
    before = set(pathlib.Path().glob(f"callgrind.{service.name}.*"))
    control(service, "--dump")
    fresh, = set(pathlib.Path().glob(f"callgrind.{service.name}.*")) - before
    return int(re.search(r"^(?:totals|summary): (\d+)", fresh.read_text(), re.M)[1])


def instructions_per_call(service, words):
    dump(service)
    services.call(words, CALLS)
    return dump(service) / CALLS


def least_of_batches(pair, words):
    """Returns the minimum of several batches: thread scheduling can only add instructions."""
    for service in pair:
        services.call(words(service.name), WARMING)
    batches = [[instructions_per_call(service, words(service.name)) for service in pair]
               for _ in range(BATCHES)]
    return [min(counts) for counts in zip(*batches)]


def measure():
    """Returns the instructions of each method, of the daemon and of the bare service."""
    with (under_callgrind(services.daemon()) as daemon,
          under_callgrind(services.bare()) as bare):
        for service in daemon, bare:
            control(service, "--instr=on")
        return {method: least_of_batches((daemon, bare), words)
                for method, words in methods.METHODS.items() if method != "getIPv4"}


def read_figures():
    return {method: float(figure) for method, figure in
            (line.split() for line in FIGURES.read_text().splitlines())}


def main():
    services.DEADLINE = 60
    services.lay_out_world()
    os.chdir(tempfile.mkdtemp())
    # On one processor the interleaving of threads varies little.
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})
    counts = measure()
    ratios = {method: own / other for method, (own, other) in counts.items()}
    if sys.argv[1:] == ["-w"]:
        FIGURES.write_text("".join(f"{method} {ratio:.3f}\n" for method, ratio in ratios.items()))
        return
    expected = read_figures()
    lines = [f"instructions of {method}: {counts[method][0]:,.0f} a call, {ratio:.3f} times the "
             f"bare Qt service, {expected[method]:.3f} before" for method, ratio in ratios.items()]
    print("\n".join(lines))
    if "FIGURES" in os.environ:
        pathlib.Path(os.environ["FIGURES"]).write_text("\n".join(lines) + "\n")
    changed = [method for method in expected
               if abs(ratios[method] / expected[method] - 1) > TOLERANCE]
    if changed:
        sys.exit(f"more than {TOLERANCE:.0%} off: {', '.join(changed)}; a change that is meant "
                 "takes its figures along, by instructions.py -w")


main()

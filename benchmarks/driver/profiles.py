"""The daemon's copying and erasing of profiles, compared with cp and rm."""

import contextlib
import os
import pathlib
import time

import services
from figures import ratio, summary

ROUNDS = 5
SIZES = [(10, 2048), (100, 2048), (1000, 2048), (20000, 2048), (20, 5000000)]
FILES_PER_DIRECTORY = 500

DIRECTORY = pathlib.Path("/tmp/User_part")
DEFAULT = DIRECTORY / "default_user_profile"
TARGET = DIRECTORY / "user4_profile"


def remove(directory):
    services.run("rm", "-rf", directory)


def fill(directory, files, size):
    content = os.urandom(size)
    for index in range(files):
        subdirectory = directory / f"directory{index // FILES_PER_DIRECTORY}"
        if index % FILES_PER_DIRECTORY == 0:
            subdirectory.mkdir(parents=True)
        (subdirectory / f"file{index}").write_bytes(content)


@contextlib.contextmanager
def default_profile(files, size):
    """Temporarily replaces the default profile by one with random files."""
    aside = DIRECTORY / f"aside-{files}-{size}"
    DEFAULT.rename(aside)
    DEFAULT.mkdir()
    fill(DEFAULT, files, size)
    try:
        yield
    finally:
        remove(DEFAULT)
        aside.rename(DEFAULT)


@contextlib.contextmanager
def on_disk():
    """Puts the profiles on the tree's file system instead of in memory."""
    disk = services.BUILD / "bench-disk"
    remove(disk)
    services.run("cp", "-a", DIRECTORY, disk)
    services.run("mount", "--bind", disk, DIRECTORY)
    try:
        yield
    finally:
        services.run("umount", "--lazy", DIRECTORY)
        remove(disk)


def milliseconds(*command):
    start = time.monotonic()
    services.run(*command)
    return (time.monotonic() - start) * 1000


def reset():
    """Returns the milliseconds of a factory reset."""
    words = services.own_method(services.DAEMON, "/KyConfigMgr", "Users.factoryReset", "user4")
    return services.call(words)["median"] / 1000


def settle():
    """Writes pending data to the disk, so that no measurement includes earlier writes."""
    services.run("sync", "--file-system", DIRECTORY)


def measure_copies(rounds):
    """Measures copies of the default profile, by the daemon and by cp. Keeps all copies: after many files
    have been deleted, ext4 searches for free inodes, and whichever program creates files next takes
    seconds longer."""
    remove(TARGET)
    for number in range(ROUNDS):
        settle()
        rounds["copy"].append(reset())
        TARGET.rename(DIRECTORY / f"profile{number}")
        settle()
        rounds["cp"].append(milliseconds("cp", "-a", DEFAULT, DIRECTORY / f"copy{number}"))
        settle()
        start = time.monotonic()
        services.run("cp", "-a", DEFAULT, DIRECTORY / f"synchronised{number}")
        settle()
        rounds["cp and sync"].append((time.monotonic() - start) * 1000)


def measure_removals(rounds):
    """Measures the removal of the copies, by the daemon and by rm."""
    with default_profile(0, 0):
        for number in range(ROUNDS):
            (DIRECTORY / f"profile{number}").rename(TARGET)
            settle()
            rounds["erase"].append(reset())
            remove(TARGET)
            settle()
            rounds["rm"].append(milliseconds("rm", "-r", DIRECTORY / f"copy{number}"))
            remove(DIRECTORY / f"synchronised{number}")


def measure():
    result = []
    with services.daemon():
        for place, where in (("memory", contextlib.nullcontext), ("disk", on_disk)):
            with where():
                for files, size in SIZES:
                    with default_profile(files, size):
                        rounds = {name: [] for name in ("copy", "cp", "cp and sync", "erase",
                                                        "rm")}
                        measure_copies(rounds)
                        measure_removals(rounds)
                    result.append({
                        "place": place, "files": files, "size": size,
                        **{name: summary(values) for name, values in rounds.items()},
                        "copy_ratio": ratio(rounds["copy"], rounds["cp"]),
                        "synchronised_ratio": ratio(rounds["copy"], rounds["cp and sync"]),
                        "erase_ratio": ratio(rounds["erase"], rounds["rm"])})
    return result

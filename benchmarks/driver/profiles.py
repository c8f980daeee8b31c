"""The daemon's copying and erasing of profiles beside cp and rm."""

import contextlib
import os
import pathlib
import time

import services
from figures import ratio, summary

ROUNDS = 5
SIZES = [(10, 2048), (100, 2048), (1000, 2048), (20000, 2048), (20, 5000000)]
FILES_PER_FOLDER = 500

FOLDER = pathlib.Path("/tmp/User_part")
DEFAULT = FOLDER / "default_user_profile"
TARGET = FOLDER / "user4_profile"
COPY = FOLDER / "copy"


def remove(folder):
    services.run("rm", "-rf", folder)


def fill(folder, files, size):
    content = os.urandom(size)
    for index in range(files):
        subfolder = folder / f"folder{index // FILES_PER_FOLDER}"
        if index % FILES_PER_FOLDER == 0:
            subfolder.mkdir(parents=True)
        (subfolder / f"file{index}").write_bytes(content)


@contextlib.contextmanager
def default_profile(files, size):
    """Another default profile for a while."""
    aside = FOLDER / f"aside-{files}-{size}"
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
    """The profiles on the disk that the tree is on, instead of in memory."""
    disk = services.BUILD / "bench-disk"
    remove(disk)
    services.run("cp", "-a", FOLDER, disk)
    services.run("mount", "--bind", disk, FOLDER)
    try:
        yield
    finally:
        services.run("umount", "--lazy", FOLDER)
        remove(disk)


def milliseconds(*command):
    start = time.monotonic()
    services.run(*command)
    return (time.monotonic() - start) * 1000


def reset():
    """Milliseconds of a factory reset."""
    words = services.own_method(services.DAEMON, "/KyConfigMgr", "Users.factoryReset", "user4")
    return services.call(words)["median"] / 1000


def settle():
    """Lets nobody pay for what another has left to be written."""
    services.run("sync", "--file-system", FOLDER)


def round_of(rounds):
    """Copies and erases the default profile, as the daemon and as the programs do."""
    remove(TARGET)
    settle()
    rounds["copy"].append(reset())
    settle()
    rounds["cp"].append(milliseconds("cp", "-a", DEFAULT, COPY))
    settle()
    start = time.monotonic()
    services.run("cp", "-a", DEFAULT, FOLDER / "second")
    settle()
    rounds["cp and sync"].append((time.monotonic() - start) * 1000)
    remove(FOLDER / "second")
    settle()
    rounds["rm"].append(milliseconds("rm", "-r", COPY))
    with default_profile(0, 0):
        settle()
        rounds["erase"].append(reset())


def measure():
    result = []
    with services.daemon():
        for place, where in (("memory", contextlib.nullcontext), ("disk", on_disk)):
            with where():
                for files, size in SIZES:
                    with default_profile(files, size):
                        rounds = {name: [] for name in ("copy", "cp", "cp and sync", "erase",
                                                        "rm")}
                        for _ in range(ROUNDS):
                            round_of(rounds)
                    result.append({
                        "place": place, "files": files, "size": size,
                        **{name: summary(values) for name, values in rounds.items()},
                        "copy_ratio": ratio(rounds["copy"], rounds["cp"]),
                        "synchronised_ratio": ratio(rounds["copy"], rounds["cp and sync"]),
                        "erase_ratio": ratio(rounds["erase"], rounds["rm"])})
    return result

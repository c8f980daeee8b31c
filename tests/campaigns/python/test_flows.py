"""Runs the snippets of docs/flows.md unchanged, one after another."""

import os
import pathlib
import subprocess

import snippets

PAGE = snippets.read("flows.md")
FLOWS = 5


def blocks(language):
    """Returns the common code of all snippets, and a snippet for each flow."""
    found = snippets.fenced(PAGE, language)
    assert len(found) == 1 + FLOWS
    return found


def test_in_python(instrument):
    done = instrument.run("/usr/bin/python3", "-", input="\n".join(blocks("python")), check=False,
                          timeout=200)
    assert (done.returncode, done.stderr) == (0, "")
    assert instrument["Version"].call("getEepromMesure")["AdjustementSite"] == 7


def test_in_a_shell(instrument):
    done = instrument.run("bash", "-c", "set -euo pipefail\n" + "\n".join(blocks("bash")),
                          check=False, timeout=200)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.count("WIFI.propertyChanged") == 2
    assert done.stdout.count("WIFIAP.propertyChanged") == 2
    assert done.stdout.count("Storage.sdcardPresence (false,)") == 1
    assert done.stdout.endswith('"CRC" b true\n')


def test_in_cpp(instrument, tmp_path):
    headers = pathlib.Path(os.environ["CLIENT_HEADERS"])
    common, *flows = blocks("cpp")
    includes = [f"#include <{header.name}>" for header in sorted(headers.glob("boardmanager*.h"))]
    program = "".join(f"{{\n{flow}}}\n" for flow in flows)
    program = f"int main(int argc, char *argv[])\n{{\nQCoreApplication application(argc, argv);\n{program}}}"
    source = tmp_path / "flows.cpp"
    source.write_text("\n".join(["#include <QtDBus>", *includes, common, program]))
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", "Qt5DBus"], stdout=subprocess.PIPE,
                           text=True, check=True).stdout.split()
    # The program must be visible inside the instrument.
    binary = instrument.root / "opt/flows"
    done = subprocess.run(["g++", "-std=c++17", "-fPIC", "-Wall", "-Wextra", "-Werror", f"-I{headers}",
                           source, "-o", binary, os.environ["CLIENT_LIBRARY"], *flags],
                          stderr=subprocess.PIPE, text=True)
    assert done.stderr == "" and done.returncode == 0
    # The snippets print errors to stderr.
    done = instrument.run("/opt/flows", check=False, timeout=200)
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")
    assert instrument["Version"].call("getEepromMesure")["AdjustementSite"] == 7
    assert instrument["LED"].call("getLEDStatus")["POWER_Y"] == "BLINK_3HZ"

"""The fixture's features that the example suite does not use."""

import subprocess
import sys

import pytest

from kyboard_instrument import CallError, Instrument


def test_instruments_are_independent(session_instrument):
    with Instrument() as other:
        other["LED"].call("setLEDStatus", "BT", "ON")
        assert other.board["leds/BT"] == "ON"
        assert session_instrument.board["leds/BT"] == "OFF"
        root = other.root
    assert not root.exists()


def test_an_instrument_ends_with_the_process_that_made_it():
    program = ("from kyboard_instrument import Instrument\n"
               "import os, signal, sys\n"
               "print(Instrument().root, flush=True)\n"
               "os.kill(os.getpid(), signal.SIGKILL)\n")
    done = subprocess.run([sys.executable, "-c", program], stdout=subprocess.PIPE, text=True)
    assert done.stdout.startswith("/proc/")
    # "tail --pid" waits for the end of a process that is not our child.
    number = done.stdout.split("/")[2]
    subprocess.run(["tail", f"--pid={number}", "-s", "0.05", "-f", "/dev/null"], timeout=30)


def test_other_programs_reach_the_bus_by_its_address(session_instrument):
    done = subprocess.run(
        ["busctl", f"--address={session_instrument.address}", "call",
         "com.orvendis.Strandel.BoardManager", "/KyConfigMgr",
         "com.orvendis.Strandel.BoardManager.Users", "getUser"],
        stdout=subprocess.PIPE, text=True, check=True)
    assert done.stdout == 's "user1"\n'


def test_a_timeout_reports_the_signals_that_came(session_instrument):
    with session_instrument["Users"].signals("userChanged") as changed:
        session_instrument["Users"].call("factoryReset", "user4")
        with pytest.raises(TimeoutError) as caught:
            changed.wait(lambda user: user == "user3", timeout=0.2)
        assert str(caught.value) == "not within 0.2 s: userChanged; came: [('user4',)]"


def test_a_record_can_be_written_and_read_back(session_instrument):
    version = session_instrument["Version"]
    before = version.call("getEepromMesure")
    assert before["CRC"] is True and len(before["AdjustementCoefficients"]) == 296
    session_instrument.board["eeprom/write_enabled"] = 1
    version.call("setEepromMesure", {**before, "AdjustementDate": 2**32 - 1})
    session_instrument.restart_daemon()
    assert session_instrument["Version"].call("getEepromMesure") == {
        **before, "AdjustementDate": 2**32 - 1}
    session_instrument["Version"].call("setEepromMesure", before)
    instrument_record = session_instrument["Version"].call("getEepromInstrument")
    assert isinstance(instrument_record["SerialNumber"], bytes)


def test_unknown_names_are_errors(session_instrument):
    with pytest.raises(KeyError):
        session_instrument["Users2"]
    with pytest.raises(AttributeError):
        session_instrument["Users"].call("getusers")
    with pytest.raises(AttributeError):
        session_instrument["Users"].signals("nothing")
    with pytest.raises(CallError) as caught:
        session_instrument["Users"].get("nothing")
    assert caught.value.name == "org.freedesktop.DBus.Error.UnknownProperty"

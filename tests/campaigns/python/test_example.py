"""The example with Gio alone."""

import pathlib

EXAMPLE = str(pathlib.Path(__file__).resolve().parents[3] / "examples/python/switch-user")


def test_the_example_switches_the_user(session_instrument):
    done = session_instrument.run(EXAMPLE, "user3")
    assert done.stdout == "Battery: CHARGER_OFF_BAT_INF_80\nThe active profile is that of user3\n"
    assert session_instrument["Users"].call("getUser") == "user3"

    again = session_instrument.run(EXAMPLE, "user3")
    assert again.stdout == "Battery: CHARGER_OFF_BAT_INF_80\n"
    session_instrument["Users"].call("setUser", "user1")


def test_the_example_knows_errors_by_name(session_instrument):
    unknown = session_instrument.run(EXAMPLE, "nobody", check=False)
    assert (unknown.returncode, unknown.stderr) == (
        1, "There is no user nobody, or the last switch to it failed\n")

    link = session_instrument.root / "tmp/User_part/system"
    target = link.readlink()
    link.unlink()
    unreadable = session_instrument.run(EXAMPLE, "user1", check=False)
    link.symlink_to(target)
    assert unreadable.returncode == 1
    assert unreadable.stderr.startswith("com.orvendis.Strandel.BoardManager.Error.Read: ")

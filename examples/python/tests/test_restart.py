"""The daemon goes away and comes back."""

import pytest

from kyboard_instrument import CallError


def test_a_crash_ends_what_the_daemon_does_not_keep(instrument):
    backlight = instrument["Backlight"]
    backlight.call("setBacklightStep", False, 4)
    instrument["Temperature"].call("setTemperatureThreshold", "SOM", 20)
    instrument.kill_daemon()
    with pytest.raises(CallError) as caught:
        backlight.call("getBacklightStep")
    assert caught.value.name == "org.freedesktop.DBus.Error.ServiceUnknown"

    instrument.start_daemon()

    # The board has kept the backlight. The threshold is that of every start.
    assert instrument["Backlight"].call("getBacklightStep") == 4
    with instrument["Temperature"].signals("temperatureReached") as reached:
        instrument["Temperature"].call("periodicTemperatureCheck")
        assert reached.received == []

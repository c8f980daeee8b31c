"""The daemon ends and starts again."""

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

    # The board keeps the backlight. The threshold has its default after every start.
    assert instrument["Backlight"].call("getBacklightStep") == 4
    with instrument["Temperature"].signals("temperatureReached") as reached:
        instrument["Temperature"].call("periodicTemperatureCheck")
        assert reached.received == []

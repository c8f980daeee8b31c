"""The board's devices. All tests share an instrument, so each test restores the instrument's state."""

import pytest

from kyboard_instrument import CallError


def test_an_led_that_is_set_lights_up(session_instrument):
    session_instrument["LED"].call("setLEDStatus", "WIFI", "BLINK_1HZ")

    assert session_instrument.board["leds/WIFI"] == "BLINK_1HZ"
    assert session_instrument["LED"].call("getLEDStatus")["WIFI"] == "BLINK_1HZ"
    session_instrument["LED"].call("setLEDStatus", "WIFI", "OFF")


def test_an_led_that_the_board_refuses_is_an_error(session_instrument):
    with session_instrument.board.fault("KyLeds.setLedState"):
        with pytest.raises(CallError) as caught:
            session_instrument["LED"].call("setLEDStatus", "WIFI", "ON")

    assert caught.value.name == "com.orvendis.Strandel.BoardManager.Error.Write"
    assert caught.value.message == "Enable to set led WIFI to status ON"
    assert session_instrument.board["leds/WIFI"] == "OFF"


def test_the_battery_status_follows_the_charger(session_instrument):
    supply = session_instrument["Alimentation"]
    assert supply.get("batteryStatus") == "CHARGER_OFF_BAT_INF_80"
    with supply.signals("batteryStatus") as statuses:
        session_instrument.board["battery/charge"] = -80
        session_instrument.board["charger/present"] = 1

        # Reading the property detects the charger and announces it.
        assert supply.get("batteryStatus") == "CHARGER_ON_BAT_INF_80"
        statuses.wait(lambda status: status == "CHARGER_ON_BAT_INF_80")
    session_instrument.board["charger/present"] = 0
    session_instrument.board["battery/charge"] = 80


def test_heat_is_announced_from_the_threshold_on(session_instrument):
    temperature = session_instrument["Temperature"]
    temperature.call("setTemperatureThreshold", "SOM", 60)
    with temperature.signals("temperatureReached") as reached:
        session_instrument.board["temperature/SOM"] = 59
        temperature.call("periodicTemperatureCheck")
        assert reached.received == []

        session_instrument.board["temperature/SOM"] = 60
        temperature.call("periodicTemperatureCheck")
        assert reached.received == [("SOM", 60)]
    session_instrument.board["temperature/SOM"] = 42
    temperature.call("setTemperatureThreshold", "SOM", 80)


def test_a_card_comes_and_goes(session_instrument):
    storage = session_instrument["Storage"]
    card = session_instrument.card("SD")
    with (storage.signals("sdcardPresence") as presence,
          storage.signals("deviceChangedMountState") as mounts):
        card.insert()
        assert presence.wait() == (True,)
        assert mounts.wait() == ("SD", True)
        session_instrument.board.wait("leds/SD_STATUS", "ON")

        card.remove()
        assert presence.wait() == (False,)
        assert mounts.wait() == ("SD", False)
    session_instrument.board.wait("leds/SD_STATUS", "OFF")


def test_another_profile_is_announced_and_linked(session_instrument):
    users = session_instrument["Users"]
    with users.signals("changingUser") as changing, users.signals("userChanged") as changed:
        users.call("setUser", "user2")

        assert changed.wait() == ("user2",)
        assert changing.received == [()]
    assert (session_instrument.root / "tmp/User_part/system").readlink().name == "user2_profile"
    users.call("setUser", "user1")


def test_there_is_no_fifth_user(session_instrument):
    with pytest.raises(CallError) as caught:
        session_instrument["Users"].call("setUser", "user5")

    assert caught.value.short_name == "InvalidArguments"
    assert caught.value.message == "User name is invalid."

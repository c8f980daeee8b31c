"""The network. Each test has an instrument of its own, because link states and networks persist."""


def has_state(wanted):
    return lambda path, name, value: name == "State" and value == wanted


def states_of(signals):
    return [value for _, name, value in signals.received if name == "State"]


def test_a_network_is_joined_after_a_wrong_passphrase(instrument):
    wifi = instrument["WIFI"]
    with wifi.signals("propertyChanged") as changes:
        wifi.call("connect", {"Service": "Workshop", "Password": "eight seas"})
        changes.wait(has_state("failure"), timeout=60)
        assert states_of(changes) == ["association", "failure"]

        wifi.call("connect", {"Service": "Workshop", "Password": "seven seas"})
        changes.wait(has_state("online"), timeout=60)
        assert states_of(changes)[2:5] == ["association", "configuration", "online"]
    assert wifi.call("getIPv4")["Address"].startswith("10.78.0.")
    assert wifi.call("getStrength") == {"Strength": 72}


def test_a_cable_without_a_server_gives_no_address(instrument):
    ethernet = instrument["Ethernet"]
    instrument.cable.mute_server()
    with ethernet.signals("propertyChanged") as changes:
        ethernet.call("connect")
        changes.wait(has_state("association"))
        assert ethernet.call("getIPv4").get("Address", "") == ""

        instrument.cable.unmute_server()
        changes.wait(has_state("online"), timeout=120)
    assert ethernet.call("getIPv4")["Address"].startswith("10.77.0.")

"""Fixtures with virtual instruments for the tests beside it."""

pytest_plugins = ["kyboard_instrument.plugin"]

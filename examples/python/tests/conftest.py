"""Gives the tests beside it virtual instruments."""

pytest_plugins = ["kyboard_instrument.plugin"]

"""Virtual instruments for tests in Python; see docs/python.md."""

from .bus import CallError, Interface, Signals
from .hardware import Board, Cable, Card, Files
from .instrument import Instrument
from .waiting import wait_until

__all__ = ["Board", "Cable", "CallError", "Card", "Files", "Instrument", "Interface", "Signals",
           "wait_until"]

"""Virtual instruments for tests in Python: docs/python.md tells how they are used."""

from .bus import CallError, Interface, Signals
from .hardware import Board, Cable, Card, Files
from .instrument import Instrument
from .waiting import wait_until

__all__ = ["Board", "Cable", "CallError", "Card", "Files", "Instrument", "Interface", "Signals",
           "wait_until"]

"""What events and readers hand out."""
from __future__ import annotations

from typing import NamedTuple


class Error(ValueError):
    """A file that is not a capture. The text tells the file and what it is."""


class DamageWarning(UserWarning):
    """A capture is damaged: the text tells where first. All that is intact was read."""


class Field(NamedTuple):
    """An element of an event's body."""

    name: str
    """Names repeat; empty for text outside of elements."""
    value: str | None
    """As in the body; None for a group, which has fields instead."""
    fields: list[Field]
    """Of a group, in order; empty for others."""
    layout: str
    """How well its place in the record is known: "documented", "inferred" or "assumed"."""
    missingBytes: int
    """Bytes that the record lacks: zeros stand for them."""


class Object(NamedTuple):
    """What an event is about: a drive, a volume, a fan and so on."""

    kind: str
    """ "drive", "volume", "lun", "fan", "port", ..., "controller", "enclosure"."""
    id: str
    """A number, a name, an address; empty where the record has none."""
    isAssumed: bool
    """Whether the layout that says so is."""
    model: str
    """Of the drive of an event that names one drive alone, where it tells; else empty."""
    serialNumber: str
    """The same."""


class Damage(NamedTuple):
    """Bytes that became no event, a message that is odd, or a fault of packed data or text.

    str() gives all of it in one line.
    """

    file: str
    offset: int
    """Of the first byte; for a fault of packed data or text how far the reading was. In bytes of
    the messages, after unpacking and decoding of text."""
    passedOver: int
    """Bytes; 0: the message at this offset was taken all the same."""
    resumed: bool
    """Whether a message follows."""
    reason: str
    message: str
    """For people, without the file."""

    def __str__(self) -> str:
        return f"{self.file}: {self.message}"

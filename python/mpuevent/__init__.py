"""Reads captures of a storage controller's event log.

    import mpuevent

    for event in mpuevent.open("a.cap"):
        if event.drive == "7":
            print(event.sequenceID, event.summary)

    events = mpuevent.frame(["a.cap", "b.cap.gz"])   # a pandas DataFrame
    events[events.eventType == 3].groupby("source").size()

    import mpuevent.dask
    events = mpuevent.dask.frame("large.cap", split="64MB")

Files hold messages or bare records, as they are, as hex or base64 text, and any of that packed by
gzip, xz or zstd. The attributes of an event, and the columns of a frame, are the keys of the
command's JSON. `timestamp` is the firmware's number, of no known unit; with `epoch` it counts
seconds.
"""
from __future__ import annotations

import os
import warnings
from collections.abc import Iterable, Sequence
from typing import TYPE_CHECKING

from mpuevent import _mpuevent
from mpuevent._mpuevent import COLUMNS, Event, Reader, __version__
from mpuevent._types import Damage, DamageWarning, Error, Field, Object

if TYPE_CHECKING:
    import pandas

    Path = str | bytes | os.PathLike[str] | os.PathLike[bytes]

__all__ = ["COLUMNS", "Damage", "DamageWarning", "Error", "Event", "Field", "Object", "Reader",
           "frame", "open"]


def open(path: Path, *, begin: int = 0, end: int | None = None, input: str = "auto",
         known_only: bool = False, epoch: int | None = None) -> Reader:
    """Opens a capture, or standard input for "-", and returns an iterator over its events. A pipe
    is waited for until it has 256 events.

    begin, end  only messages, and damage, that begin at these offsets in bytes: `begin` or later,
                before `end`. Adjoining ranges have together exactly what the whole has.
    input       what the file holds: "auto", "cmap", "record", "hex" or "hex-record".
    known_only  leave out what is read from an assumed layout.
    epoch       Unix time in seconds at which a timestamp is 0 (0: timestamps are Unix times);
                `Event.time` has dates then.

    Raises OSError when the file can't be read and Error when it is not a capture. Damage raises
    nothing: see Reader.damage.
    """
    return _mpuevent.open(path, begin, end, input, known_only, epoch)


def frame(paths: Path | Iterable[Path], *, columns: Sequence[str] | None = None, begin: int = 0,
          end: int | None = None, input: str = "auto", known_only: bool = False,
          epoch: int | None = None) -> pandas.DataFrame:
    """The events of captures as a pandas DataFrame: a row for each, in order, file after file.

    columns     which columns, in this order; without it all of COLUMNS ("time" with `epoch`). One
                more can be asked for: "drive", the id of the first drive that an event names,
                missing where there is none; it takes four times as long as all others.
    Others      as of open(); `begin` and `end` are of each file.

    Numbers are unsigned integers, uint32 or uint64 ("offset"). Texts that repeat are categories,
    in order of appearance, summary and body objects (str). "time" is datetime64[ns, UTC].

    Damage is passed over with a DamageWarning for each file; all of it is the list of Damage
    `attrs["damage"]` of the result. Raises as open() does.
    """
    import pandas

    if isinstance(paths, (str, bytes, os.PathLike)):
        paths = [paths]
    if columns is None:
        columns = [name for name in COLUMNS if name != "time" or epoch is not None]
    found, damage = _mpuevent.columns(list(paths), list(columns), begin, end, input, known_only,
                                      epoch)
    data = {}
    for name in columns:
        values = found[name]
        if isinstance(values, tuple):
            codes, categories = values
            values = pandas.Categorical.from_codes(codes, pandas.Index(categories, dtype=object))
        elif name == "time":
            values = pandas.to_datetime(values, unit="s", utc=True)
        data[name] = values
    result = pandas.DataFrame(data, columns=list(columns), copy=False)
    result.attrs["damage"] = damage
    damaged: dict[str, list[Damage]] = {}
    for one in damage:
        damaged.setdefault(one.file, []).append(one)
    for places in damaged.values():
        more = f" (the first of {len(places)} faults)" if places[1:] else ""
        warnings.warn(f"{places[0]}{more}", DamageWarning, stacklevel=2)
    return result

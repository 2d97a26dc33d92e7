"""The Python package on captures of the command: scripts/test-python."""
import ast
import gc
import inspect
import json
import os
import subprocess
import threading

import pandas
import pytest

import mpuevent
from conftest import COMMAND


def decoded(*arguments):
    """What the command says."""
    done = subprocess.run([COMMAND, "decode", "--format", "json", "--origin", *arguments],
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    return [json.loads(line) for line in done.stdout.splitlines()]


def as_json(fields):
    """As the command nests them."""
    found = []
    for field in fields:
        one = {"name": field.name}
        if field.value is None:
            one["fields"] = as_json(field.fields)
        else:
            one["value"] = field.value
            if field.layout != "documented":
                one["layout"] = field.layout
            if field.missingBytes:
                one["missingBytes"] = field.missingBytes
        found.append(one)
    return found


def test_events_say_what_the_command_says(damaged):
    expected = decoded("--fields", "--epoch", "unix", damaged)
    reader = mpuevent.open(damaged, epoch=0)
    count = 0
    for event, wanted in zip(reader, expected, strict=True):
        found = {name: getattr(event, name) for name in mpuevent.COLUMNS}
        wanted.pop("formatVersion")
        assert as_json(event.fields) == wanted.pop("fields")
        assert found == wanted
        drives = [one.id for one in event.objects if one.kind == "drive"]
        assert event.drive == (drives[0] if drives else None)
        count += 1
    assert count > 4000
    assert any(event.drive for event in mpuevent.open(damaged))
    told = subprocess.run([COMMAND, "decode", "--max-reports", "0", damaged],
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    assert [f"mpuevent: {one}" for one in reader.damage] == told.stderr.decode().splitlines()
    assert reader.damage[0].passedOver == 100 and reader.damage[0].offset == 0


def test_frame_is_what_the_command_says(sample, damaged):
    packed = sample.with_name("packed.gz")
    packed.write_bytes(subprocess.run(["gzip", "-c", sample], stdout=subprocess.PIPE).stdout)
    with pytest.warns(mpuevent.DamageWarning, match="damaged.cap: offset 0: .*the first of"):
        frame = mpuevent.frame([damaged, packed], epoch=0)
    expected = pandas.DataFrame(decoded("--epoch", "unix", damaged, packed))
    assert list(frame.columns) == [name for name in mpuevent.COLUMNS]
    assert len(frame) == len(expected) > 9000
    expected["time"] = pandas.to_datetime(expected["time"])
    for name in frame:
        assert list(frame[name]) == list(expected[name]), name
    assert frame.dtypes.map(str).drop("time").to_dict() == {
        name: "uint64" if name == "offset"
        else "uint32" if pandas.api.types.is_integer_dtype(expected[name])
        else "object" if name in ("summary", "body") else "category"
        for name in frame if name != "time"}
    assert {one.file for one in frame.attrs["damage"]} == {str(damaged)}
    drives = mpuevent.frame(sample, columns=["drive", "sequenceID"])
    assert list(drives) == ["drive", "sequenceID"]
    assert list(drives["drive"].astype(object).where(drives["drive"].notna(), None)) == [
        event.drive for event in mpuevent.open(sample)]
    assert mpuevent.frame([]).dtypes.map(str).equals(mpuevent.frame(sample).dtypes.map(str))


@pytest.mark.parametrize("make, arguments, error, text", [
    (None, {}, FileNotFoundError, "{path}"),
    ("dir", {}, IsADirectoryError, "{path}"),
    (b"Dear support, nothing is attached.\n", {}, mpuevent.Error, "{path}: not a capture: "),
    (b"", {"input": "pcap"}, ValueError, "pcap"),
    (b"", {"begin": 2, "end": 1}, ValueError, "range"),
    (b"", {"begin": -1}, TypeError, ""),
    (b"", {"epoch": 2**62}, ValueError, "epoch"),
])
def test_errors_are_exceptions(tmp_path, make, arguments, error, text):
    path = tmp_path / "a.cap"
    if make == "dir":
        path.mkdir()
    elif make is not None:
        path.write_bytes(make)
    for call in (mpuevent.open, mpuevent.frame):
        with pytest.raises(error) as raised:
            call(path, **arguments)
        assert text.format(path=path) in str(raised.value)


def test_arguments_that_cannot_be(sample):
    for call, error in ((lambda: mpuevent.open("a\0b"), ValueError),
                        (lambda: mpuevent.open(7), TypeError),
                        (lambda: mpuevent.frame(sample, columns=["?"]), ValueError),
                        (lambda: mpuevent.frame(sample, columns=["time"]), ValueError),
                        (lambda: mpuevent.Event(), TypeError),
                        (lambda: mpuevent.Reader.__new__(mpuevent.Reader), TypeError)):
        with pytest.raises(error):
            call()


def test_objects_outlive_their_reader(sample):
    reader = mpuevent.open(os.fsencode(sample))
    first, second = next(reader), next(reader)
    reader.close()
    with pytest.raises(ValueError):
        next(reader)
    del reader
    gc.collect()
    expected = decoded("--fields", "--limit", "2", sample)
    assert as_json(second.fields) == expected[1]["fields"]
    assert [first.body, second.body] == [one["body"] for one in expected]
    with mpuevent.open(sample) as reader:
        description = reader.description
    assert description == "" and reader.isPlain
    # Iterators keep their file, whatever becomes of its name.
    copy = sample.with_name("copy.cap")
    copy.write_bytes(sample.read_bytes())
    events = iter(mpuevent.open(copy))
    next(events)
    copy.unlink()
    assert sum(1 for _ in events) == 4999


def test_threads(tmp_path, sample):
    # Others run while one waits for a pipe, and can't take its reader away.
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    readers = []
    opened = threading.Thread(target=lambda: readers.append(mpuevent.open(pipe, input="cmap")))
    opened.start()
    with pipe.open("wb") as to:
        content = sample.read_bytes()
        to.write(content[:1000])
        to.flush()
        opened.join()
        counts = []
        waiting = threading.Thread(target=lambda: counts.append(sum(1 for _ in readers[0])))
        waiting.start()
        assert sum(1 for _ in mpuevent.open(sample)) == 5000
        for call in (readers[0].close, lambda: next(readers[0])):
            with pytest.raises(ValueError, match="another thread"):
                call()
        to.write(content[1000:])
    waiting.join()
    assert counts == [5000]


def test_hostile_captures(tmp_path, sample):
    """Each byte may be anything: nothing but events and damage come of it."""
    content = sample.read_bytes()[:20000]
    path = tmp_path / "hostile"
    for step, prefix in ((7, b""), (31, b"\x1f\x8b\x08"), (97, b"0000: "), (3, b"\xfd7zXZ\0")):
        path.write_bytes(prefix + bytes(byte ^ (0xff if i % step == 0 else 0)
                                        for i, byte in enumerate(content)))
        try:
            with mpuevent.open(path) as reader:
                for event in reader:
                    event.fields, event.objects, repr(event)
                assert reader.damage
        except mpuevent.Error as error:
            assert str(path) in str(error)


def test_hints_and_help():
    """The stub has what the module has, and each attribute says what it is."""
    stub = os.path.join(os.path.dirname(mpuevent.__file__), "_mpuevent.pyi")
    with open(stub) as file:
        classes = {one.name: {part.name for part in one.body}
                   for one in ast.parse(file.read()).body if isinstance(one, ast.ClassDef)}
    for kind in (mpuevent.Event, mpuevent.Reader):
        attributes = {name for name in vars(kind) if not name.startswith("_")}
        assert {name for name in classes[kind.__name__] if not name.startswith("_")} == attributes
        assert all(inspect.getdoc(getattr(kind, name)) for name in attributes)
    assert set(mpuevent.COLUMNS) < classes["Event"]
    assert os.path.exists(os.path.join(os.path.dirname(mpuevent.__file__), "py.typed"))

"""Captures of the command for the tests."""
import os
import subprocess

import pytest

COMMAND = os.environ["MPUEVENT_COMMAND"]


@pytest.fixture(scope="session")
def sample(tmp_path_factory):
    path = tmp_path_factory.mktemp("captures") / "sample.cap"
    subprocess.run([COMMAND, "sample", "--count", "5000", "-o", path], check=True)
    return path


@pytest.fixture(scope="session")
def damaged(sample):
    """With foreign bytes at the start, in messages, and a false start in the middle."""
    content = bytearray(b"x" * 100 + sample.read_bytes()[:-50])
    for at in range(5000, len(content), 40000):
        content[at:at + 300] = content[2000:2300]
    path = sample.with_name("damaged.cap")
    path.write_bytes(content)
    return path

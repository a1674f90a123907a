"""The fixture `device` for pytest. In conftest.py: pytest_plugins = ["palsim_pytest"]"""
from typing import Iterator

import pytest

import palsim


@pytest.fixture
def sample() -> str:
    """The device to test on: a sample's name, or a folder. A test file has another by a fixture of this name."""
    return "rm21"


@pytest.fixture
def device(sample: str) -> Iterator[palsim.Device]:
    """A device of the test's own. A program that has misused the platform fails the test."""
    with palsim.Device(sample) as new_device:
        yield new_device

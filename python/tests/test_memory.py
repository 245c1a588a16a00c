"""References: nothing is kept, and nothing is let go too early."""

from __future__ import annotations

import gc
import sys
import weakref
from pathlib import Path
from typing import Any

import pytest

import qdclgl

_PAGE = 4096


def resident() -> int:
    return int(Path("/proc/self/statm").read_text().split()[1]) * _PAGE


class Own:
    pass


def test_a_million_objects_leave_nothing_behind() -> None:
    def make(count: int) -> None:
        for number in range(count):
            row = qdclgl.Dictionary()
            row.Value("FName", f"a text that is too long to lie within the value {number}")

    make(20_000)
    before = resident()
    make(1_000_000)
    assert resident() - before < 2_000_000


def test_errors_leave_nothing_behind() -> None:
    def fail(count: int) -> None:
        lines = qdclgl.Vector()
        for _ in range(count):
            with pytest.raises(IndexError):
                lines.Item(1)

    fail(1_000)
    before = resident()
    fail(30_000)
    assert resident() - before < 1_000_000


def test_counts_of_arguments_and_results_hold() -> None:
    own, text = Own(), "a text of its own, " * 3
    row = qdclgl.Dictionary()
    counts = [sys.getrefcount(thing) for thing in (own, text, row, None, qdclgl.Null, True)]
    for _ in range(100):
        row["own"], row["text"], row["none"], row["null"], row["yes"] = (
            own, text, None, qdclgl.Null, True,
        )  # fmt: skip
        assert row["own"] is own
        list(row.items())
        with pytest.raises(qdclgl.NamedArgumentNotFound):
            row.Value("own", nope=own)  # type: ignore[call-arg]
    row.clear()
    after = [sys.getrefcount(thing) for thing in (own, text, row, None, qdclgl.Null, True)]
    assert [abs(b - a) < 20 for a, b in zip(counts, after)] == [True] * 6


def test_a_wrapper_ends_with_its_last_reference_and_the_object_with_it() -> None:
    own = Own()
    row = qdclgl.Dictionary(own=own)
    wrapper, gone = weakref.ref(row), weakref.ref(own)
    del own
    assert wrapper() is row and gone() is not None
    del row
    assert wrapper() is None and gone() is None


def test_an_object_that_the_library_holds_outlives_its_wrapper() -> None:
    outer = qdclgl.Dictionary(inner=qdclgl.Dictionary(a=1))
    gc.collect()
    assert outer["inner"]["a"] == 1


@pytest.mark.parametrize("levels", [0, 1, 5])
@pytest.mark.parametrize("kind", ["dictionary", "vector"])
def test_a_circle_through_an_object_of_python_s_own_is_collected(levels: int, kind: str) -> None:
    own: Any = Own()
    held: Any = own
    for _ in range(levels):
        held = qdclgl.Dictionary(below=held)
    own.row = qdclgl.Dictionary(held=held) if kind == "dictionary" else qdclgl.Vector([held])
    gone = weakref.ref(own)
    del own, held
    gc.collect()
    assert gone() is None


def test_a_circle_that_is_held_from_outside_stays() -> None:
    own: Any = Own()
    own.row = qdclgl.Dictionary()
    own.row["own"] = own
    row = own.row
    gone = weakref.ref(own)
    del own
    gc.collect()
    assert row["own"] is gone()


def test_a_component_s_row_keeps_what_it_holds_while_the_library_has_it() -> None:
    own: Any = Own()
    own.row = qdclgl.Dictionary()
    own.row["own"] = own
    keeper = qdclgl.Collection()
    keeper.Add(own.row)
    gone = weakref.ref(own)
    del own
    gc.collect()
    assert keeper[1]["own"] is gone()

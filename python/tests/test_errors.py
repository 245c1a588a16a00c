"""Errors: a class for each number, with number, source and description."""

from __future__ import annotations

import pickle
import re
from typing import Any

import pytest
from conftest import ROOT

import qdclgl
from qdclgl.testing import RecordingServer

INFO = "QDSVGLVoucherGroup.VoucherGroupInfo"


def raised(number: int, source: str = "", description: str = "") -> qdclgl.Error:
    """What comes out when a component raises this."""
    with RecordingServer() as server:
        server.FailAt(1, qdclgl.Error(number, source, description))
        with pytest.raises(qdclgl.Error) as caught:
            qdclgl.VoucherGroupSet().Refresh()
    return caught.value


@pytest.mark.parametrize(
    ("number", "name", "also"),
    [
        (5, "InvalidCall", ValueError),
        (6, "Overflow", OverflowError),
        (7, "OutOfMemory", MemoryError),
        (9, "SubscriptOutOfRange", IndexError),
        (13, "TypeMismatch", TypeError),
        (28, "OutOfStackSpace", RecursionError),
        (91, "ObjectNotSet", ValueError),
        (380, "InvalidPropertyValue", ValueError),
        (387, "PropertyNotSettable", AttributeError),
        (429, "CannotCreateObject", LookupError),
        (438, "MemberNotFound", AttributeError),
        (440, "AutomationError", RuntimeError),
        (448, "NamedArgumentNotFound", TypeError),
        (449, "ArgumentNotOptional", TypeError),
        (450, "WrongArgumentCount", TypeError),
        (457, "DuplicateKey", KeyError),
        (3001, "BadArguments", ValueError),
        (3021, "NoCurrentRow", LookupError),
        (3265, "FieldNotFound", KeyError),
        (3704, "ObjectClosed", ValueError),
        (-2147417842, "WrongThread", RuntimeError),
    ],
)
def test_a_number_of_the_library_is_a_class_and_one_of_python_s(
    number: int, name: str, also: type[Exception]
) -> None:
    error = raised(number, "me", "words")
    assert type(error) is getattr(qdclgl, name)
    assert isinstance(error, also)
    assert (error.number, error.source, error.description) == (number, "me", "words")


def test_every_number_of_the_library_has_a_class() -> None:
    text = (ROOT / "qdclgl/frame/vocabulary/errors.h").read_text()
    numbers = {int(n) for n in re.findall(r"inline constexpr std::int32_t k\w+ = (\d+);", text)}
    assert len(numbers) == 20
    assert all(type(raised(number)) is not qdclgl.Error for number in numbers)


def test_every_refusal_of_the_server_is_a_class_of_its_own() -> None:
    text = (ROOT / "qdclgl/server/db/refusals.h").read_text()
    text = re.sub(r'"\s+"', "", re.sub(r"\s*\\\n\s*", " ", text))  # the macro on one line
    rows = re.findall(r'REFUSAL\((0x\w+), (\w+), "([^"]*)", "', text)
    assert len(rows) > 50
    for code, name, meaning in rows:
        number = 0x80044200 + int(code, 16) - 2**32
        error = raised(number, "QDSVGL", "sentence")
        assert type(error) is getattr(qdclgl, name)
        assert (error.number, error.description, type(error).__doc__) == (
            number,
            "sentence",
            meaning,
        )
        assert isinstance(error, qdclgl.Refusal)


def test_another_number_is_an_error_with_all_three_untouched() -> None:
    error = raised(-2147204609, "Foreign", "its words")
    assert type(error) is qdclgl.Error
    assert str(error) == "error 800441FF (Foreign): its words"


def test_an_error_without_words_is_told_by_what_its_number_means() -> None:
    assert str(raised(9)) == "error 9: a position that is not there."
    assert str(raised(1234)) == "error 1234"


def test_errors_can_be_pickled() -> None:
    error = raised(9, "me", "words")
    again = pickle.loads(pickle.dumps(error))
    assert (type(again), again.args) == (type(error), error.args)


def test_a_refusal_reaches_the_caller_by_its_class(ledger: Any) -> None:
    voucher = ledger.sale("1")
    voucher.Entries[1].Debit = 2
    with pytest.raises(qdclgl.NotBalanced):
        voucher.SaveChanges()
    first, second = qdclgl.VoucherSet()[1], qdclgl.VoucherSet()[1]
    first.Reference = "first"
    first.SaveChanges()
    second.Reference = "second"
    with pytest.raises(qdclgl.Changed) as caught:
        second.SaveChanges()
    assert caught.value.source == "QDSVGL"
    assert isinstance(caught.value, qdclgl.Refusal)


def test_an_unknown_member_is_an_attribute_error() -> None:
    voucher: Any = qdclgl.Voucher()
    with pytest.raises(AttributeError):
        voucher.Explanatoin
    with pytest.raises(AttributeError):
        voucher.Explanatoin = "x"
    with pytest.raises(AttributeError):
        voucher.DebitTotal = 3
    with pytest.raises(TypeError):
        del voucher.Explanation


@pytest.mark.parametrize(
    ("arguments", "names", "error"),
    [
        ((), {}, qdclgl.ArgumentNotOptional),
        ((1, 2, 3), {}, qdclgl.WrongArgumentCount),
        ((1,), {"Key": 2}, qdclgl.WrongArgumentCount),
        ((1,), {"Nope": 2}, qdclgl.NamedArgumentNotFound),
        ((...,), {}, qdclgl.ArgumentNotOptional),
    ],
)
def test_a_wrong_call_tells_how_the_member_is_called(
    arguments: tuple[Any, ...], names: dict[str, Any], error: type[qdclgl.Error]
) -> None:
    with pytest.raises(error, match=r"called as Remove\(Key, lngDelSign=0\)") as caught:
        qdclgl.VoucherGroupSet().Remove(*arguments, **names)
    assert isinstance(caught.value, TypeError)

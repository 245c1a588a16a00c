"""Errors: one class for all, and one for each number that the library raises itself."""

from __future__ import annotations

from typing import Any, ClassVar


class Error(Exception):
    """A failure of the library or of a server: a number, a source and a description."""

    number: int
    source: str
    description: str

    def __init__(self, number: int, source: str = "", description: str = "") -> None:
        super().__init__(number, source, description)
        self.number = number
        self.source = source
        self.description = description

    def __str__(self) -> str:
        where = f" ({self.source})" if self.source else ""
        words = f": {self.description or self._meaning()}".rstrip(": ")
        number = self.number if 0 <= self.number < 0x10000 else f"{self.number & 0xFFFFFFFF:08X}"
        return f"error {number}{where}{words}"


    @classmethod
    def _meaning(cls) -> str:
        """What the number says where nobody has added words."""
        return ""


class Refusal(Error):
    """What a server component refuses; each refusal is a class of its own."""


BY_NUMBER: dict[int, type[Error]] = {}


class _Numbered(Error):
    """An error of the library's own, known by its number."""

    NUMBER: ClassVar[int]

    def __init_subclass__(cls, **options: Any) -> None:
        super().__init_subclass__(**options)
        BY_NUMBER[cls.NUMBER] = cls

    @classmethod
    def _meaning(cls) -> str:
        return (cls.__doc__ or "").partition(": ")[2]


class InvalidCall(_Numbered, ValueError):
    """Error 5: a bad key, index or position, or a row that is not found."""

    NUMBER = 5


class Overflow(_Numbered, OverflowError):
    """Error 6: a number outside its type's range."""

    NUMBER = 6


class OutOfMemory(_Numbered, MemoryError):
    """Error 7: no memory, or a copy beyond its bound."""

    NUMBER = 7


class SubscriptOutOfRange(_Numbered, IndexError):
    """Error 9: a position that is not there."""

    NUMBER = 9


class TypeMismatch(_Numbered, TypeError):
    """Error 13: a value that has no form of the wanted type."""

    NUMBER = 13


class OutOfStackSpace(_Numbered, RecursionError):
    """Error 28: calls or containers that stand in each other too deeply."""

    NUMBER = 28


class ObjectNotSet(_Numbered, ValueError):
    """Error 91: Nothing where an object is needed."""

    NUMBER = 91


class InvalidPropertyValue(_Numbered, ValueError):
    """Error 380: a value that the property can't have."""

    NUMBER = 380


class PropertyNotSettable(_Numbered, AttributeError):
    """Error 387: a property that can't be written now."""

    NUMBER = 387


class CannotCreateObject(_Numbered, LookupError):
    """Error 429: no class or component of that name."""

    NUMBER = 429


class MemberNotFound(_Numbered, AttributeError):
    """Error 438: no such member, or not usable this way."""

    NUMBER = 438


class AutomationError(_Numbered, RuntimeError):
    """Error 440: a failure of others without a number."""

    NUMBER = 440


class NamedArgumentNotFound(_Numbered, TypeError):
    """Error 448: no argument of that name."""

    NUMBER = 448


class ArgumentNotOptional(_Numbered, TypeError):
    """Error 449: a needed argument is left out."""

    NUMBER = 449


class WrongArgumentCount(_Numbered, TypeError):
    """Error 450: too many arguments, or one given twice."""

    NUMBER = 450


class DuplicateKey(_Numbered, KeyError):
    """Error 457: a key that is in use already."""

    NUMBER = 457


class BadArguments(_Numbered, ValueError):
    """Error 3001: an argument or criterion that a recordset refuses."""

    NUMBER = 3001


class NoCurrentRow(_Numbered, LookupError):
    """Error 3021: the recordset's cursor stands on no row."""

    NUMBER = 3021


class FieldNotFound(_Numbered, KeyError):
    """Error 3265: the recordset has no such column."""

    NUMBER = 3265


class ObjectClosed(_Numbered, ValueError):
    """Error 3704: the recordset is closed."""

    NUMBER = 3704


class WrongThread(_Numbered, RuntimeError):
    """Error 8001010E: an object is used on another thread than the one that made it."""

    NUMBER = 0x8001010E - 0x1_0000_0000

"""Values that Python has no class of its own for."""

from __future__ import annotations

from typing import Any, Generic, TypeVar

T = TypeVar("T")


class _Null:
    """The value of a column that holds none; there is one such value, ``qdclgl.Null``."""

    __slots__ = ()

    def __repr__(self) -> str:
        return "qdclgl.Null"

    def __bool__(self) -> bool:
        return False

    def __reduce__(self) -> str:
        return "Null"


Null = _Null()


class Ref(Generic[T]):
    """A variable that an argument by reference is bound to: what the member writes is in ``value``."""

    __slots__ = ("value",)

    def __init__(self, value: T | None = None) -> None:
        self.value: Any = value

    def __repr__(self) -> str:
        return f"qdclgl.Ref({self.value!r})"


class ErrorCode(int):
    """A result code as a value."""

    def __repr__(self) -> str:
        return f"qdclgl.ErrorCode({int(self)})"

"""What Python expects of mappings, sequences and tables, for the containers of the library."""

from __future__ import annotations

from collections.abc import (
    Iterable,
    Iterator,
    Mapping,
    MutableMapping,
    MutableSequence,
    Sequence,
)
from typing import Any

from qdclgl._core import (
    Collection,
    Dictionary,
    Fields,
    Properties,
    Recordset,
    Vector,
    current_row,
)

_MAPPING = ("get", "keys", "items", "values", "pop", "popitem", "setdefault", "update", "clear")
_SEQUENCE = ("append", "extend", "pop", "reverse", "index", "count", "__iadd__", "__reversed__")


def _give(owner: type, functions: Mapping[str, Any]) -> None:
    for name, function in functions.items():
        setattr(owner, name, function)


def _from(abstract: type, names: Iterable[str]) -> dict[str, Any]:
    """The functions that an abstract class makes of the few that a container has itself."""
    return {name: getattr(abstract, name) for name in names}


# ---- Dictionary: a mapping from its keys to its values ----


def _fill_dictionary(
    self: Dictionary, rows: Mapping[str, Any] | Iterable[tuple[str, Any]] = (), /, **more: Any
) -> None:
    for key, value in dict(rows, **more).items():
        self.Value(key, value)


def _dictionary_value(self: Dictionary, key: str) -> Any:
    if key not in self:
        raise KeyError(key)
    return self.Value(key)


def _remove_key(self: Dictionary, key: str) -> None:
    if key not in self:
        raise KeyError(key)
    self.Remove(key)


def _is_key(self: Dictionary | Properties, key: object) -> bool:
    return isinstance(key, str) and self.Lookup(key)


def _dictionary_keys(self: Dictionary) -> Iterator[str]:
    return iter([self.Name(place) for place in range(1, self.Count + 1)])


_give(
    Dictionary,
    {
        "__init__": _fill_dictionary,
        "__getitem__": _dictionary_value,
        "__delitem__": _remove_key,
        "__contains__": _is_key,
        "__iter__": _dictionary_keys,
        "__repr__": lambda self: f"qdclgl.Dictionary({dict(self)!r})",
        **_from(MutableMapping, _MAPPING),
    },
)
MutableMapping.register(Dictionary)


# ---- Properties: a mapping from the keys of a bag to their values ----


def _bag_value(self: Properties, key: str | int) -> Any:
    if isinstance(key, str) and key not in self:
        raise KeyError(key)
    return self.Item(key).Value


def _put_bag_value(self: Properties, key: str | int, value: Any) -> None:
    self.Item(key).Value = value


def _remove_bag_key(self: Properties, key: str) -> None:
    del self.Dictionary[key]


def _bag_keys(self: Properties) -> Iterator[str]:
    return iter([entry.Name for entry in self.NewEnum()])


_give(
    Properties,
    {
        "__getitem__": _bag_value,
        "__setitem__": _put_bag_value,
        "__delitem__": _remove_bag_key,
        "__contains__": _is_key,
        "__iter__": _bag_keys,
        **_from(MutableMapping, _MAPPING),
    },
)
MutableMapping.register(Properties)


# ---- Vector: a sequence, which Python counts from 0 ----


def _fill_vector(self: Vector, values: Iterable[Any] = (), /) -> None:
    for value in values:
        self.Append(value)


def _place(self: Vector, index: int, end: int) -> int:
    place = index + self.Count if index < 0 else index
    if not 0 <= place < end:
        raise IndexError(f"no element {index} among {self.Count}")
    return self.LowerBound + place


def _vector_element(self: Vector, index: int | slice) -> Any:
    if isinstance(index, slice):
        return [self[place] for place in range(*index.indices(self.Count))]
    return self.Item(_place(self, index, self.Count))


def _put_vector_element(self: Vector, index: int, value: Any) -> None:
    self.Item(_place(self, index, self.Count), value)


def _remove_vector_element(self: Vector, index: int) -> None:
    self.Remove(_place(self, index, self.Count))


def _insert_into_vector(self: Vector, index: int, value: Any) -> None:
    start = slice(index, None).indices(self.Count)[0]
    self.Insert(self.LowerBound + start, value)


def _vector_elements(self: Vector) -> Iterator[Any]:
    place = 0
    while place < self.Count:
        yield self[place]
        place += 1


_give(
    Vector,
    {
        "__init__": _fill_vector,
        "__getitem__": _vector_element,
        "__setitem__": _put_vector_element,
        "__delitem__": _remove_vector_element,
        "__contains__": lambda self, value: any(value == element for element in self),
        "__iter__": _vector_elements,
        "__repr__": lambda self: f"qdclgl.Vector({list(self)!r})",
        "insert": _insert_into_vector,
        **_from(MutableSequence, _SEQUENCE),
    },
)
MutableSequence.register(Vector)


# ---- Recordset: its rows, one at a time ----


def _fill_recordset(
    self: Recordset, columns: Iterable[str] = (), rows: Iterable[Sequence[Any]] = ()
) -> None:
    names = list(columns)
    if not names:
        return
    for name in names:
        self.Fields.Append(name)
    self.Open()
    for row in rows:
        if len(row) != len(names):
            raise ValueError(f"a row of {len(row)} values for {len(names)} columns")
        self.AddNew()
        for name, value in zip(names, row):
            self.Fields.Item(name).Value = value
        self.Update()
    if self.RecordCount > 0:
        self.MoveFirst()


def _recordset_rows(self: Recordset) -> Iterator[Dictionary]:
    rows = self.Clone()
    while not rows.Eof:
        yield current_row(rows)
        rows.MoveNext()


_give(
    Recordset,
    {
        "__init__": _fill_recordset,
        "__iter__": _recordset_rows,
        "__len__": lambda self: self.RecordCount,
        "__repr__": lambda self: f"<qdclgl.Recordset of {len(self)} rows>"
        if self.State
        else "<qdclgl.Recordset, closed>",
    },
)

__all__ = ["Collection", "Dictionary", "Fields", "Properties", "Recordset", "Vector"]

"""Lists of the books as tables."""

from __future__ import annotations

from collections.abc import Iterator
from decimal import Decimal
from html import escape
from typing import TYPE_CHECKING, Any

from qdclgl._core import Recordset, read_table
from qdclgl._values import Null

if TYPE_CHECKING:
    import pandas
    import polars

_SHOWN = 60  # rows that a notebook shows


class Table:
    """The rows of a list: names of columns, and cells in rows.

    ``Null`` is ``None`` here, as in other programs' tables.
    """

    def __init__(self, recordset: Recordset, shown: tuple[str, ...] = ()) -> None:
        names, cells = read_table(recordset)
        self.columns: tuple[str, ...] = tuple(names)
        self._cells: list[tuple[Any, ...]] = [
            tuple(None if cell is Null else cell for cell in row) for row in cells
        ]
        self._shown = shown or self.columns

    def __len__(self) -> int:
        return len(self._cells)

    def __iter__(self) -> Iterator[dict[str, Any]]:
        return iter(self.rows())

    def __repr__(self) -> str:
        return f"<qdclgl.Table of {len(self)} rows: {', '.join(self._shown)}>"

    def rows(self) -> list[dict[str, Any]]:
        """Each row as a dict."""
        return [dict(zip(self.columns, row)) for row in self._cells]

    def column(self, name: str) -> list[Any]:
        """The values of one column; KeyError for one that is not there."""
        if name not in self.columns:
            raise KeyError(name)
        place = self.columns.index(name)
        return [row[place] for row in self._cells]

    def to_pandas(self) -> pandas.DataFrame:
        """The table as a DataFrame of pandas, which must be installed."""
        import pandas

        return pandas.DataFrame.from_records(self._cells, columns=list(self.columns))

    def to_polars(self) -> polars.DataFrame:
        """The table as a DataFrame of Polars, which must be installed."""
        import polars

        data = {name: self.column(name) for name in self.columns}
        return polars.DataFrame(data, strict=False)

    def _repr_html_(self) -> str:
        """What a notebook shows: the columns that people see first, and the first rows."""
        places = [self.columns.index(name) for name in self._shown]
        head = "".join(f"<th>{escape(name)}</th>" for name in self._shown)
        body = "".join(
            "<tr>" + "".join(_cell(row[place]) for place in places) + "</tr>"
            for row in self._cells[:_SHOWN]
        )
        left_out = len(self) - _SHOWN
        more = f"<p>and {left_out} rows more</p>" if left_out > 0 else ""
        return f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>{more}"


def _cell(value: Any) -> str:
    if value is None:
        return "<td></td>"
    if isinstance(value, (int, float, Decimal)) and not isinstance(value, bool):
        return f'<td style="text-align: right">{value}</td>'
    return f"<td>{escape(str(value))}</td>"

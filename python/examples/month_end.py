"""Tells what stands against closing the current month: month_end.py BOOKS

Ends with 0 when nothing does: all vouchers are posted, the books agree with themselves, and debits
and credits of the month are equal.
"""

from __future__ import annotations

import sys
from decimal import Decimal

import qdclgl


def findings(books: qdclgl.Books) -> list[str]:
    profile = qdclgl.SystemProfile()
    year, period = (int(profile.Item("GL", key)) for key in ("CurrentYear", "CurrentPeriod"))
    found = []
    open_ones = books.list(
        "vouchers", filter=f"FYear = {year} AND FPeriod = {period} AND FPosted = FALSE"
    )
    for row in open_ones:
        found.append(f"voucher {row['FNumber']} of {row['FDate']:%Y-%m-%d} is not posted")
    for problem in books.component("QDSVGLBooks.BooksInfo").Check(books.props):
        found.append(f"{problem['FRule']}: {problem['FProblem']}")
    totals = books.balance(year, period, period, filter="FCurrencyID = 0 AND FDetail = TRUE")
    debit, credit = (sum(totals.column(name), Decimal()) for name in ("FDebit", "FCredit"))
    if debit != credit:
        found.append(f"debits are {debit} and credits {credit}")
    return found


def main(source: str) -> int:
    with qdclgl.open(source) as books:
        found = findings(books)
    print("\n".join(found) or "Nothing stands against closing the month.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

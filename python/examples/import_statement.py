"""Books a bank statement: import_statement.py BOOKS STATEMENT.csv RULES.csv

The statement has the columns date, text and amount; an amount below 0 left the bank. A rule has the
columns contains, account and group: the first whose text the line contains tells the account that
stands against the bank's. Lines that no rule fits are told and left out. A line that is in the books
already, by its reference, is not booked again, so a statement may be imported twice.
"""

from __future__ import annotations

import csv
import hashlib
import sys
from datetime import datetime
from decimal import Decimal
from pathlib import Path

import qdclgl

BANK = "1000"
Row = dict[str, str]


def rows_of(path: str) -> list[Row]:
    with Path(path).open(newline="") as file:
        return list(csv.DictReader(file))


def rule_for(line: Row, rules: list[Row]) -> Row | None:
    text = line["text"].casefold()
    return next((rule for rule in rules if rule["contains"].casefold() in text), None)


def references_of(lines: list[Row]) -> list[str]:
    """A reference for each line: the same for the same line, and not for its equal on one day."""
    seen: dict[str, int] = {}
    references = []
    for line in lines:
        key = "|".join((line["date"], line["text"], line["amount"]))
        seen[key] = seen.get(key, 0) + 1
        references.append(hashlib.sha256(f"{key}|{seen[key]}".encode()).hexdigest()[:16])
    return references


def book(line: Row, rule: Row, group: int, reference: str) -> int:
    amount = Decimal(line["amount"])
    voucher = qdclgl.VoucherSet().CreateNew()
    voucher.VoucherDate = datetime.fromisoformat(line["date"])
    voucher.GroupID = group
    voucher.Reference = reference
    voucher.Entries.Count = 2
    bank, other = voucher.Entries
    bank.AccountNumber, other.AccountNumber = BANK, rule["account"]
    for entry, value in ((bank, amount), (other, -amount)):
        entry.Explanation = line["text"]
        if value > 0:
            entry.Debit = value
        else:
            entry.Credit = -value
    voucher.SaveChanges()
    return voucher.Number


def main(source: str, statement: str, rules_file: str) -> int:
    rules = rows_of(rules_file)
    left_out = 0
    with qdclgl.open(source) as books:
        groups = {group.Name: group.VoucherGroupID for group in qdclgl.VoucherGroupSet()}
        known = set(books.list("vouchers").column("FReference"))
        lines = rows_of(statement)
        for line, reference in zip(lines, references_of(lines)):
            if reference in known:
                continue
            rule = rule_for(line, rules)
            if rule is None:
                left_out += 1
                print(f"no rule for {line['date']} {line['text']} {line['amount']}")
                continue
            number = book(line, rule, groups[rule["group"]], reference)
            print(f"{line['date']} {line['amount']:>10} {rule['account']} as {number}")
    return 1 if left_out else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

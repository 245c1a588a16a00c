"""Keeps receivables by customer and contract, and prints what each owes: receivables.py BOOKS

Makes the books, an item class of its own with a field, items of it, and invoices that name them.
"""

from __future__ import annotations

import sys
from datetime import datetime
from decimal import Decimal

import qdclgl

CUSTOMERS = 3  # an item class of all books
TEXT = 200


def make_contracts() -> int:
    contracts = qdclgl.ItemClassSet().CreateNew("CONTRACT", "Contract")
    contracts.CustomProperties.Add("Manager", TEXT, "", 40)
    contracts.SaveChanges()
    return contracts.ItemClassID


def make_item(item_class: int, number: str, name: str, **fields: str) -> int:
    item: qdclgl.Item = qdclgl.ItemSet().CreateNew(item_class, 0)
    item.Number = number
    item.Name = name
    for column, value in fields.items():
        item.Properties[column] = value
    item.SaveChanges()
    return item.ItemID


def make_account(number: str, name: str, *classes: int) -> int:
    """An account each of whose lines names an item of each class."""
    account = qdclgl.AccountSet().CreateNew(number, name)
    items = qdclgl.Vector(qdclgl.Dictionary(FItemClassID=each) for each in classes)
    account.SetProps("_Items", items)
    account.SaveChanges()
    return account.AccountID


def invoice(
    receivables: int, sales: int, amount: Decimal, items: dict[int, int]
) -> None:
    """So much from sales into receivables, for the item of each class."""
    vouchers = qdclgl.VoucherSet()
    voucher = vouchers.CreateNew()
    voucher.VoucherDate = datetime(2024, 1, 15)
    voucher.GroupID = qdclgl.VoucherGroupSet()["Invoices"].VoucherGroupID
    voucher.Entries.Count = 2
    debit, credit = voucher.Entries
    debit.AccountID, debit.Debit = receivables, amount
    credit.AccountID, credit.Credit = sales, amount
    debit.Details.Count = len(items)
    for detail, (item_class, item) in zip(debit.Details, items.items()):
        detail.ItemClassID, detail.ItemID = item_class, item
    voucher.SaveChanges1()
    vouchers.Post(voucher.VoucherID)


def print_balances(books: qdclgl.Books, classes: str) -> None:
    print(f"By {classes}:")
    balances = books.component("QDSVGLBalance.BalanceInfo").GetItemList(
        books.props, classes, 2024, 1, 12, "FCurrencyID = 0"
    )
    names = [f"FItemName{place}" for place in range(1, classes.count(",") + 2)]
    for row in balances:
        print(" ", "  ".join([*(row[name] for name in names), str(row["FEndBalance"])]))


def main(source: str) -> int:
    with qdclgl.open(source, create="EUR", year=2024) as books:
        qdclgl.VoucherGroupSet().CreateNew("Invoices").SaveChanges()
        contracts = make_contracts()
        receivables = make_account("1130", "Receivables", CUSTOMERS, contracts)
        sales = make_account("3000", "Sales")
        anna = make_item(CUSTOMERS, "C001", "Anna")
        bert = make_item(CUSTOMERS, "C002", "Bert")
        fields = qdclgl.ItemClassSet()[contracts].CustomProperties
        manager = fields.Item("Manager").SQLColumnName
        roof = make_item(contracts, "2024-17", "Roof", **{manager: "Carla"})
        wall = make_item(contracts, "2024-18", "Wall")
        for amount, customer, contract in [
            ("500", anna, roof),
            ("300", bert, wall),
            ("120", anna, wall),
        ]:
            items = {CUSTOMERS: customer, contracts: contract}
            invoice(receivables, sales, Decimal(amount), items)
        contract_list = books.list("items", ItemClassID=contracts)
        print("Managers:", *filter(None, contract_list.column(manager)))
        print_balances(books, "CUSTOMER")
        print_balances(books, "CUSTOMER,CONTRACT")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

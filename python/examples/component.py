"""A server component in Python: voucher groups that are kept in a dict.

The library asks for it by its ProgIDs, as it would for one of a server, and calls its methods by
name.
"""

from __future__ import annotations

from typing import Any, ClassVar

import qdclgl


class GroupStore:
    rows: ClassVar[dict[int, str]] = {}

    def GetList(self, props: str, options: Any, filter: Any, sort: Any) -> qdclgl.Recordset:
        return qdclgl.Recordset(["FGroupID", "FName"], list(self.rows.items()))

    def GetDetail(self, props: str, id: Any) -> qdclgl.Dictionary | None:
        number = id.value if isinstance(id, qdclgl.Ref) else id
        if number not in self.rows:
            return None
        return qdclgl.Dictionary(FGroupID=number, FName=self.rows[number])

    def Create(self, props: str, row: qdclgl.Dictionary) -> int:
        number = len(self.rows) + 1
        self.rows[number] = row["FName"]
        return number

    def Update(self, props: str, id: Any, row: qdclgl.Dictionary) -> None:
        if not row["FName"].strip():
            raise qdclgl.Error(1001, "GroupStore", "A group needs a name.")
        self.rows[id.value] = row["FName"]


def main() -> None:
    for role in ("Info", "Update"):
        qdclgl.register_component(f"QDSVGLVoucherGroup.VoucherGroup{role}", GroupStore)
    for name in ("Receipts", "Payments"):
        qdclgl.VoucherGroupSet().CreateNew(name).SaveChanges()
    group = qdclgl.VoucherGroupSet()[2]
    group.Name = "Payments by bank"
    group.SaveChanges()
    for group in qdclgl.VoucherGroupSet():
        print(group.VoucherGroupID, group.Name)
    group = qdclgl.VoucherGroupSet()[1]
    group.Name = " "
    try:
        group.SaveChanges()
    except qdclgl.Error as error:
        print(error)


if __name__ == "__main__":
    main()

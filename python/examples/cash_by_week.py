# %% [markdown]
# # Cash by week
# What the cash account had at the end of each week. Set `BOOKS` to the books to look at; run as a
# program it takes them as its argument.

# %%
import sys
from collections import defaultdict
from datetime import date, timedelta
from decimal import Decimal

import qdclgl

BOOKS = sys.argv[1] if len(sys.argv) > 1 else "books.db"
CASH = "1000"

# %% [markdown]
# Each line on the account, by the Monday of its week.

# %%
moved: dict[date, Decimal] = defaultdict(Decimal)
with qdclgl.open(BOOKS) as books:
    for voucher in qdclgl.VoucherSet():
        day = voucher.VoucherDate.date()
        for line in qdclgl.VoucherSet()[voucher.VoucherID].Entries:
            if line.AccountNumber == CASH:
                moved[day - timedelta(days=day.weekday())] += line.Debit - line.Credit

# %% [markdown]
# A bar for each week, as long as the cash at its end.

# %%
total, ends = Decimal(), {}
for monday in sorted(moved):
    total += moved[monday]
    ends[monday] = total

WIDTH = 40
largest = max((abs(amount) for amount in ends.values()), default=Decimal(1)) or Decimal(1)
for monday, amount in ends.items():
    bar = "#" * round(abs(amount) / largest * WIDTH)
    print(f"{monday}  {amount:>12,.2f}  {bar}")

#include "qdclgl/server/ledgers/open_items.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <vector>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/ledgers/account_lines.h"
#include "qdclgl/server/ledgers/wanted.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(OpenItemInfo)

namespace {

// "30,60,90": the last day of each age but the last.
std::vector<Long> AgesIn(const String& text) {
  std::vector<Long> ages;
  for (std::size_t first = 0; first < text.size();) {
    const std::size_t end = std::min(text.find(',', first), text.size());
    const std::string age = text.substr(first, end - first);
    constexpr std::size_t kMostDigits = 5;
    if (age.empty() || age.size() > kMostDigits ||
        age.find_first_not_of("0123456789") != age.npos ||
        (!ages.empty() && std::stoi(age) <= ages.back())) {
      Refuse(refusal::kBadValue, "Ages are days that rise, such as 30,60,90, not " + text + ".");
    }
    ages.push_back(std::stoi(age));
    first = end + 1;
  }
  return ages;
}

struct OpenItem {
  std::string account;
  Long item = 0;
  std::string reference;
  DateTime date;
  Long voucher = 0;
  Units debit = 0, credit = 0, open = 0;

  static OpenItem Of(const AccountLine& line) {
    const TwoSides sides = line.Sides();
    return {line.account, line.item,   line.reference, line.date,
            line.voucher, sides.debit, sides.credit,   sides.debit - sides.credit};
  }
};

// Lines that have one reference, or none, on one account for one item, by day.
using Lines = std::vector<AccountLine>;

OpenItem Settled(const Lines& lines) {
  OpenItem item = OpenItem::Of(lines.front());
  TwoSides all;
  for (const AccountLine& line : lines) all.Add(line.Sides());
  item.debit = all.debit;
  item.credit = all.credit;
  item.open = all.debit - all.credit;
  return item;
}

// What settles the oldest first leaves the newest lines on the side of the balance.
void AddUnsettled(const Lines& lines, std::vector<OpenItem>& items) {
  Units rest = Settled(lines).open;
  std::vector<OpenItem> left;
  for (auto line = lines.rbegin(); rest != 0 && line != lines.rend(); ++line) {
    OpenItem item = OpenItem::Of(*line);
    if ((item.open > 0) != (rest > 0) || item.open == 0) continue;
    if (std::abs(item.open) > std::abs(rest)) item.open = rest;
    rest -= item.open;
    left.push_back(std::move(item));
  }
  items.insert(items.end(), std::move_iterator(left.rbegin()), std::move_iterator(left.rend()));
}

// The accounts that lines are on, which is why none of them stands below another.
std::vector<Long> AskingAccounts(Database& db, Long item_class, const String& account) {
  if (!account.empty()) {
    const AccountLines lines{.account = AccountWanted(db, account), .item_class = item_class};
    if (!IsAskedFor(db, lines)) return {};
    return {lines.account};
  }
  std::vector<Long> accounts;
  for (const auto& [id] :
       db.Query<Long>("SELECT a.FAccountID FROM t_AccountItem i"
                      " JOIN t_Account a ON a.FAccountID = i.FAccountID"
                      " WHERE i.FItemClassID = ? AND a.FDetail = 1 ORDER BY a.FNumber",
                      item_class)) {
    accounts.push_back(id);
  }
  return accounts;
}

std::vector<OpenItem> OpenItemsOf(Database& db, const AccountLines& which, DateTime behind) {
  std::vector<AccountLine> lines = LinesOf(db, which, LineState::kPosted, DateTime(), behind);
  std::ranges::sort(lines, std::less());
  std::map<std::tuple<std::string, Long, std::string>, Lines> groups;
  for (AccountLine& line : lines) {
    Lines& group = groups[{line.account, line.item, line.reference}];
    group.push_back(std::move(line));
  }
  std::vector<OpenItem> items;
  for (const auto& [place, group] : groups) {
    if (std::get<2>(place).empty()) {
      AddUnsettled(group, items);
    } else if (OpenItem item = Settled(group); item.open != 0) {
      items.push_back(std::move(item));
    }
  }
  return items;
}

struct ItemName {
  std::string number, name;
};

class Rows {
 public:
  Rows(Database& db, DateTime day, const String& ageing)
      : db_(db), day_(day), ages_(AgesIn(ageing)) {
    for (const char* name : {"FAccountNumber", "FItemNumber", "FItemName", "FTransNo", "FDate",
                             "FVoucherID", "FDays", "FDebit", "FCredit", "FOpen"}) {
      rows_->AppendField(name);
    }
    for (std::size_t i = 1; !ages_.empty() && i <= ages_.size() + 1; ++i) {
      rows_->AppendField("FAge" + std::to_string(i));
    }
    rows_->Open();
  }

  Ref<Recordset> Of(std::vector<OpenItem> items) {
    std::ranges::stable_sort(items, {}, [&](const OpenItem& item) {
      return std::tuple(item.account, NameOf(item.item).number, item.date, item.reference);
    });
    for (const OpenItem& item : items) Put(item);
    return rows_;
  }

 private:
  const ItemName& NameOf(Long item) {
    const auto [place, is_new] = names_.try_emplace(item);
    if (is_new) {
      if (const auto row = db_.QueryRow<std::string, std::string>(
              "SELECT FNumber, FName FROM t_Item WHERE FItemID = ?", item)) {
        place->second = {std::get<0>(*row), std::get<1>(*row)};
      }
    }
    return place->second;
  }

  void Put(const OpenItem& item) {
    const auto amount = [](Units units) { return Variant(Currency::FromUnits(units)); };
    const ItemName& name = NameOf(item.item);
    const auto days = static_cast<Long>(day_.days - std::floor(item.date.days));
    std::vector<Variant> row = {
        Variant(item.account), Variant(name.number),  Variant(name.name), Variant(item.reference),
        Variant(item.date),    Variant(item.voucher), Variant(days),      amount(item.debit),
        amount(item.credit),   amount(item.open)};
    if (!ages_.empty()) {
      const auto age =
          static_cast<std::size_t>(std::ranges::lower_bound(ages_, days) - ages_.begin());
      for (std::size_t i = 0; i <= ages_.size(); ++i)
        row.push_back(amount(i == age ? item.open : 0));
    }
    rows_->AddRow(std::move(row));
  }

  Database& db_;
  DateTime day_;
  std::vector<Long> ages_;
  std::map<Long, ItemName> names_;
  Ref<Recordset> rows_ = Make<Recordset>();
};

}  // namespace

Ref<Recordset> OpenItemInfo::GetOpenItems(std::string_view PropsString,
                                          const String& ItemClassNumber, DateTime OnDate,
                                          const String& AccountNumber, const String& Ageing) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const DateTime day(std::floor(OnDate.days));
  Rows rows(caller.db, day, Ageing);
  const Long item_class = ItemClassWanted(caller.db, ItemClassNumber);
  const std::vector<Long> accounts = AskingAccounts(caller.db, item_class, AccountNumber);
  if (accounts.empty()) {
    Refuse(refusal::kBadReference,
           "No such account asks for items of item class " + ItemClassNumber + ".");
  }
  std::vector<OpenItem> items;
  for (const Long account : accounts) {
    std::ranges::move(OpenItemsOf(caller.db, {.account = account, .item_class = item_class},
                                  DateTime(day.days + 1)),
                      std::back_inserter(items));
  }
  Ref<Recordset> list = rows.Of(std::move(items));
  transaction.Commit();
  return list;
}

}  // namespace qdclgl::server

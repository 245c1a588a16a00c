#include "qdclgl/server/reports/kind_sums.h"

#include <algorithm>

#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

// Those of budgets: what is posted always adds up.
constexpr std::string_view kAmounts = "amounts of these periods";

// So that "1000.01" follows "1000" before "1000-A" does.
std::string TreeOrder(std::string number) {
  std::ranges::replace(number, '.', '\x01');
  return number;
}

}  // namespace

bool IsDebitKind(std::string_view kind) {
  using namespace account_kind;
  return kind == kAsset || kind == kExpense || kind.empty();
}

KindChart::KindChart(Database& db) {
  std::map<Long, Long> parents;
  for (auto& [id, number, name, level, is_detail, kind, parent] :
       db.Query<Long, std::string, std::string, Long, Long, std::string, Long>(
           "SELECT FAccountID, FNumber, FName, FLevel, FDetail, FKind, FParentID FROM t_Account")) {
    accounts_.push_back(
        {id, std::move(number), std::move(name), level, is_detail != 0, std::move(kind)});
    parents.emplace(id, parent);
  }
  std::ranges::sort(accounts_, {},
                    [](const Account& account) { return TreeOrder(account.number); });
  for (std::size_t i = 0; i < accounts_.size(); ++i) places_.emplace(accounts_[i].id, i);
  for (Account& account : accounts_) {
    account.above = PlaceOf(parents.at(account.id));
    if (account.above != kNone && account.kind.empty()) {
      account.kind = accounts_[account.above].kind;
    }
  }
}

std::size_t KindChart::PlaceOf(Long id) const {
  const auto place = places_.find(id);
  return place == places_.end() ? kNone : place->second;
}

void KindSums::Add(std::size_t account, std::size_t column, Units units) {
  Kind& kind = Of(chart_.accounts()[account].kind);
  AddChecked(kind.total[column], units, kAmounts);
  for (; account != KindChart::kNone; account = chart_.accounts()[account].above) {
    const auto [place, is_new] = kind.accounts.try_emplace(account);
    if (is_new) place->second.resize(columns_);
    AddChecked(place->second[column], units, kAmounts);
  }
}

const std::vector<Units>& KindSums::Total(std::string_view kind) { return Of(kind).total; }

KindSums::Kind& KindSums::Of(std::string_view kind) {
  const auto found = kinds_.find(kind);
  if (found != kinds_.end()) return found->second;
  return kinds_.emplace(kind, Kind{std::vector<Units>(columns_), {}}).first->second;
}

bool KindSums::IsZero(const std::vector<Units>& figures) {
  return std::ranges::all_of(figures, [](Units units) { return units == 0; });
}

}  // namespace qdclgl::server

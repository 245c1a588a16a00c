// What is posted, added up by kind of account and, within a kind, along the tree of accounts.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/values/values.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

using Units = std::int64_t;  // debit minus credit in ten-thousandths, unless it is told otherwise

// Whether what a kind has is told as a debit: assets and expense, and what has no kind.
bool IsDebitKind(std::string_view kind);

// The accounts with their kinds, each behind the one above it.
class KindChart {
 public:
  struct Account {
    Long id;
    std::string number, name;
    Long level;
    bool is_detail;
    std::string kind;  // its own or that of the nearest one above with a kind
    std::size_t above = kNone;
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  explicit KindChart(Database& db);

  const std::vector<Account>& accounts() const { return accounts_; }
  // kNone where there is none of that id.
  std::size_t PlaceOf(Long id) const;

 private:
  std::vector<Account> accounts_;
  std::map<Long, std::size_t> places_;
};

// The sums of one kind: for each account with any of it the figures of its own lines and of those
// of that kind below it, a figure for each column of a statement. An account above others of
// several kinds has sums in each of them.
class KindSums {
 public:
  KindSums(const KindChart& chart, std::size_t columns) : chart_(chart), columns_(columns) {}

  void Add(std::size_t account, std::size_t column, Units units);

  // What the kind has altogether.
  const std::vector<Units>& Total(std::string_view kind);
  // The accounts of a kind with a figure that is not zero, in the order of the chart.
  template <class Take>
  void Each(std::string_view kind, Take take) {
    for (const auto& [account, figures] : Of(kind).accounts) {
      if (!IsZero(figures)) take(chart_.accounts()[account], figures);
    }
  }

 private:
  struct Kind {
    std::vector<Units> total;
    std::map<std::size_t, std::vector<Units>> accounts;
  };

  Kind& Of(std::string_view kind);
  static bool IsZero(const std::vector<Units>& figures);

  const KindChart& chart_;
  std::size_t columns_;
  std::map<std::string, Kind, std::less<>> kinds_;
};

}  // namespace qdclgl::server

// The chart of accounts as a file, and the records that an import finds or makes by their names.
#pragma once

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

enum class NewCurrencies : bool { kReport, kMake };

// Ids by what a file calls the records. Groups that it names and are not there are made, currencies
// only where that is asked for: a slip in one would stay unnoticed.
class Names {
 public:
  static constexpr Long kBaseCurrency = 1;

  explicit Names(NewCurrencies new_currencies) : new_currencies_(new_currencies) {}

  // Reads accounts, units, currencies and groups of the books. What goes by them belongs into the
  // same batch. The library's session must be there.
  void Refresh();

  // 0 when there is none.
  Long Account(const std::string& number) const;
  void AddAccount(const std::string& number, Long id);
  // The account that takes lines on `number`; 0 when there is none. Books have no lines on an
  // account with others below it. Other programs' journals may, so such an account gets one more
  // below it, for its own lines; see OwnLinesOf.
  Long AccountForLines(const std::string& number);

  // The unit of measure of that number, or else that name: of any group for a new account, of the
  // account's group for its lines. 0 when there is none; a file's text stays a text then.
  Long Unit(const std::string& text) const;
  Long UnitForLines(const std::string& text, Long account) const;

  // The id of a currency, kBaseCurrency for an empty text. A missing one is made with this rate, or
  // BadCell; so for a text that can't be a currency's number.
  Long Currency(const std::string& number, Double rate);
  Long Group(const std::string& name);
  // 0 when there is none.
  Long SettlementType(const std::string& number) const;

  // The item classes that an account asks for.
  const std::set<Long>& ClassesOf(Long account);
  // 0 when there is none.
  Long Item(const NamedItemClass& item_class, const std::string& number);

 private:
  struct KnownUnit {
    Long id, group;
    std::string number, name;
  };

  void ReadUnits();
  template <class IsOne>
  Long UnitOf(const std::string& text, IsOne is_one) const;

  NewCurrencies new_currencies_;
  std::unordered_map<std::string, Long> accounts_;
  std::unordered_set<std::string> above_;  // numbers of accounts with others below them
  std::vector<KnownUnit> units_;
  std::unordered_map<Long, Long> unit_groups_;  // by the accounts that have one
  std::unordered_map<std::string, Long> currencies_;
  std::unordered_map<std::string, Long> groups_;
  std::unordered_map<std::string, Long> settlement_types_;
  // As far as anybody has asked.
  std::unordered_map<Long, std::set<Long>> classes_;
  std::map<std::pair<Long, std::string>, Long> items_;
};

// "1000._" for "1000": the account that has the own lines of an account with others below it; and
// back, for who asks for the lines on an account. Any other number stays as it is.
std::string OwnLinesOf(const std::string& number);
std::string WithoutOwnLines(const std::string& number);

struct ChartResult {
  long stored = 0;
  long passed = 0;  // in the books already
  long left_out = 0;
  bool is_whole = true;  // nothing was reported
};

// Stores the accounts of a file that the books don't have yet, those above before those below.
// `props` is the session's PropsString.
ChartResult ImportChart(const std::string& path, const std::string& props, Names& names,
                        const Console& console);

}  // namespace qdclgl::cli

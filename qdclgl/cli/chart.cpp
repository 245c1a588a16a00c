#include "qdclgl/cli/chart.h"

#include <algorithm>
#include <sstream>
#include <unordered_set>
#include <vector>

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/chart_columns.h"
#include "qdclgl/cli/sheet.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/masterdata/sett_type.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/records/master_data.h"
#include "qdclgl/vouchers/voucher_group.h"

namespace qdclgl::cli {

using namespace chart_column;

namespace {

template <class Set>
std::unordered_map<std::string, Long> IdsBy(std::string_view name, std::string_view id) {
  const auto set = Make<Set>();
  set->Refresh();
  const Ref<Recordset> rows = set->RecordSet();
  const Long name_at = rows->FieldPosition(name), id_at = rows->FieldPosition(id);
  std::unordered_map<std::string, Long> ids;
  for (; !rows->Eof(); rows->MoveNext()) {
    ids[rows->FieldValue(name_at).As<String>()] = rows->FieldValue(id_at).As<Long>();
  }
  return ids;
}

Long IdIn(const std::unordered_map<std::string, Long>& ids, const std::string& name) {
  const auto found = ids.find(name);
  return found == ids.end() ? 0 : found->second;
}

constexpr std::string_view kOwnLines = "._";

// "1000" for "1000.01", "" at the first level.
std::string NumberAbove(const std::string& number) {
  const std::size_t dot = number.rfind('.');
  return dot == number.npos ? "" : number.substr(0, dot);
}

// ---- The chart ----

struct ChartRow {
  Position at;
  std::string number;
  std::string name;
  Long side = 0;
  CsvCell currency;
  std::string unit;
  bool has_quantities = false;
  CsvCell items;  // numbers of item classes with blanks between them
  std::vector<std::pair<std::string_view, Variant>> further;
};

Long ReadSide(std::string_view text) {
  if (text == "1") return 1;
  if (text == "-1") return -1;
  if (text == "0") return 0;
  throw BadCell(Quoted(text) + " is no side; 1 is debit, -1 credit, 0 either");
}

std::string ReadKind(const std::string& text) {
  const std::string word = FoldAsciiCase(text);
  if (std::ranges::count(server::account_kind::kAll, word) != 0) return word;
  throw BadCell(Quoted(text) + " is no kind of account; they are " +
                server::WordsText(server::account_kind::kAll));
}

// BadCell for the first thing that is wrong, told with its place by `at`.
ChartRow ReadRow(const Sheet& sheet, const CsvRow& row, Position& at) {
  const auto cell = [&](std::size_t column) -> const CsvCell& {
    static const CsvCell kNone;
    const CsvCell* found = sheet.Cell(row, column);
    if (found != nullptr) at = found->at;
    return found != nullptr ? *found : kNone;
  };
  if (row.problem) {
    at = row.problem->at;
    throw BadCell(row.problem->reason);
  }
  ChartRow result;
  result.at = row.at;
  result.number = ToUpper(cell(kNumber).text);
  if (result.number.empty()) throw BadCell("the account has no number");
  result.name = cell(kName).text;
  if (result.name.empty()) throw BadCell("the account has no name");
  result.side = ReadSide(cell(kSide).text);
  result.currency = cell(kCurrency);
  result.unit = cell(kUnit).text;
  const std::string& quantities = cell(kQuantities).text;
  result.has_quantities = !quantities.empty() && ReadTruth(quantities);
  result.items = cell(kItems);
  for (std::size_t i = 0; i < FurtherChartColumns().size(); ++i) {
    const std::string& text = cell(kFirstFurther + i).text;
    if (text.empty()) continue;
    const WrittenColumn& column = FurtherChartColumns()[i];
    result.further.emplace_back(column.name, column.name == kKindKey
                                                 ? Variant(ReadKind(text))
                                                 : ReadTyped(column.type, text));
  }
  return result;
}

// The item classes that an account asks for, as its row has them. BadCell.
Ref<Vector> AskedClasses(const std::string& numbers, const std::vector<NamedItemClass>& classes) {
  auto asked = Make<Vector>();
  std::istringstream words(numbers);
  for (std::string word; words >> word;) {
    const NamedItemClass* item_class = FindItemClass(classes, word);
    if (item_class == nullptr) throw BadCell("there is no item class " + Quoted(word));
    auto row = Make<Dictionary>();
    row->Put("FItemClassID", item_class->id);
    asked->Append(Variant(row));
  }
  return asked;
}

// BadCell with the cell in `at`.
void Store(const ChartRow& row, const std::vector<NamedItemClass>& classes, Names& names,
           Position& at) {
  const auto account = Make<AccountSet>()->CreateNew(row.number, row.name);
  account->DC(row.side);
  at = row.currency.at;
  account->CurrencyID(names.Currency(row.currency.text, 1));
  at = row.items.at;
  if (!row.items.text.empty()) {
    account->SetProps(String(strings::lists::Items),
                      Variant(AskedClasses(row.items.text, classes)));
  }
  for (const auto& [key, value] : row.further) account->SetProps(String(key), value);
  if (!row.unit.empty()) {
    account->MeasureUnit(row.unit);
    account->MeasureUnitID(names.Unit(row.unit));
  }
  if (row.has_quantities) account->Quantities(true);
  account->SaveChanges();
  names.AddAccount(row.number, account->AccountID());
}

}  // namespace

void Names::ReadUnits() {
  units_.clear();
  unit_groups_.clear();
  const auto units = CreateObject("QDSVGLUnit.MeasureUnitInfo")
                         ->Call("GetUnitList", GetPropsString(), Long{0})
                         .As<Recordset>();
  for (; !units->Eof(); units->MoveNext()) {
    const Ref<Dictionary> unit = units->Row();
    units_.push_back({unit->Value("FMeasureUnitID").As<Long>(),
                      unit->Value("FUnitGroupID").As<Long>(), unit->Value("FNumber").As<String>(),
                      unit->Value("FName").As<String>()});
  }
  const auto accounts = Make<AccountSet>();
  accounts->Filter("FUnitGroupID <> 0");
  for (auto& account : *accounts) unit_groups_[account.AccountID()] = account.UnitGroupID();
}

void Names::Refresh() {
  ReadUnits();
  accounts_ = IdsBy<AccountSet>("FNumber", "FAccountID");
  currencies_ = IdsBy<CurrencySet>("FNumber", "FCurrencyID");
  groups_ = IdsBy<VoucherGroupSet>("FName", "FGroupID");
  settlement_types_ = IdsBy<SettTypeSet>("FNumber", "FItemID");
  classes_.clear();
  items_.clear();
  above_.clear();
  for (const auto& [number, id] : accounts_) above_.insert(NumberAbove(number));
}

Long Names::Account(const std::string& number) const { return IdIn(accounts_, ToUpper(number)); }

void Names::AddAccount(const std::string& number, Long id) {
  accounts_[number] = id;
  above_.insert(NumberAbove(number));
}

template <class IsOne>
Long Names::UnitOf(const std::string& text, IsOne is_one) const {
  for (const auto part : {&KnownUnit::number, &KnownUnit::name}) {
    for (const KnownUnit& unit : units_) {
      if (unit.*part == text && is_one(unit)) return unit.id;
    }
  }
  return 0;
}

Long Names::Unit(const std::string& text) const {
  return UnitOf(text, [](const KnownUnit&) { return true; });
}

Long Names::UnitForLines(const std::string& text, Long account) const {
  const auto group = unit_groups_.find(account);
  if (text.empty() || group == unit_groups_.end()) return 0;
  return UnitOf(text, [&](const KnownUnit& unit) { return unit.group == group->second; });
}

Long Names::AccountForLines(const std::string& number) {
  const std::string known_as = ToUpper(number);
  const Long id = IdIn(accounts_, known_as);
  if (id == 0 || !above_.contains(known_as)) return id;
  const std::string own = OwnLinesOf(known_as);
  if (const Long own_id = IdIn(accounts_, own)) return own_id;
  const Ref<qdclgl::Account> above = Make<AccountSet>()->Item(id);
  const Ref<qdclgl::Account> account = above->Clone();
  account->Number(own);
  account->Name(above->Name() + " (own lines)");
  account->SaveChanges();
  AddAccount(own, account->AccountID());
  if (const auto group = unit_groups_.find(id); group != unit_groups_.end()) {
    unit_groups_[account->AccountID()] = group->second;
  }
  return account->AccountID();
}

Long Names::Currency(const std::string& number, Double rate) {
  if (number.empty()) return kBaseCurrency;
  const std::string known_as = ToUpper(number);
  Long id = IdIn(currencies_, known_as);
  if (id != 0) return id;
  Ref<Currencyx> currency;
  try {
    currency = Make<CurrencySet>()->CreateNew(known_as, known_as);
  } catch (const Error&) {
    throw BadCell(Quoted(number) + " can't be a currency: up to 8 letters, digits and underscores");
  }
  if (new_currencies_ == NewCurrencies::kReport) {
    throw BadCell("there is no currency " + Quoted(number) + "; --new-currencies makes it");
  }
  currency->ExchangeRate(rate);
  currency->SaveChanges();
  return currencies_[known_as] = currency->CurrencyID();
}

Long Names::Group(const std::string& name) {
  Long& id = groups_[name];
  if (id != 0) return id;
  const auto group = Make<VoucherGroupSet>()->CreateNew(name);
  group->SaveChanges();
  return id = group->VoucherGroupID();
}

Long Names::SettlementType(const std::string& number) const {
  return IdIn(settlement_types_, number);
}

const std::set<Long>& Names::ClassesOf(Long account) {
  const auto [place, is_new] = classes_.try_emplace(account);
  if (is_new) {
    const Ref<Vector> items = Make<AccountSet>()
                                  ->Item(account)
                                  ->Properties()
                                  ->Dictionary()
                                  ->Value(strings::lists::Items)
                                  .As<Vector>();
    for (std::size_t i = 0; i < items->size(); ++i) {
      place->second.insert(items->at(i).As<Dictionary>()->Value("FItemClassID").As<Long>());
    }
  }
  return place->second;
}

Long Names::Item(const NamedItemClass& item_class, const std::string& number) {
  const auto [place, is_new] = items_.try_emplace({item_class.id, number});
  if (is_new) place->second = ItemNumbered(item_class, number);
  return place->second;
}

std::string OwnLinesOf(const std::string& number) { return number + std::string(kOwnLines); }

std::string WithoutOwnLines(const std::string& number) {
  const bool is_own = number.ends_with(kOwnLines);
  return is_own ? number.substr(0, number.size() - kOwnLines.size()) : number;
}

ChartResult ImportChart(const std::string& path, const std::string& props, Names& names,
                        const Console& console) {
  Progress progress(console);
  Reports reports(path, console, progress);
  Sheet sheet(path, ChartColumns(), reports);
  ChartResult result;
  std::vector<ChartRow> rows;
  std::unordered_set<std::string> numbers;
  const auto leave_out = [&](Position at, const std::string& reason) {
    ++result.left_out;
    reports.Add(at, reason);
  };
  if (!sheet.IsUsable()) ++result.left_out;
  for (CsvRow row; sheet.IsUsable() && sheet.Next(row);) {
    Position at = row.at;
    try {
      ChartRow account = ReadRow(sheet, row, at);
      if (!numbers.insert(account.number).second) {
        at = row.at;
        throw BadCell("account " + account.number + " stands further up already");
      }
      rows.push_back(std::move(account));
    } catch (const BadCell& bad) {
      leave_out(at, bad.what());
    }
  }
  // The number of an account above begins the numbers of those below.
  std::ranges::sort(rows, {}, &ChartRow::number);

  Batch batch(props);
  names.Refresh();
  const std::vector<NamedItemClass> classes = ItemClassesOfBooks();
  for (const ChartRow& row : rows) {
    progress.Show("accounts", result.stored, sheet.Share());
    if (names.Account(row.number) != 0) {
      ++result.passed;
      continue;
    }
    Position at = row.at;
    try {
      Store(row, classes, names, at);
      ++result.stored;
    } catch (const BadCell& bad) {
      leave_out(at, bad.what());
    } catch (const Error& error) {
      if (!IsAboutRecord(error)) throw;
      leave_out(row.at, ErrorText(error));
    }
  }
  batch.Commit();
  result.is_whole = reports.IsEmpty();
  return result;
}

}  // namespace qdclgl::cli

// The trial balance.
#include <algorithm>
#include <map>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

struct BalanceOptions {
  Login login;
  Format format = Format::kPlain;
  Long year = 0;
  Long from = 0;
  Long to = 0;
  std::vector<std::string> by;     // item classes
  std::vector<std::string> items;  // "customers=C001"
};

// The items that balances are asked for: the classes by which they are split, and a condition for
// the items that are meant alone.
struct WantedItems {
  std::vector<NamedItemClass> classes;
  std::string filter;

  bool IsAny() const { return !classes.empty(); }
  // As the server takes the classes.
  std::string Numbers() const {
    std::string numbers;
    for (const NamedItemClass& item_class : classes) {
      numbers += (numbers.empty() ? "" : ",") + item_class.number;
    }
    return numbers;
  }
};

// Where a class stands among those of the list, from 1 on; behind the others when it is new.
std::size_t PlaceOf(const NamedItemClass& item_class, std::vector<NamedItemClass>& classes) {
  const auto known = std::ranges::find(classes, item_class.id, &NamedItemClass::id);
  const auto place = static_cast<std::size_t>(known - classes.begin()) + 1;
  if (known == classes.end()) classes.push_back(item_class);
  return place;
}

WantedItems WantedItemsOf(const BalanceOptions& options) {
  WantedItems wanted;
  if (options.by.empty() && options.items.empty()) return wanted;
  const std::vector<NamedItemClass> known = ItemClassesOfBooks();
  for (const std::string& word : options.by) PlaceOf(ItemClassNamed(known, word), wanted.classes);
  for (const std::string& item : options.items) {
    const auto& [item_class, number] = ItemNamed(known, item);
    wanted.filter += " AND FItemNumber" + std::to_string(PlaceOf(item_class, wanted.classes)) +
                     " = " + FilterText(number);
  }
  return wanted;
}

std::string ItemCell(const Dictionary& row, std::string_view column, std::size_t place) {
  return row.Value(std::string(column) + std::to_string(place + 1)).As<String>();
}

// One row for each account with movement, and each of its items, in the form that other programs
// read. To them the own lines of an account with others below it are the account's.
void PrintCsv(Recordset& rows, const WantedItems& items, const Console& console) {
  std::vector<std::string> headings = {"account"};
  for (const NamedItemClass& item_class : items.classes) {
    headings.emplace_back(FoldAsciiCase(item_class.number));
  }
  headings.insert(headings.end(), {"debit", "credit", "balance"});
  std::map<std::vector<std::string>, std::vector<Variant>> lines;
  for (; !rows.Eof(); rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    std::vector<std::string> place = {WithoutOwnLines(row->Value("FAccountNumber").As<String>())};
    for (std::size_t i = 0; i < items.classes.size(); ++i) {
      place.push_back(ItemCell(*row, "FItemNumber", i));
    }
    std::vector<Variant>& cells = lines[place];
    cells.assign(place.begin(), place.end());
    for (const char* sum : {"FDebit", "FCredit", "FEndBalance"}) cells.push_back(row->Value(sum));
  }
  TableWriter table(console, Format::kCsv, std::move(headings));
  for (const auto& [place, cells] : lines) table.Row(cells);
  table.Finish();
}

// All accounts as a tree, each with its items, and the sums below it.
void PrintPlain(Recordset& rows, const WantedItems& items, const Console& console) {
  constexpr std::string_view kSums[] = {"FBeginBalance", "FDebit", "FCredit", "FEndBalance"};
  if (rows.Eof()) {
    console.out << "No account has balances of this kind.\n";
    return;
  }
  std::vector<std::string> keys = {"FAccountNumber", "FAccountName"};
  for (const NamedItemClass& item_class : items.classes) keys.push_back(item_class.name);
  keys.insert(keys.end(), std::begin(kSums), std::end(kSums));
  TableWriter table(console, Format::kPlain, std::move(keys));
  table.Bars("FEndBalance");
  std::vector<Currency> totals(std::size(kSums));
  for (; !rows.Eof(); rows.MoveNext()) {
    const Ref<Dictionary> row = rows.Row();
    const auto level = row->Value("FLevel").As<Long>();
    const std::string indent(static_cast<std::size_t>(2 * std::max<Long>(level - 1, 0)), ' ');
    std::vector<Variant> cells = {row->Value("FAccountNumber"),
                                  indent + row->Value("FAccountName").As<String>()};
    for (std::size_t i = 0; i < items.classes.size(); ++i) {
      cells.emplace_back(ItemCell(*row, "FItemNumber", i) + " " + ItemCell(*row, "FItemName", i));
    }
    for (std::size_t i = 0; i < std::size(kSums); ++i) {
      const auto amount = row->Value(kSums[i]).As<Currency>();
      if (row->Value("FDetail").As<Boolean>()) totals[i] += amount;
      cells.push_back(amount);
    }
    table.Row(cells);
  }
  std::vector<Variant> last = {"", "Total"};
  last.resize(last.size() + items.classes.size(), "");
  last.insert(last.end(), totals.begin(), totals.end());
  table.Total(last);
  table.Finish();
}

// The rows of the list that the options ask for.
Ref<Recordset> BalancesOf(const BalanceOptions& options, const std::string& props,
                          const WantedItems& items, const std::string& filter) {
  const Ref<Object> balances = CreateObject("QDSVGLBalance.BalanceInfo");
  if (items.IsAny()) {
    return balances
        ->Call("GetItemList", props, items.Numbers(), options.year, options.from, options.to,
               filter + items.filter)
        .As<Recordset>();
  }
  return balances->Call("GetList", props, options.year, options.from, options.to, filter)
      .As<Recordset>();
}

int PrintBalance(const BalanceOptions& options, const Console& console) {
  if (options.year == 0 && (options.from != 0 || options.to != 0)) {
    throw UsageError("--from and --to go with a --year");
  }
  const std::string props = options.login.Open();
  const WantedItems items = WantedItemsOf(options);
  std::string filter = "FCurrencyID >= 0";
  if (options.format == Format::kPlain) filter = "FCurrencyID = 0";
  if (options.format == Format::kCsv) {
    filter = "FCurrencyID = 0 AND FDetail = TRUE AND (FDebit <> 0 OR FCredit <> 0)";
  }
  const Ref<Recordset> rows = BalancesOf(options, props, items, filter);
  switch (options.format) {
    case Format::kPlain: PrintPlain(*rows, items, console); break;
    case Format::kCsv: PrintCsv(*rows, items, console); break;
    case Format::kJson: WriteRecordset(console, Format::kJson, rows, {}); break;
  }
  return kDone;
}

}  // namespace

void AddBalanceCommand(Program& program) {
  const auto options = std::make_shared<BalanceOptions>();
  const Command command = program.AddForBooks(
      "balance", "Prints the trial balance of what is posted", options->login,
      [options, &program] { return PrintBalance(*options, program.console()); });
  command.Whole("--year", options->year, "The accounting year [everything posted]");
  command.Whole("--from", options->from, "The first period [the year's first]");
  command.Whole("--to", options->to, "The last period [the year's last]");
  command
      .Texts("--by", options->by, "CLASS",
             "Splits the balances by the items of these classes, commas between them")
      .PartedBy(',');
  command.Texts("--item", options->items, "CLASS=NUMBER",
                "Only what is posted for this item; as often as needed");
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli

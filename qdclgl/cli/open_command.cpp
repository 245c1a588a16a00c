// Open items.
#include <sstream>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/ledgers/open_items.h"

namespace qdclgl::cli {

namespace {

struct OpenOptions {
  Login login;
  Format format = Format::kPlain;
  std::string by, account, ageing;
  DateTime date;
};

// The headings of ages: "to 30", "31-60", "over 60".
std::vector<std::string> AgeHeadings(const std::string& ageing) {
  std::vector<std::string> headings;
  std::string last;
  std::istringstream ages(ageing);
  for (std::string age; std::getline(ages, age, ',');) {
    headings.push_back(last.empty() ? "to " + age
                                    : std::to_string(std::stoi(last) + 1) + "-" + age);
    last = age;
  }
  if (!last.empty()) headings.push_back("over " + last);
  return headings;
}

std::string Text(const Dictionary& row, std::string_view key) {
  return row.Value(key).As<String>();
}

// The open items with a sum for each item and one of all.
class OpenTable {
 public:
  OpenTable(const Console& console, const std::vector<std::string>& ages)
      : sums_(ages.size() + 1),
        all_(ages.size() + 1),
        table_(console, Format::kPlain, Headings(ages)) {
    table_.LeaveOutEmpty();
  }

  void Add(const Dictionary& row) {
    const std::string item = Text(row, "FItemNumber") + " " + Text(row, "FItemName");
    if (item != item_) EndItem();
    item_ = item;
    std::vector<Variant> cells = {item, row.Value("FAccountNumber"), row.Value("FTransNo"),
                                  CellText(row.Value("FDate")), row.Value("FDays")};
    for (std::size_t i = 0; i < sums_.size(); ++i) {
      const auto amount = row.Value(i == 0 ? "FOpen" : "FAge" + std::to_string(i)).As<Currency>();
      sums_[i] += amount;
      cells.push_back(amount == 0 ? Variant("") : Variant(amount));
    }
    table_.Row(cells);
    ++rows_;
  }

  void Finish() {
    EndItem();
    PutSums("Total", all_);
    table_.Finish();
  }

 private:
  static std::vector<std::string> Headings(const std::vector<std::string>& ages) {
    std::vector<std::string> headings = {"Item", "Account", "Reference", "Date", "Days", "Open"};
    headings.insert(headings.end(), ages.begin(), ages.end());
    return headings;
  }

  // An item with one row needs no sum.
  void EndItem() {
    if (rows_ > 1) PutSums(item_ + " together", sums_);
    for (std::size_t i = 0; i < sums_.size(); ++i) all_[i] += sums_[i];
    sums_.assign(sums_.size(), Currency());
    rows_ = 0;
  }

  void PutSums(const std::string& what, const std::vector<Currency>& sums) {
    std::vector<Variant> cells = {what, "", "", "", ""};
    cells.insert(cells.end(), sums.begin(), sums.end());
    table_.Total(cells);
  }

  std::vector<Currency> sums_, all_;
  TableWriter table_;
  std::string item_;
  int rows_ = 0;
};

int PrintOpenItems(const OpenOptions& options, const Console& console) {
  if (options.by.empty()) throw UsageError("open takes a class of items: --by customers");
  const std::string props = options.login.Open();
  const std::string item_class = ItemClassNamed(ItemClassesOfBooks(), options.by).number;
  const DateTime date = options.date != DateTime() ? options.date : CurrentPlatform().Today();
  const auto rows =
      CreateObject(server::OpenItemInfo::kProgID)
          ->Call("GetOpenItems", props, item_class, date, options.account, options.ageing)
          .As<Recordset>();
  if (options.format != Format::kPlain) {
    WriteRecordset(console, options.format, rows, {});
  } else if (rows->RecordCount() == 0) {
    console.out << "Nothing is open on " << date.ToText() << ".\n";
  } else {
    OpenTable table(console, AgeHeadings(options.ageing));
    for (; !rows->Eof(); rows->MoveNext()) table.Add(*rows->Row());
    table.Finish();
  }
  return kDone;
}

}  // namespace

void AddOpenCommand(Program& program) {
  const auto options = std::make_shared<OpenOptions>();
  const Command command = program.AddForBooks(
      "open", "Lists open items: what is not settled", options->login,
      [options, &program] { return PrintOpenItems(*options, program.console()); });
  command.Text("--by", options->by, "CLASS", "Whose: customers, suppliers, ...");
  command.Text("--account", options->account, "NUMBER", "On this account and those below it");
  command.Text("--ageing", options->ageing, "DAYS", "In columns by age: 30,60,90");
  command.Date("--date", options->date, "What is open at the end of this day [today]");
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli

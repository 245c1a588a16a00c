// Finding lines by what stands in them.
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/day_words.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/ledgers/line_search.h"

namespace qdclgl::cli {

namespace {

using server::LineInfo;

struct FindOptions {
  Login login;
  Format format = Format::kPlain;
  std::vector<std::string> words;
  std::string account, from, to, preparer, group, item, amount;
  bool posted = false, unposted = false;
  Long first = 0, count = 0;
};

// As the server takes them: each in quotes, a quote inside doubled.
std::string WordsText(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    text += text.empty() ? "\"" : " \"";
    for (const char c : word) text.append(c == '"' ? 2 : 1, c);
    text += '"';
  }
  return text;
}

// "100..200", "100.." and "..200", or "119" alone.
std::string AmountFilter(const std::string& text) {
  const std::size_t mark = text.find("..");
  const auto amount = [](const std::string& number) {
    try {
      return AmountText(ReadAmount(number));
    } catch (const BadCell& bad) {
      RefuseOption("--amount", bad.what());
    }
  };
  if (mark == text.npos) return " AND FAmount = " + amount(text);
  const std::string least = text.substr(0, mark), most = text.substr(mark + 2);
  std::string filter;
  if (!least.empty()) filter += " AND FAmount >= " + amount(least);
  if (!most.empty()) filter += " AND FAmount <= " + amount(most);
  return filter;
}

std::string FilterOf(const FindOptions& options) {
  std::string filter = "FVoucherID > 0";
  if (!options.preparer.empty()) filter += " AND FPreparer = " + FilterText(options.preparer);
  if (!options.group.empty()) filter += " AND FGroup = " + FilterText(options.group);
  if (!options.amount.empty()) filter += AmountFilter(options.amount);
  return filter;
}

Ref<Recordset> LinesFound(const FindOptions& options, const std::string& props) {
  std::string item_class, item;
  if (!options.item.empty()) {
    const std::vector<NamedItemClass> classes = ItemClassesOfBooks();
    const NamedItem named = ItemNamed(classes, options.item);
    item_class = named.item_class.number;
    item = named.number;
  }
  const Long state = options.posted     ? LineInfo::kPosted
                     : options.unposted ? LineInfo::kNotPosted
                                        : LineInfo::kAll;
  return CreateObject(LineInfo::kProgID)
      ->Call("Find", props, WordsText(options.words), FilterOf(options), options.account,
             DayFrom(props, "--from", options.from, DayEnd::kFirst),
             DayFrom(props, "--to", options.to, DayEnd::kLast), state, item_class, item,
             options.first, options.count)
      .As<Recordset>();
}

std::string Text(const Dictionary& row, std::string_view key) {
  return row.Value(key).As<String>();
}

// Amounts that a line doesn't have are left out.
Variant Figure(const Dictionary& row, std::string_view key) {
  const Variant value = row.Value(key);
  return value.As<Currency>() == 0 ? Variant("") : value;
}

void PrintPlain(Recordset& lines, const Console& console) {
  TableWriter table(console, Format::kPlain,
                    {"ID", "Date", "Voucher", "State", "Account", "Name", "Explanation",
                     "Reference", "Debit", "Credit"});
  table.LeaveOutEmpty();
  for (; !lines.Eof(); lines.MoveNext()) {
    const Ref<Dictionary> row = lines.Row();
    const String reference = Text(*row, "FTransNo");
    table.Row({row->Value("FVoucherID"), CellText(row->Value("FDate")),
               Text(*row, "FGroup") + " " + Text(*row, "FNumber"),
               row->Value("FPosted").As<Boolean>() ? "" : "not posted",
               row->Value("FAccountNumber"), row->Value("FAccountName"), row->Value("FExplanation"),
               reference.empty() ? Text(*row, "FReference") : reference, Figure(*row, "FDebit"),
               Figure(*row, "FCredit")});
  }
  table.Finish();
}

int FindLines(const FindOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const Ref<Recordset> lines = LinesFound(options, props);
  if (options.format != Format::kPlain) {
    WriteRecordset(console, options.format, lines, {});
    return kDone;
  }
  if (lines->RecordCount() == 0) {
    console.out << "No line has all that.\n";
    return kDone;
  }
  PrintPlain(*lines, console);
  if (lines->RecordCount() == options.count) {
    console.out << "There may be more lines; they go on with --first "
                << std::max<Long>(options.first, 1) + options.count << "\n";
  }
  return kDone;
}

// With books from the environment all words are looked for.
bool IsSearched(const std::string&, const std::vector<std::string>&) {
  return !BookFromEnvironment().empty();
}

}  // namespace

void AddFindCommand(Program& program) {
  const auto options = std::make_shared<FindOptions>();
  const Command command =
      program.AddForWords("find", "Finds lines of vouchers", options->login, options->words,
                          {"WORD",
                           "What each line has: a part of a text, an amount or a day; without BOOK "
                           "where QDCLGL_BOOK is "
                           "set",
                           IsSearched},
                          [options, &program] { return FindLines(*options, program.console()); });
  command.Text("--account", options->account, "NUMBER", "On this account and those below it");
  command.Text("--from", options->from, "DAY", "From this day, period or year on");
  command.Text("--to", options->to, "DAY", "Up to this day, period or year");
  command.Text("--preparer", options->preparer, "NAME", "Of vouchers that this user made");
  command.Text("--group", options->group, "NAME", "Of vouchers of this group");
  command.Text("--item", options->item, "CLASS=NUMBER", "That name this item");
  command.Text("--amount", options->amount, "FROM..TO",
               "With an amount between these, or just one");
  const Option posted = command.Flag("--posted", options->posted, "Posted ones alone");
  command.Flag("--unposted", options->unposted, "Those that are not posted").Excludes(posted);
  command.Whole("--first", options->first, "From this line on, counted from 1");
  command.Whole("--count", options->count, "At most so many lines");
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli

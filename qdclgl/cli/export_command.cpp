// The books as files: the journal and the chart as the import reads them, and as text for other
// programs.
#include <algorithm>
#include <functional>

#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/chart_writer.h"
#include "qdclgl/cli/company.h"
#include "qdclgl/cli/day_words.h"
#include "qdclgl/cli/journal_pages.h"
#include "qdclgl/cli/journal_writer.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/cli/output_file.h"
#include "qdclgl/cli/plain_text_journal.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

struct ExportOptions {
  Login login;
  std::string journal, accounts;
  std::vector<std::string> plain_text;  // the format's name and the file
  std::string from, to;
  bool posted = false;
  bool whole = false;
  bool force = false;

  std::string TextFile() const { return plain_text.empty() ? "" : plain_text.back(); }
  Overwriting overwriting() const { return force ? Overwriting::kAllowed : Overwriting::kRefused; }
};

constexpr std::pair<const char*, PlainText> kFormats[] = {
    {"hledger", PlainText::kHledger},
    {"ledger", PlainText::kLedger},
    {"beancount", PlainText::kBeancount},
};

PlainText FormatNamed(const std::string& name) {
  std::vector<std::string_view> names;
  for (const auto& [known, format] : kFormats) {
    if (name == known) return format;
    names.push_back(known);
  }
  throw UsageError(NoSuch("format", name, names));
}

struct Days {
  DateTime from, to;
};

// Hands on the vouchers of those days and says how many there were.
long ForEachVoucher(const ExportOptions& options, const std::string& props, Days days,
                    const Console& console, const std::function<void(const Dictionary&)>& take) {
  Progress progress(console);
  const DateTime end = days.to != DateTime() ? days.to : CurrentPlatform().Today();
  JournalPages pages(props, days.from, days.to);
  DateTime begin;
  long count = 0;
  while (const Ref<Dictionary> voucher = pages.Next()) {
    const auto date = voucher->Value("FDate").As<DateTime>();
    if (begin == DateTime()) begin = date;
    const double span = std::max(end.days - begin.days, 1.0);
    progress.Show("vouchers", count, std::clamp((date.days - begin.days) / span, 0.0, 1.0));
    if (options.posted && !voucher->Value("FPosted").As<Boolean>()) continue;
    take(*voucher);
    ++count;
  }
  return count;
}

std::set<Long> ClassesAskedFor(const std::vector<Ref<Dictionary>>& accounts) {
  std::set<Long> asked;
  for (const Ref<Dictionary>& account : accounts) {
    for (const Long id : AskedClasses(*account)) asked.insert(id);
  }
  return asked;
}

// What a run has written, told where no file is written to the output.
class Summary {
 public:
  Summary(const ExportOptions& options, const Console& console)
      : out_(options.journal == kOwnOutput || options.accounts == kOwnOutput ||
                     options.TextFile() == kOwnOutput
                 ? console.err
                 : console.out) {}

  void Tell(long count, const char* what) { out_ << what << ": " << count << " written\n"; }

 private:
  std::ostream& out_;
};

// Whether the file says all that the books do.
bool ExportJournal(const ExportOptions& options, const std::string& props, Days days,
                   const std::vector<Ref<Dictionary>>& accounts, const Console& console,
                   Summary& summary) {
  OutputFile file(options.journal, options.overwriting(), console);
  JournalWriter writer(file.out(), options.whole ? JournalWidth::kWhole : JournalWidth::kUsual,
                       ClassesAskedFor(accounts));
  const long count = ForEachVoucher(options, props, days, console,
                                    [&](const Dictionary& voucher) { writer.Write(voucher); });
  file.Finish();
  summary.Tell(count, "vouchers");
  for (const auto& [key, times] : writer.left_out()) {
    console.err << "left out: " << OneLine(key) << ", " << times
                << (times == 1 ? " time\n" : " times\n");
  }
  return writer.left_out().empty();
}

// The balances with which a period begins, Nothing when the day is not the first of one.
Ref<Recordset> OpeningOf(const std::string& props, DateTime day) {
  Long period = 0;
  const auto calendar = CreateObject("QDCPeriodDate.clsPeriodDate");
  Long year = calendar->Call("GetPeriod", props, day, ByRef(period)).As<Long>();
  DateTime start, end;
  calendar->Call("GetPeriodStartEnd", props, ByRef(period), ByRef(year), ByRef(start), ByRef(end));
  if (start != day) {
    throw UsageError("--from takes the first day of a period, as balances begin with periods");
  }
  return CreateObject("QDSVGLBalance.BalanceInfo")
      ->Call("GetList", props, year, period, period,
             "FCurrencyID > 0 AND FDetail = TRUE AND (FBeginBalance <> 0 OR FBeginBalanceFor <> 0"
             " OR FBeginQty <> 0)")
      .As<Recordset>();
}

void ExportPlainText(const ExportOptions& options, const std::string& props, Days days,
                     const std::vector<Ref<Dictionary>>& accounts, const Console& console,
                     Summary& summary) {
  const PlainText format = FormatNamed(options.plain_text.front());
  const Ref<Recordset> opening = days.from != DateTime() ? OpeningOf(props, days.from) : nullptr;
  OutputFile file(options.TextFile(), options.overwriting(), console);
  PlainTextJournal journal(file.out(), format,
                           Make<CurrencySet>()->Item(Names::kBaseCurrency)->Number(), accounts);
  journal.WriteCompany(CompanyOfBooks());
  if (opening) journal.WriteOpening(days.from, *opening);
  const long count = ForEachVoucher(options, props, days, console,
                                    [&](const Dictionary& voucher) { journal.Write(voucher); });
  file.Finish();
  summary.Tell(count, "vouchers");
}

void RequireSense(const ExportOptions& options) {
  if (options.journal.empty() && options.accounts.empty() && options.plain_text.empty()) {
    throw UsageError("export needs --journal, --accounts or --format");
  }
  if (std::ranges::count(std::vector{options.journal, options.accounts, options.TextFile()},
                         kOwnOutput) > 1) {
    throw UsageError("only one file can go to the output");
  }
}

int Export(const ExportOptions& options, const Console& console) {
  RequireSense(options);
  if (!options.plain_text.empty()) FormatNamed(options.plain_text.front());
  const std::string props = options.login.Open();
  const Days days = {DayFrom(props, "--from", options.from, DayEnd::kFirst),
                     DayFrom(props, "--to", options.to, DayEnd::kLast)};
  const std::vector<Ref<Dictionary>> accounts = AccountsOfBooks(props);
  Summary summary(options, console);
  bool is_whole = true;
  if (!options.accounts.empty()) {
    OutputFile file(options.accounts, options.overwriting(), console);
    const long count = WriteChart(accounts, file.out());
    file.Finish();
    summary.Tell(count, "accounts");
  }
  if (!options.journal.empty()) {
    is_whole = ExportJournal(options, props, days, accounts, console, summary);
  }
  if (!options.plain_text.empty())
    ExportPlainText(options, props, days, accounts, console, summary);
  return is_whole ? kDone : kLeftOut;
}

}  // namespace

void AddExportCommand(Program& program) {
  const auto options = std::make_shared<ExportOptions>();
  const Command command =
      program.AddForBooks("export", "Writes accounts and vouchers into files", options->login,
                          [options, &program] { return Export(*options, program.console()); });
  command.Text("--accounts", options->accounts, "FILE", "The chart of accounts; - is the output");
  command.Text("--journal", options->journal, "FILE", "The vouchers, as the import reads them");
  command
      .Texts("--format", options->plain_text, "NAME FILE",
             "The vouchers as text for another program: hledger, ledger or beancount")
      .Values(2);
  command.Text("--from", options->from, "DAY", "The first day, period or year [all]");
  command.Text("--to", options->to, "DAY", "The last day, period or year [all]");
  command.Flag("--posted", options->posted, "Only vouchers that are posted");
  command.Flag("--whole", options->whole,
               "The journal with all columns that vouchers and lines can have");
  command.Flag("--force", options->force, "Writes over files that are there");
}

}  // namespace qdclgl::cli

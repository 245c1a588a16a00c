// The statements of a year: income statement and balance sheet.
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/statement_spans.h"
#include "qdclgl/cli/statement_table.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

struct StatementOptions {
  Login login;
  Format format = Format::kPlain;
  SpanOptions spans;
  DateTime date;
  Long depth = 0;
  bool percent = false;
  bool budget = false;
};

// The first and the last day of a period.
std::pair<DateTime, DateTime> DaysOf(const std::string& props, Long year, Long period) {
  DateTime start, end;
  CreateObject("QDCPeriodDate.clsPeriodDate")
      ->Call("GetPeriodStartEnd", props, ByRef(period), ByRef(year), ByRef(start), ByRef(end));
  return {start, end};
}

// Balances are kept by periods, so a day has a balance sheet when a period ends with it.
SpanOptions SpanEndingAt(const std::string& props, DateTime day) {
  Long period = 0;
  const Long year = CreateObject("QDCPeriodDate.clsPeriodDate")
                        ->Call("GetPeriod", props, day, ByRef(period))
                        .As<Long>();
  const DateTime end = DaysOf(props, year, period).second;
  if (end != day) {
    throw UsageError("balances are kept by periods: " + day.ToText() + " lies within " +
                     std::to_string(year) + "/" + std::to_string(period) + ", which ends on " +
                     end.ToText());
  }
  return {.year = year, .from = period, .to = period};
}

StatementLayout LayoutOf(const StatementOptions& options) {
  return {.has_percent = options.percent, .depth = options.depth};
}

Ref<Recordset> Fetch(const char* method, const std::string& props,
                     const std::vector<StatementSpan>& spans) {
  return CreateObject("QDSVGLReport.ReportInfo")
      ->Call(method, props, SpansText(spans))
      .As<Recordset>();
}

// Of several columns the last one, or with those of the year before the last two, are all periods
// together.
std::vector<StatementSpan> WithTotal(std::vector<StatementSpan> spans, SpanOptions options) {
  if (spans.size() <= (options.compare ? 2u : 1u)) return spans;
  options.monthly = options.quarterly = false;
  for (const StatementSpan& span : SpansOf(options)) spans.push_back(span);
  return spans;
}

int PrintIncome(const StatementOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  std::vector<StatementSpan> spans = SpansOf(options.spans);
  if (options.format == Format::kPlain) spans = WithTotal(std::move(spans), options.spans);
  const Ref<Recordset> rows =
      Fetch(options.budget ? "GetIncomeWithBudget" : "GetIncome", props, spans);
  if (options.format != Format::kPlain) {
    WriteRecordset(console, options.format, rows, {});
    return kDone;
  }
  StatementLayout layout = LayoutOf(options);
  for (const StatementSpan& span : spans) layout.columns.push_back(span.Heading());
  layout.has_budget = options.budget;
  layout.nothing = "Nothing is posted on accounts of income or expense in these periods.";
  layout.has_change = options.spans.compare && spans.size() == 2;
  WriteStatement(console, *rows, layout);
  return kDone;
}

int PrintPosition(const StatementOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  SpanOptions wanted = options.spans;
  if (options.date != DateTime()) {
    wanted = SpanEndingAt(props, options.date);
    wanted.compare = options.spans.compare;
  }
  const std::vector<StatementSpan> spans = SpansOf(wanted);
  const Ref<Recordset> rows = Fetch("GetPosition", props, spans);
  if (options.format != Format::kPlain) {
    WriteRecordset(console, options.format, rows, {});
    return kDone;
  }
  StatementLayout layout = LayoutOf(options);
  for (const StatementSpan& span : spans) {
    layout.columns.push_back(DaysOf(props, span.year, span.last).second.ToText());
  }
  layout.nothing = "Nothing is posted yet in these periods or before them.";
  layout.has_change = wanted.compare && spans.size() == 2;
  WriteStatement(console, *rows, layout);
  return kDone;
}

void AddStatementOptions(const Command& command, StatementOptions& options, const char* whole) {
  AddSpanOptions(command, options.spans);
  command.Whole("--depth", options.depth, "How many levels of the chart are shown [all]");
  command.Flag("--percent", options.percent,
               std::string("Each amount in percent of the ") + whole + " too");
  AddFormat(command, options.format);
}

void AddIncome(Program& program) {
  const auto options = std::make_shared<StatementOptions>();
  const Command command =
      program.AddForBooks("income", "Prints the income statement of what is posted", options->login,
                          [options, &program] { return PrintIncome(*options, program.console()); });
  AddStatementOptions(command, *options, "income");
  command
      .Flag("--budget", options->budget,
            "What is budgeted beside what is posted, with difference and percent")
      .Excludes("--compare")
      .Excludes("--percent");
}

void AddPosition(Program& program) {
  const auto options = std::make_shared<StatementOptions>();
  const Command command = program.AddForBooks(
      "position", "Prints the balance sheet of what is posted", options->login,
      [options, &program] { return PrintPosition(*options, program.console()); });
  AddStatementOptions(command, *options, "assets");
  const Option date = command.Date("--date", options->date,
                                   "The last day of a period, in place of year and periods");
  for (const char* other : {"--year", "--from", "--to", "--monthly", "--quarterly"}) {
    date.Excludes(other);
  }
}

}  // namespace

void AddResultCommands(Program& program) {
  AddIncome(program);
  AddPosition(program);
}

}  // namespace qdclgl::cli

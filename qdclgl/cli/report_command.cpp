// The books as pages that need no server: overview, balances, statements, vouchers, the trail.
#include <algorithm>

#include "qdclgl/cli/bar_chart.h"
#include "qdclgl/cli/item_classes.h"
#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/cli/report_folder.h"
#include "qdclgl/cli/report_results.h"
#include "qdclgl/cli/report_statements.h"
#include "qdclgl/cli/report_vouchers.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/audit.h"

namespace qdclgl::cli {

namespace {

class Report {
 public:
  Report(const std::string& props, const std::string& folder, const Console& console)
      : folder_(folder),
        console_(console),
        books_(props, console.look),
        statements_(books_, folder_),
        vouchers_(books_, folder_) {}

  void Write() {
    WriteVouchers();
    WriteTrail();
    const ReportResults results = Results();
    results.WritePages();
    WriteOverview(results);
    // The last one, as it finds out whether anything was posted meanwhile.
    WriteBalance();
    folder_.Finish();
  }
  long vouchers() const { return vouchers_.count(); }

 private:
  // A page of that name, with what `write` puts into it.
  template <class Content>
  void WritePage(const std::string& file, const std::string& title, Content write) {
    std::ofstream out = folder_.Begin(file);
    BeginPage(out, books_.Head(title, file));
    write(out);
    EndPage(out);
    folder_.End(out, file);
  }

  void WriteVouchers();
  void WriteBalance();
  void WriteTrail();
  void WriteTrailPage(Recordset& deeds, Long number);
  ReportResults Results() const;
  void WriteOverview(const ReportResults& results);
  void WriteMonths(std::ostream& out) const;
  void WriteCash(std::ostream& out) const;
  void WriteCustomers(std::ostream& out) const;
  ChartBar BarOf(YearAndPeriod period, Currency amount) const {
    return {PeriodText(period), amount, books_.Money(amount)};
  }

  ReportFolder folder_;
  const Console& console_;
  ReportBooks books_;
  ReportStatements statements_;
  ReportVouchers vouchers_;
};

void Report::WriteVouchers() {
  Progress progress(console_);
  EachPostedVoucher(books_, [&](const Dictionary& voucher, double share) {
    vouchers_.Add(voucher);
    statements_.Add(voucher);
    progress.Show("vouchers of " + CellText(voucher.Value("FYear")), vouchers_.count(), share);
  });
  vouchers_.Finish();
  statements_.Finish();
}

// What the lines add up to is what the books say, or somebody has posted meanwhile.
void Report::WriteBalance() {
  WritePage("balance.html", "Trial balance", [&](std::ostream& out) {
    HtmlTable table(out, "What is posted",
                    {{"Account"}, {"Name"}, {"Debit", true}, {"Credit", true}, {"Balance", true}});
    Currency debit, credit, balance;
    const Ref<Recordset> rows = books_.TrialBalance();
    for (; !rows->Eof(); rows->MoveNext()) {
      const Ref<Dictionary> row = rows->Row();
      const auto id = row->Value("FAccountID").As<Long>();
      const auto amount = [&](const char* key) { return row->Value(key).As<Currency>(); };
      const bool is_detail = row->Value("FDetail").As<Boolean>();
      if (is_detail) {
        if (amount("FEndBalance") != statements_.BalanceOf(id)) RefuseChangedBooks();
        debit += amount("FDebit");
        credit += amount("FCredit");
        balance += amount("FEndBalance");
      }
      table.Row(
          {{CellText(row->Value("FAccountNumber")), statements_.Has(id) ? AccountFile(id) : ""},
           {CellText(row->Value("FAccountName"))},
           {books_.SideText(amount("FDebit"))},
           {books_.SideText(amount("FCredit"))},
           {books_.Money(amount("FEndBalance"))}},
          is_detail ? HtmlRow::kPlain : HtmlRow::kSum);
    }
    table.Row({{""},
               {"Total"},
               {books_.SideText(debit)},
               {books_.SideText(credit)},
               {books_.Money(balance)}},
              HtmlRow::kSum);
    table.End();
  });
}

// ---- The audit trail ----

constexpr Long kDeedsOnAPage = 1000;

std::string TrailFile(Long number) { return "trail-" + std::to_string(number) + ".html"; }

void Report::WriteTrailPage(Recordset& deeds, Long number) {
  WritePage(
      TrailFile(number), "Audit trail, page " + std::to_string(number), [&](std::ostream& out) {
        HtmlTable table(out, "Who did what, and when (UTC)",
                        {{"Time"}, {"User"}, {"Subject"}, {"Record"}, {"Action"}, {"Changes"}});
        for (; !deeds.Eof(); deeds.MoveNext()) {
          const Ref<Dictionary> row = deeds.Row();
          const auto text = [&](const char* key) { return CellText(row->Value(key)); };
          const bool is_voucher = text("FSubject") == "Voucher";
          const auto id = row->Value("FRecordID").As<Long>();
          table.Row({{text("FTime")},
                     {text("FUserName")},
                     {text("FSubject")},
                     {text("FRecord"), is_voucher ? vouchers_.LinkTo(id) : ""},
                     {text("FAction")},
                     {server::ShortChanges(text("FChanges"))}});
        }
        table.End();
      });
}

void Report::WriteTrail() {
  const server::ServerComponent& trail = *FindList("audit");
  const auto after = [](Long id) { return "FAuditID > " + std::to_string(id); };
  std::vector<std::vector<HtmlCell>> pages;
  for (Long id = 0;; id += kDeedsOnAPage) {
    const std::string window = after(id) + " AND FAuditID <= " + std::to_string(id + kDeedsOnAPage);
    const Ref<Recordset> deeds = FetchList(trail, books_.props, {.filter = window});
    const Long count = deeds->RecordCount();
    if (count == 0) {
      // Ids may have gaps.
      if (FetchList(trail, books_.props, {.filter = after(id)})->RecordCount() == 0) break;
      continue;
    }
    const auto number = static_cast<Long>(pages.size()) + 1;
    const std::string from = CellText(deeds->FieldValue(deeds->FieldPosition("FTime")));
    WriteTrailPage(*deeds, number);
    pages.push_back({{std::to_string(number), TrailFile(number)}, {from}, {std::to_string(count)}});
  }
  WritePage("trail.html", "Audit trail", [&](std::ostream& out) {
    HtmlTable table(out, "Pages of the trail", {{"Page"}, {"From (UTC)"}, {"Deeds", true}});
    for (const auto& cells : pages) table.Row(cells);
    table.End();
  });
}

// ---- The overview ----

void Report::WriteMonths(std::ostream& out) const {
  std::vector<ChartBar> bars;
  for (const auto& [period, sums] : vouchers_.periods()) bars.push_back(BarOf(period, sums.debit));
  WriteBarChart(out, "Posted by period", "Period", bars);
}

void Report::WriteCash(std::ostream& out) const {
  out << "<h2>Cash</h2>\n";
  if (!statements_.HasCash()) {
    out << "<p>No account with movement is marked as cash or bank "
           "(<code>qdclgl set accounts NUMBER FIsCash=yes</code>).</p>\n";
    return;
  }
  std::vector<ChartBar> bars;
  for (const auto& [period, amount] : statements_.cash()) bars.push_back(BarOf(period, amount));
  WriteBarChart(out, "Cash and banks at the end of each period", "Period", bars);
}

// What the largest customers were debited, over all accounts that ask for customers.
void Report::WriteCustomers(std::ostream& out) const {
  constexpr std::size_t kMost = 10;
  const std::vector<NamedItemClass> classes = ItemClassesOfBooks();
  const auto customers = std::ranges::find(classes, "CUSTOMER", &NamedItemClass::number);
  if (customers == classes.end()) return;
  const auto rows = CreateObject("QDSVGLBalance.BalanceInfo")
                        ->Call("GetItemList", books_.props, customers->number, Long{0}, Long{0},
                               Long{0}, "FCurrencyID = 0 AND FDetail = TRUE")
                        .As<Recordset>();
  std::map<std::pair<std::string, std::string>, Currency> debits;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    debits[{CellText(row->Value("FItemNumber1")), CellText(row->Value("FItemName1"))}] +=
        row->Value("FDebit").As<Currency>();
  }
  std::vector<ChartBar> bars;
  for (const auto& [item, amount] : debits) {
    bars.push_back({item.first + " " + item.second, amount, books_.Money(amount), item.first});
  }
  std::ranges::stable_sort(bars, std::greater(), &ChartBar::amount);
  if (bars.empty()) return;
  out << "<h2>Largest customers</h2>\n";
  bars.resize(std::min(kMost, bars.size()));
  WriteBarChart(out, "What they were debited", "Customer", bars);
}

ReportResults Report::Results() const {
  std::vector<YearAndPeriod> periods;
  for (const auto& [period, sums] : vouchers_.periods()) periods.push_back(period);
  return {books_, folder_, std::move(periods)};
}

void Report::WriteOverview(const ReportResults& results) {
  WritePage("index.html", "The books", [&](std::ostream& out) {
    out << "<p>Written on " << CurrentPlatform().Today().ToText() << ". " << vouchers_.count()
        << " vouchers are posted";
    if (!vouchers_.periods().empty()) {
      out << ", from " << PeriodText(vouchers_.periods().begin()->first) << " to "
          << PeriodText(vouchers_.periods().rbegin()->first);
    }
    out << ". Amounts are in the books' own currency.</p>\n<h2>Movement</h2>\n";
    WriteMonths(out);
    results.WriteCharts(out);
    WriteCash(out);
    WriteCustomers(out);
  });
}

struct ReportOptions {
  Login login;
  std::vector<std::string> words;
};

int RunReport(const ReportOptions& options, const Console& console) {
  if (options.words.size() != 1) throw UsageError("DIR is required");
  const std::string props = options.login.Open();
  Report report(props, options.words.front(), console);
  report.Write();
  console.out << "The report of " << report.vouchers() << " posted vouchers begins at "
              << OneLine(options.words.front()) << "/index.html.\n";
  return kDone;
}

// With books from the environment the only word is DIR.
bool IsFolder(const std::string&, const std::vector<std::string>& rest) {
  return !BookFromEnvironment().empty() && rest.empty();
}

}  // namespace

void AddReportCommand(Program& program) {
  const auto options = std::make_shared<ReportOptions>();
  program.AddForWords(
      "report", "Writes the books as pages for a browser", options->login, options->words,
      {"DIR", "The folder of the pages; a report that is there is replaced", IsFolder},
      [options, &program] { return RunReport(*options, program.console()); });
}

}  // namespace qdclgl::cli

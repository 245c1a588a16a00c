#include "qdclgl/cli/report_statements.h"

#include "qdclgl/cli/table.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::cli {

namespace {

std::string TitleOf(const ReportAccount& account) { return account.number + " " + account.name; }

}  // namespace

std::string LineAnchor(Long voucher, std::size_t line) {
  return VoucherAnchor(voucher) + "-" + std::to_string(line);
}

Currency ReportStatements::BalanceOf(Long account) const {
  const auto years = years_.find(account);
  return years == years_.end() ? Currency() : years->second.rbegin()->second.end;
}

void ReportStatements::Add(const Dictionary& voucher) {
  const YearAndPeriod period = {voucher.Value("FYear").As<Long>(),
                                voucher.Value("FPeriod").As<Long>()};
  if (period.first != year_) WriteYear();
  year_ = period.first;
  const auto id = voucher.Value("FVoucherID").As<Long>();
  const std::string link = VouchersFile(period) + "#" + VoucherAnchor(id);
  const auto entries = voucher.Value("_Entries").As<Vector>();
  for (std::size_t i = 0; i < entries->size(); ++i) {
    const auto entry = entries->at(i).As<Dictionary>();
    const auto account = entry->Value("FAccountID").As<Long>();
    const auto amount = entry->Value("FAmount").As<Currency>();
    const bool is_debit = entry->Value("FDC").As<Long>() == 1;
    lines_[account].push_back({CellText(voucher.Value("FDate")), VoucherText(voucher), link,
                               LineAnchor(id, i + 1), CellText(entry->Value("FExplanation")),
                               is_debit ? amount : Currency(), is_debit ? Currency() : amount});
    const auto known = books_.accounts.find(account);
    if (known == books_.accounts.end() || !known->second.is_cash) continue;
    has_cash_ = true;
    all_cash_ += is_debit ? amount : -amount;
  }
  cash_[period] = all_cash_;
}

void ReportStatements::Finish() {
  WriteYear();
  for (const auto& [account, years] : years_) WriteAccount(account, years);
}

void ReportStatements::WriteYear() {
  for (const auto& [account, lines] : lines_) {
    if (!books_.accounts.contains(account)) RefuseChangedBooks();
    WriteYearOf(account, lines);
  }
  lines_.clear();
}

void ReportStatements::WriteYearOf(Long account, const std::vector<Line>& lines) {
  Year sums;
  sums.begin = sums.end = BalanceOf(account);
  const std::string file = AccountFile(account, year_);
  std::ofstream out = folder_.Begin(file);
  const ReportAccount& known = books_.accounts.at(account);
  BeginPage(out, books_.Head(TitleOf(known) + ", " + std::to_string(year_), file));
  out << "<p><a href=\"" << AccountFile(account) << "\">All years of this account</a></p>\n";
  HtmlTable table(out, "Statement of " + std::to_string(year_),
                  {{"Date"},
                   {"Voucher"},
                   {"Explanation"},
                   {"Debit", true},
                   {"Credit", true},
                   {"Balance", true}});
  table.Row({{""}, {""}, {"Brought forward"}, {""}, {""}, {books_.Money(sums.begin)}},
            HtmlRow::kSum);
  for (const Line& line : lines) {
    sums.debit += line.debit;
    sums.credit += line.credit;
    sums.end += line.debit - line.credit;
    table.Row({{line.date},
               {line.voucher, line.link},
               {line.explanation},
               {books_.SideText(line.debit)},
               {books_.SideText(line.credit)},
               {books_.Money(sums.end)}},
              HtmlRow::kPlain, line.id);
  }
  table.Row({{""},
             {""},
             {"Carried forward"},
             {books_.SideText(sums.debit)},
             {books_.SideText(sums.credit)},
             {books_.Money(sums.end)}},
            HtmlRow::kSum);
  table.End();
  EndPage(out);
  folder_.End(out, file);
  years_[account][year_] = sums;
}

void ReportStatements::WriteAccount(Long account, const std::map<Long, Year>& years) {
  const std::string file = AccountFile(account);
  std::ofstream out = folder_.Begin(file);
  BeginPage(out, books_.Head(TitleOf(books_.accounts.at(account)), file));
  HtmlTable table(out, "Years with movement",
                  {{"Year"}, {"Begin", true}, {"Debit", true}, {"Credit", true}, {"End", true}});
  for (const auto& [year, sums] : years) {
    table.Row({{std::to_string(year), AccountFile(account, year)},
               {books_.Money(sums.begin)},
               {books_.SideText(sums.debit)},
               {books_.SideText(sums.credit)},
               {books_.Money(sums.end)}});
  }
  table.End();
  EndPage(out);
  folder_.End(out, file);
}

}  // namespace qdclgl::cli

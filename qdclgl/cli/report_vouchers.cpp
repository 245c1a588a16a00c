#include "qdclgl/cli/report_vouchers.h"

#include "qdclgl/cli/report_statements.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::cli {

namespace {

std::string Text(const Dictionary& row, std::string_view key) { return CellText(row.Value(key)); }

// "100.00 USD", where a line is in another currency than the books are.
std::string ForeignText(const Dictionary& entry, const Look& look) {
  const auto currency = entry.Value("FCurrencyID").As<Long>();
  if (currency <= kBaseCurrencyID) return "";
  return MoneyText(entry.Value("FAmountFor").As<Currency>(), look.DecimalsOf(currency)) + " " +
         Text(entry, "FCurrencyNumber");
}

// "CUSTOMER C001 Anna, ..."
std::string ItemsText(const Dictionary& entry) {
  std::string text;
  const Variant details = entry.Value("_Details");
  if (!details.IsObject()) return text;
  const auto rows = details.As<Vector>();
  for (std::size_t i = 0; i < rows->size(); ++i) {
    const auto row = rows->at(i).As<Dictionary>();
    text += (text.empty() ? "" : ", ") + Text(*row, "FItemClassNumber") + " " +
            Text(*row, "FItemNumber") + " " + Text(*row, "FItemName");
  }
  return text;
}

}  // namespace

std::string ReportVouchers::LinkTo(Long voucher) const {
  const auto place = places_.find(voucher);
  return place == places_.end() ? "" : VouchersFile(place->second) + "#" + VoucherAnchor(voucher);
}

void ReportVouchers::Add(const Dictionary& voucher) {
  const YearAndPeriod period = {voucher.Value("FYear").As<Long>(),
                                voucher.Value("FPeriod").As<Long>()};
  if (period != period_) {
    EndPeriod();
    period_ = period;
    out_ = folder_.Begin(VouchersFile(period));
    BeginPage(out_, books_.Head("Vouchers of " + PeriodText(period), VouchersFile(period)));
  }
  const auto id = voucher.Value("FVoucherID").As<Long>();
  places_[id] = period;
  Period& sums = periods_[period];
  ++sums.vouchers;
  sums.debit += voucher.Value("FDebitTotal").As<Currency>();
  WriteVoucher(voucher, id);
}

void ReportVouchers::WriteVoucher(const Dictionary& voucher, Long id) {
  const std::string anchor = VoucherAnchor(id);
  out_ << "<article id=\"" << anchor << "\" aria-labelledby=\"" << anchor << "-title\"><h2 id=\""
       << anchor << "-title\">" << Escaped(VoucherText(voucher)) << "</h2>\n<p>"
       << Escaped(Text(voucher, "FDate"));
  for (const auto& [before, key] : {std::pair{", reference ", "FReference"},
                                    {", prepared by ", "FPreparer"},
                                    {", posted by ", "FPoster"}}) {
    if (const std::string text = Text(voucher, key); !text.empty()) out_ << before << Escaped(text);
  }
  out_ << "</p>\n";
  const std::string explanation = Text(voucher, "FExplanation");
  HtmlTable table(out_, explanation.empty() ? "Lines" : explanation,
                  {{"Account"},
                   {"Name"},
                   {"Explanation"},
                   {"Debit", true},
                   {"Credit", true},
                   {"Amount", true},
                   {"Reference"},
                   {"Items"}});
  const auto entries = voucher.Value("_Entries").As<Vector>();
  for (std::size_t i = 0; i < entries->size(); ++i) {
    const auto entry = entries->at(i).As<Dictionary>();
    const auto amount = entry->Value("FAmount").As<Currency>();
    const bool is_debit = entry->Value("FDC").As<Long>() == 1;
    table.Row({{Text(*entry, "FAccountNumber"),
                AccountFile(entry->Value("FAccountID").As<Long>(), period_.first) + "#" +
                    LineAnchor(id, i + 1)},
               {Text(*entry, "FAccountName")},
               {Text(*entry, "FExplanation")},
               {is_debit ? books_.Money(amount) : ""},
               {is_debit ? "" : books_.Money(amount)},
               {ForeignText(*entry, books_.look)},
               {Text(*entry, "FTransNo")},
               {ItemsText(*entry)}});
  }
  table.End();
  out_ << "</article>\n";
}

void ReportVouchers::EndPeriod() {
  if (!out_.is_open()) return;
  EndPage(out_);
  folder_.End(out_, VouchersFile(period_));
}

void ReportVouchers::Finish() {
  EndPeriod();
  WriteIndex();
}

void ReportVouchers::WriteIndex() {
  const std::string file = "vouchers.html";
  std::ofstream out = folder_.Begin(file);
  BeginPage(out, books_.Head("Vouchers", file));
  HtmlTable table(out, "Posted vouchers by period",
                  {{"Period"}, {"Vouchers", true}, {"Debit", true}});
  for (const auto& [period, sums] : periods_) {
    table.Row({{PeriodText(period), VouchersFile(period)},
               {std::to_string(sums.vouchers)},
               {books_.Money(sums.debit)}});
  }
  table.End();
  EndPage(out);
  folder_.End(out, file);
}

}  // namespace qdclgl::cli

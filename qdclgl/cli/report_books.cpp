#include "qdclgl/cli/report_books.h"

#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/errors.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

std::string Text(const Dictionary& row, std::string_view key) { return CellText(row.Value(key)); }

Ref<Recordset> PostedVouchers(const ReportBooks& books, const std::string& years) {
  return FetchList(
      *FindList("vouchers"), books.props,
      {.filter = "FPosted = TRUE AND FYear " + years, .sort = "FYear, FPeriod, FDate, FVoucherID"});
}

Long FirstYear() {
  return CLng(Variant(Make<SystemProfile>()->GetSystemProfile("GL", "StartYear", "0")));
}

}  // namespace

ReportBooks::ReportBooks(std::string session, const Look& console_look)
    : props(std::move(session)), look(console_look), company(CompanyOfBooks()) {
  const Ref<Recordset> rows = FetchList(*FindList("accounts"), props, {.with_deleted = true});
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    const auto is = [&](const char* key) { return row->Value(key).As<Boolean>(); };
    accounts[row->Value("FAccountID").As<Long>()] = {Text(*row, "FNumber"), Text(*row, "FName"),
                                                     row->Value("FLevel").As<Long>(), is("FDetail"),
                                                     is("FIsCash") || is("FIsBank")};
  }
}

PageHead ReportBooks::Head(std::string title, std::string file) const {
  return {std::move(title),
          company,
          {{"Overview", "index.html"},
           {"Income statement", "income.html"},
           {"Balance sheet", "position.html"},
           {"Trial balance", "balance.html"},
           {"Vouchers", "vouchers.html"},
           {"Audit trail", "trail.html"}},
          std::move(file)};
}

std::string ReportBooks::Money(Currency amount) const {
  return MoneyText(amount, look.DecimalsOf(kBaseCurrencyID));
}

std::string ReportBooks::SideText(Currency amount) const {
  return amount == Currency() ? "" : Money(amount);
}

Ref<Recordset> ReportBooks::TrialBalance() const {
  return CreateObject("QDSVGLBalance.BalanceInfo")
      ->Call("GetList", props, Long{0}, Long{0}, Long{0}, "FCurrencyID = 0")
      .As<Recordset>();
}

void EachPostedVoucher(const ReportBooks& books,
                       const std::function<void(const Dictionary& voucher, double share)>& take) {
  const Ref<Object> vouchers = CreateObject("QDSVGLVoucher.VoucherInfo");
  const auto later = [&](Long year) {
    return PostedVouchers(books, "> " + std::to_string(year))->RecordCount() > 0;
  };
  for (Long year = FirstYear();; ++year) {
    const Ref<Recordset> headers = PostedVouchers(books, "= " + std::to_string(year));
    const Long count = headers->RecordCount();
    if (count == 0 && !later(year)) return;
    const Long id_at = count == 0 ? 0 : headers->FieldPosition("FVoucherID");
    for (Long done = 1; !headers->Eof(); headers->MoveNext(), ++done) {
      const auto voucher =
          vouchers->Call("GetDetail", books.props, headers->FieldValue(id_at)).As<Dictionary>();
      if (!voucher) RefuseChangedBooks();
      take(*voucher, static_cast<double>(done) / count);
    }
  }
}

std::string VouchersFile(YearAndPeriod period) {
  return "vouchers-" + std::to_string(period.first) + "-" + std::to_string(period.second) + ".html";
}

std::string VoucherAnchor(Long voucher) { return "v" + std::to_string(voucher); }

std::string AccountFile(Long account) { return "account-" + std::to_string(account) + ".html"; }

std::string AccountFile(Long account, Long year) {
  return "account-" + std::to_string(account) + "-" + std::to_string(year) + ".html";
}

std::string PeriodText(YearAndPeriod period) {
  return std::to_string(period.first) + "/" + std::to_string(period.second);
}

std::string VoucherText(const Dictionary& voucher) {
  return Text(voucher, "FYear") + "/" + Text(voucher, "FPeriod") + " " + Text(voucher, "FGroup") +
         " " + Text(voucher, "FNumber");
}

void RefuseChangedBooks() {
  throw Error(server::refusal::kChanged, "qdclgl",
              "The books were changed while the report was written; please write it again.");
}

}  // namespace qdclgl::cli

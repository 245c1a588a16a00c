#include "tests/server/ledger_fixture.h"

#include <cstdio>

#include "qdclgl/server/db/connection_text.h"

namespace qdclgl::server::testing {

LedgerTest::LedgerTest(DatabaseKind kind) : RecordsTest(kind) {
  const auto create = [&](std::string_view component, Cells cells) {
    auto row = Make<Dictionary>();
    for (const auto& [key, value] : cells) row->Put(RowKey(key), value);
    Call(component, "Create", props, row);
  };
  for (const char* name : {"Receipts", "Payments"}) {
    create("QDSVGLVoucherGroup.VoucherGroupUpdate", {{"FName", name}});
  }
  create("QDSVGLCurrency.CurrencyUpdate",
         {{"FNumber", "USD"}, {"FName", "Dollar"}, {"FExchangeRate", 1.1}, {"FOperator", "*"}});
  for (const auto& [number, name] :
       std::initializer_list<std::pair<const char*, const char*>>{{"1000", "Cash"},
                                                                  {"2000", "Bank"},
                                                                  {"3000", "Sales"},
                                                                  {"4000", "Costs"},
                                                                  {"4000.01", "Rent"},
                                                                  {"4000.02", "Wages"}}) {
    create("QDSVGLAccount.AccountUpdate", {{"FNumber", number}, {"FName", name}});
  }
}

void LedgerTest::LoginWith(std::string_view key, std::string_view value) {
  props = Call("QDSVGLSession.SessionUpdate", "Login",
               ConnectionText::Parse(connection).With(key, value).ToText(), "administrator", "")
              .As<String>();
}

Ref<Dictionary> LedgerTest::Line(std::string_view account, Currency debit, Currency credit,
                                 Cells more) {
  auto line = Make<Dictionary>();
  line->Value("FAccountNumber", account);
  line->Value("FDC", Long{debit != 0 ? 1 : 0});
  line->Value("FAmount", debit != 0 ? debit : credit);
  for (const auto& [key, value] : more) line->Put(RowKey(key), value);
  return line;
}

Ref<Dictionary> LedgerTest::Voucher(std::string_view date, std::vector<Ref<Dictionary>> lines,
                                    Cells more) {
  auto voucher = Make<Dictionary>();
  voucher->Value("FDate", CDate(Variant(date)));
  voucher->Value("FGroupID", Long{1});
  auto entries = Make<Vector>();
  for (const Ref<Dictionary>& line : lines) entries->Append(Variant(line));
  voucher->Value("_Entries", Variant(entries));
  for (const auto& [key, value] : more) voucher->Put(RowKey(key), value);
  return voucher;
}

Ref<Dictionary> LedgerTest::Sale(Currency amount, std::string_view date, Cells more) {
  return Voucher(date, {Line("1000", amount, 0), Line("3000", 0, amount)}, more);
}

Long LedgerTest::Save(const Ref<Dictionary>& voucher) {
  return Call("QDSVGLVoucher.VoucherUpdate", "Create", props, voucher).As<Long>();
}

void LedgerTest::Update(Long id, const Ref<Dictionary>& voucher) {
  Call("QDSVGLVoucher.VoucherUpdate", "Update", props, ByRef(id), voucher);
}

Ref<Dictionary> LedgerTest::Read(Long id, bool show_deleted) {
  return Call("QDSVGLVoucher.VoucherInfo", "GetDetail", props, ByRef(id), ByRef(show_deleted))
      .As<Dictionary>();
}

void LedgerTest::Step(std::string_view step, Long id, bool way) {
  if (step == "Post" || step == "UnPost") {
    Call("QDSVGLVoucher.VoucherUpdate", step, props, ByRef(id));
  } else {
    Call("QDSVGLVoucher.VoucherUpdate", step, props, ByRef(id), way);
  }
}

std::string LedgerTest::Describe(const Error& error) {
  char number[16];
  std::snprintf(number, sizeof number, "%08X", static_cast<unsigned>(error.number()));
  return std::string(number) + ": " + error.description();
}

namespace {

std::string Balances(const Ref<Recordset>& list) {
  return TextOf(
      list, {"FAccountNumber", "FCurrencyID", "FBeginBalance", "FDebit", "FCredit", "FEndBalance"});
}

}  // namespace

std::string LedgerTest::BalanceText(Long year, Long from, Long to) {
  return Balances(
      Call("QDSVGLBalance.BalanceInfo", "GetList", props, year, from, to).As<Recordset>());
}

std::string LedgerTest::RecomputedText(Long year, Long from, Long to) {
  return Balances(
      Call("QDSVGLBalance.BalanceInfo", "GetListFromLines", props, year, from, to).As<Recordset>());
}

}  // namespace qdclgl::server::testing

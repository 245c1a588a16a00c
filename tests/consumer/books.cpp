// Keeps books with the server components: makes them in a file, logs in, saves a voucher, checks
// it, posts it, and reads the balances: books FILE
#include <cstdio>

#include "qdclgl/qdclgl.h"
#include "qdclgl/server/server.h"

namespace {

using namespace qdclgl;

Long MakeAccount(const char* number, const char* name) {
  auto account = Make<AccountSet>()->CreateNew(number, name);
  account->SaveChanges();
  return account->AccountID();
}

Long SaveSale(Long cash, Long sales, Long group) {
  auto voucher = Make<VoucherSet>()->CreateNew();
  voucher->VoucherDate(DateTime::FromYmd(2024, 1, 15));
  voucher->GroupID(group);
  voucher->Entries()->Count(2);
  voucher->Entries()->Item(1)->AccountID(cash);
  voucher->Entries()->Item(1)->Debit(Currency(100));
  voucher->Entries()->Item(2)->AccountID(sales);
  voucher->Entries()->Item(2)->Credit(Currency(100));
  voucher->SaveChanges1();
  return voucher->VoucherID();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return std::fputs("usage: books FILE\n", stderr), 2;
  try {
    server::RegisterServerComponents();
    CreateObject("QDSVGLBooks.BooksUpdate")
        ->Call("Create", arguments[1], "EUR", 2024, Named("NoPassword", true));
    const String session = CreateObject("QDSVGLSession.SessionUpdate")
                               ->Call("Login", arguments[1], "administrator", "")
                               .As<String>();
    auto group = Make<VoucherGroupSet>()->CreateNew("Receipts");
    group->SaveChanges();
    const Long cash = MakeAccount("1000", "Cash");
    const Long id = SaveSale(cash, MakeAccount("3000", "Sales"), group->VoucherGroupID());

    auto vouchers = Make<VoucherSet>();
    vouchers->Check(id, true);
    vouchers->Post(id);
    auto voucher = vouchers->Item(id);
    auto rows = CreateObject("QDSVGLBalance.BalanceInfo")
                    ->Call("GetList", session, 2024, 1, 1, "FCurrencyID = 0")
                    .As<Recordset>();
    std::printf("voucher %d: checked %s, posted %s\n", static_cast<int>(id),
                voucher->Checked() ? "yes" : "no", voucher->Posted() ? "yes" : "no");
    for (; !rows->Eof(); rows->MoveNext()) {
      std::printf("%s %s\n", rows->Row()->Value("FAccountNumber").As<String>().c_str(),
                  rows->Row()->Value("FEndBalance").As<Currency>().ToText().c_str());
    }
  } catch (const Error& error) {
    return std::fprintf(stderr, "%s\n", error.what()), 1;
  }
}

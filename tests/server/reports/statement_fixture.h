// Books whose accounts have kinds, for what is made of them.
#pragma once

#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {

class StatementTest : public LedgerTest {
 protected:
  // 1000 Cash and 2000 Bank are assets, 3000 Sales income, 4000 Costs expense with what is below.
  void TellKinds() {
    SetKind("1000", "asset");
    SetKind("2000", "asset");
    SetKind("3000", "income");
    SetKind("4000", "expense");
  }
  Ref<Dictionary> AccountRow(std::string_view number) {
    return Call("QDSVGLAccount.AccountInfo", "GetDetailByNumber", props, number).As<Dictionary>();
  }
  void SetKind(std::string_view number, std::string_view kind) {
    const Ref<Dictionary> row = AccountRow(number);
    row->Put("FKind", kind);
    Call("QDSVGLAccount.AccountUpdate", "Update", props, row->Value("FAccountID"), row);
  }
  void AddAccount(std::string_view number, std::string_view name, std::string_view kind) {
    Call("QDSVGLAccount.AccountUpdate", "Create", props,
         Row({{"FNumber", number}, {"FName", name}, {"FKind", kind}}));
  }
  Long Post(std::string_view date, std::string_view debit, std::string_view credit, Currency amount,
            Cells more = {}) {
    const Long id = Save(Voucher(date, {Line(debit, amount, 0), Line(credit, 0, amount)}, more));
    Step("Post", id);
    return id;
  }
};

}  // namespace qdclgl::server::testing

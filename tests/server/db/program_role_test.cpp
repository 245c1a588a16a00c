// The PostgreSQL role that programs log in with: it works on the books, and can't get past the
// trail or change a table.
#include "qdclgl/server/db/program_role.h"

#include <unistd.h>

#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/schema.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kBooks = "QDSVGLBooks.BooksUpdate";
constexpr const char* kUpdate = "QDSVGLVoucher.VoucherUpdate";

class ProgramRoleTest : public LedgerTest {
 protected:
  ProgramRoleTest() : role("qdclgl_program_" + std::to_string(getpid())) {
    Books().Execute("CREATE ROLE " + role + " LOGIN");
    fresh = NewConnectionText(GetParam());
    as_program = ConnectionText::Parse(fresh).With(connection_key::kUser, role).ToText();
  }
  ~ProgramRoleTest() override {
    RemoveBooks(fresh);
    Database db(ConnectionText::Parse(connection));
    db.Execute("DROP OWNED BY " + role);
    db.Execute("DROP ROLE " + role);
  }

  void MakeBooks() {
    Call(kBooks, "Create", fresh, "EUR", Long{2024}, Named("NoPassword", true),
         Named("ProgramRole", role));
  }
  void LogInAsProgram() {
    props =
        Call("QDSVGLSession.SessionUpdate", "Login", as_program, "administrator", "").As<String>();
  }
  // Each statement as that role, by what it is answered.
  std::string AnswerTo(const std::string& statement) {
    return RefusalOf([&] {
      Database db(ConnectionText::Parse(as_program));
      Transaction transaction(db, Transaction::Kind::kSave);
      db.Execute(statement);
      transaction.Commit();
    });
  }

  std::string role, fresh, as_program;
};
QDCLGL_BOOKS_TEST_OF(ProgramRoleTest, kPostgreSQL);

TEST_P(ProgramRoleTest, ItDoesAllWorkOnTheBooks) {
  MakeBooks();
  LogInAsProgram();
  const Long group = AddGroup("Receipts"), cash = AddAccount("1000"), sales = AddAccount("3000");
  Long id = AddVoucher(group, cash, sales, Currency(5));
  Update(id, Read(id));
  for (const char* step : {"Check", "Approve", "Cash", "Post", "UnPost"}) Step(step, id);
  Step("Approve", id, false);
  for (const char* step : {"Cash", "Check"}) Step(step, id, false);
  Call(kUpdate, "ClearCashFlow", props, ByRef(id));
  Call(kUpdate, "Delete", props, ByRef(id), true, "", "");
  Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props);
  AddUser("anna", "reader");
  Long user = 2, account = cash;
  Call("QDSVGLUser.UserUpdate", "SetPassword", props, ByRef(user), "x");
  EXPECT_EQ(
      RefusalOf([&] { Call("QDSVGLSession.SessionUpdate", "Login", as_program, "anna", "wrong"); }),
      "LoginRefused");
  Call("QDSVGLUser.UserUpdate", "Delete", props, ByRef(user), "", "");
  Call("QDSVGLAccount.AccountUpdate", "Delete", props, ByRef(account), "", "");
  Long group_id = group;
  Call("QDSVGLVoucherGroup.VoucherGroupUpdate", "Delete", props, ByRef(group_id), "", "", Long{0});
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ProgramRoleTest, ItChangesNoTableAndNothingOnTheTrail) {
  MakeBooks();
  LogInAsProgram();
  AddGroup("Receipts");
  const std::string before = State();
  for (const char* statement :
       {"DELETE FROM t_Audit", "UPDATE t_Audit SET FUserName = 'nobody'", "TRUNCATE t_Audit",
        "DELETE FROM t_SystemProfile", "TRUNCATE t_VoucherGroup", "DROP TABLE t_Audit",
        "ALTER TABLE t_Audit ADD COLUMN x BIGINT", "CREATE TABLE mine (x BIGINT)",
        "CREATE INDEX mine ON t_Audit (FTime)", "ALTER TABLE t_Audit DISABLE TRIGGER ALL",
        "CREATE RULE mine AS ON INSERT TO t_Audit DO INSTEAD NOTHING",
        "CREATE FUNCTION mine() RETURNS BIGINT LANGUAGE sql AS 'SELECT 1'",
        "INSERT INTO t_Schema (FVersion, FTitle) VALUES (99, 'x')",
        "UPDATE t_Schema SET FTitle = ''", "DELETE FROM t_Schema", "SET ROLE postgres",
        "SET session_replication_role = replica", "ALTER TABLE t_User OWNER TO CURRENT_USER"}) {
    EXPECT_EQ(AnswerTo(statement), "DatabaseFailed") << statement;
  }
  EXPECT_EQ(RefusalOf([&] { Call(kBooks, "Upgrade", as_program); }), "none")
      << "there is nothing to do";
  EXPECT_EQ(State(), before);
}

TEST_P(ProgramRoleTest, AnUpgradeByTheOwnerGivesItTheNewTables) {
  server::MakeBooks(ConnectionText::Parse(fresh), [&](Database& db) {
    Migrate(db, 1);
    GrantToProgramRole(db, role);
  });
  EXPECT_EQ(RefusalOf([&] { Call(kBooks, "Upgrade", as_program); }), "DatabaseFailed");
  Connections::OfThisThread().CloseAll();
  Call(kBooks, "Upgrade", fresh);
  EXPECT_EQ(AnswerTo("SELECT 1 FROM t_Audit"), "none");
  EXPECT_EQ(AnswerTo("DELETE FROM t_LoginFailure"), "none");
  EXPECT_EQ(AnswerTo("DELETE FROM t_Audit"), "DatabaseFailed");
}

TEST_P(ProgramRoleTest, ItsRightsAreGrantedInOneMessage) {
  server::MakeBooks(ConnectionText::Parse(fresh), [&](Database& db) {
    Migrate(db, CurrentSchemaVersion());
    int grants = 0;
    Database::SetStatementHook(
        [&](std::string_view sql) { grants += sql.starts_with("GRANT") ? 1 : 0; });
    GrantToProgramRole(db, role);
    Database::SetStatementHook(nullptr);
    EXPECT_EQ(grants, 1);
  });
}

TEST_P(ProgramRoleTest, ARoleThatCouldDoMoreIsNotTaken) {
  const auto refusal = [&](const std::string& name) {
    return RefusalOf([&] {
      Call(kBooks, "Create", fresh, "EUR", Named("NoPassword", true), Named("ProgramRole", name));
    });
  };
  EXPECT_EQ(refusal("no_such_role"), "BadValue");
  EXPECT_EQ(refusal("postgres"), "BadValue") << "the owner";
  Books().Execute("ALTER ROLE " + role + " SUPERUSER");
  EXPECT_EQ(refusal(role), "BadValue");
  EXPECT_EQ(Call("QDSVGLBooks.BooksInfo", "Version", fresh).As<Long>(), 0);
}

class NoProgramRoleTest : public RecordsTest {};
QDCLGL_BOOKS_TEST_OF(NoProgramRoleTest, kSQLite);

TEST_P(NoProgramRoleTest, AFileKnowsNoRoles) {
  const std::string fresh = NewConnectionText(GetParam());
  EXPECT_EQ(RefusalOf([&] {
              Call(kBooks, "Create", fresh, "EUR", Named("NoPassword", true),
                   Named("ProgramRole", "clerk"));
            }),
            "BadValue");
  EXPECT_EQ(RefusalOf([&] { Call("QDSVGLBooks.BooksInfo", "Version", fresh); }), "NoBooks");
}

}  // namespace
}  // namespace qdclgl::server::testing

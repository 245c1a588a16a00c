#include "tests/server/books_state.h"

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/access/login.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server::testing {

namespace {

std::vector<std::string> TablesOf(Database& db) {
  std::vector<std::string> tables;
  for (const auto& [table] : db.Query<std::string>(
           db.Dialect("SELECT name FROM sqlite_master WHERE type = 'table' AND name LIKE 't\\_%'"
                      " ESCAPE '\\' ORDER BY name",
                      "SELECT table_name FROM information_schema.tables"
                      " WHERE table_schema = current_schema() ORDER BY table_name"))) {
    tables.push_back(table);
  }
  return tables;
}

}  // namespace

std::string RefusalOf(const std::function<void()>& operation) {
  try {
    operation();
    return "none";
  } catch (const Error& error) {
    for (const RefusalRow& row : kRefusals) {
      if (row.number == error.number()) return std::string(row.name);
    }
    return "error " + std::to_string(error.number());
  }
}

std::string SentenceOf(const std::function<void()>& operation) {
  try {
    operation();
    return "";
  } catch (const Error& error) {
    return error.description();
  }
}

Database& RecordBooks::Books() const {
  try {
    return EnterUnconfirmed(props, {Role::kReader, "look at the books"}).db;
  } catch (const Error& error) {
    // Who has no role, or no session any more, has no batch.
    if (error.number() != refusal::kNotPermitted && error.number() != refusal::kNotLoggedIn) throw;
    return *Connections::OfThisThread().To(ConnectionText::Parse(connection).Canonical().ToText(),
                                           nullptr);
  }
}

std::vector<std::string> RecordBooks::ColumnsOf(std::string_view table) const {
  std::vector<std::string> columns;
  for (const auto& [column] : Books().Query<std::string>(
           Books().Dialect("SELECT name FROM pragma_table_info(?)",
                           "SELECT column_name FROM information_schema.columns WHERE"
                           " table_schema = current_schema() AND table_name = lower(?)"
                           " ORDER BY ordinal_position"),
           table)) {
    columns.push_back(column);
  }
  return columns;
}

std::string RecordBooks::Trail(const std::string& filter,
                               std::initializer_list<std::string_view> columns) const {
  return TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props, filter).As<Recordset>(), columns);
}

std::string RecordBooks::State() const {
  Database& db = Books();
  const auto row_text = [&](const std::string& table) {
    if (!db.IsSQLite()) return "CAST(" + table + " AS TEXT)";
    std::string text;
    for (const std::string& column : ColumnsOf(table)) {
      text += (text.empty() ? "" : " || ',' || ") + ("quote(" + column + ")");
    }
    return text;
  };
  std::string sql;
  for (const std::string& table : TablesOf(db)) {
    sql += (sql.empty() ? "" : " UNION ALL ") + ("SELECT '" + table + " ' || ") + row_text(table) +
           " AS row_text FROM " + table;
  }
  std::string state;
  for (const auto& [row] : db.Query<std::string>(sql + " ORDER BY row_text")) state += row + "\n";
  return state;
}

std::string RecordBooks::Breaches() const {
  return TextOf(Call("QDSVGLBooks.BooksInfo", "Check", props).As<Recordset>(),
                {"FRule", "FSubject", "FRecordID", "FRecord"});
}

void RecordBooks::Break(std::string_view sql) const {
  Database& db = Books();
  if (db.IsSQLite()) {
    db.ExecuteScript("PRAGMA foreign_keys = OFF;");
    db.ExecuteScript(std::string(sql) + ";");
    db.ExecuteScript("PRAGMA foreign_keys = ON;");
  } else {
    db.ExecuteScript("SET session_replication_role = replica;");
    db.ExecuteScript(std::string(sql) + ";");
    db.ExecuteScript("SET session_replication_role = DEFAULT;");
  }
}

Long RecordBooks::AddAccount(std::string_view number, std::string_view name) {
  return Call("QDSVGLAccount.AccountUpdate", "Create", props,
              Row({{"FNumber", number}, {"FName", name.empty() ? number : name}}))
      .As<Long>();
}

Long RecordBooks::AddGroup(std::string_view name) {
  return Call("QDSVGLVoucherGroup.VoucherGroupUpdate", "Create", props, Row({{"FName", name}}))
      .As<Long>();
}

Long RecordBooks::AddVoucher(Long group, Long debit, Long credit, Currency amount, DateTime date) {
  auto lines = Make<Vector>();
  for (const Long side : {1, 0}) {
    lines->Append(Row({{"FAccountID", side == 1 ? debit : credit},
                       {"FDC", side},
                       {"FAmount", amount},
                       {"FQuantity", 2.5}}));
  }
  return Call("QDSVGLVoucher.VoucherUpdate", "Create", props,
              Row({{"FDate", date}, {"FGroupID", group}, {"_Entries", lines}}))
      .As<Long>();
}

void RecordBooks::CheckAndPost(Long voucher) {
  Call("QDSVGLVoucher.VoucherUpdate", "Check", props, voucher, true);
  Call("QDSVGLVoucher.VoucherUpdate", "Post", props, voucher);
}

void RecordBooks::ExpectAdministratorsOnly(
    const std::function<void(const std::string& props)>& operation) {
  for (const char* role : {"reader", "preparer", "checker", "cashier", "poster",
                           "reader, preparer, checker, cashier, poster"}) {
    Login("administrator");
    const std::string user = std::string("only ") + role;
    if (!Books().QueryValue<Long>("SELECT FUserID FROM t_User WHERE FName = ?", user)) {
      AddUser(user, role);
    }
    const std::string lesser = Login(user);
    const std::string before = State();
    EXPECT_EQ(RefusalOf([&] { operation(lesser); }), "NotPermitted") << role;
    EXPECT_EQ(State(), before) << role;
  }
  EXPECT_EQ(RefusalOf([&] { operation(connection); }), "NotLoggedIn");
  Login("administrator");
}

void RecordBooks::FailEachStatement(const std::function<void()>& operation,
                                    const std::function<std::string()>& watched) {
  const std::string before = State();
  const std::string watched_before = watched();
  for (int failing = 1;; ++failing) {
    ASSERT_LT(failing, 200);
    int count = 0;
    Database::SetStatementHook([&](std::string_view) {
      if (++count == failing) throw Error(4711, "test", "this statement fails");
    });
    const std::string refusal = RefusalOf(operation);
    Database::SetStatementHook(nullptr);
    if (refusal == "none") {
      EXPECT_GT(failing, 3) << "there was hardly anything to fail";
      EXPECT_LT(count, failing);
      EXPECT_NE(State(), before);
      return;
    }
    EXPECT_EQ(refusal, "error 4711") << "at statement " << failing;
    EXPECT_EQ(State(), before) << "after statement " << failing;
    EXPECT_EQ(watched(), watched_before) << "after statement " << failing;
  }
}

std::string ValueText(const Variant& value) {
  return value.IsNothing()   ? "Nothing"
         : value.IsMissing() ? "Missing"
         : value.IsObject()  ? std::string(value.ObjectPointer()->ClassName())
                             : ConcatenatedText(value);
}

std::string TextOf(const Dictionary& row) {
  std::string text;
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    text += row.key_at(i) + "=" + ValueText(row.value_at(i)) + ";";
  }
  return text;
}

std::string TextOf(const Ref<Recordset>& list, std::initializer_list<std::string_view> columns) {
  std::string text;
  for (list->Eof() ? void() : list->MoveFirst(); !list->Eof(); list->MoveNext()) {
    std::string line;
    for (const std::string_view column : columns) {
      if (!line.empty()) line += ' ';
      line += ConcatenatedText(list->FieldValue(list->FieldPosition(column)));
    }
    text += line + "\n";
  }
  return text;
}

}  // namespace qdclgl::server::testing

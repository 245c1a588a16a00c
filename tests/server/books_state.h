// What tests of the server components share: the books' whole state as text, refusals by name, and
// operations that are made to fail at each of their statements.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/database.h"
#include "tests/server/books_fixture.h"
#include "tests/support/test_objects.h"

namespace qdclgl::server::testing {

using ::qdclgl::testing::Row;

// The name of the refusal that an operation raises: "none", "Changed", or "error 13" for an error
// that is no refusal.
std::string RefusalOf(const std::function<void()>& operation);
// Its sentence; "" when nothing is raised.
std::string SentenceOf(const std::function<void()>& operation);

class RecordBooks : public TestBooks {
 public:
  using TestBooks::TestBooks;

  // The connection that the components use for the session in this thread.
  Database& Books() const;
  // Every row of every table, as text.
  std::string State() const;
  std::vector<std::string> ColumnsOf(std::string_view table) const;
  // What the books' own check finds: "FRule FSubject FRecordID FRecord", a line for each row.
  std::string Breaches() const;

  // What the audit trail tells where the filter says, these columns, a line for each row.
  std::string Trail(const std::string& filter,
                    std::initializer_list<std::string_view> columns = {
                        "FSubject", "FRecord", "FAction", "FChanges"}) const;

  // Breaks the books behind the server's back; the database's own guards are off meanwhile.
  void Break(std::string_view sql) const;

  // New records; accounts are called after their number unless they get a name.
  Long AddAccount(std::string_view number, std::string_view name = "");
  Long AddGroup(std::string_view name);
  // A voucher that moves an amount from one account to another.
  Long AddVoucher(Long group, Long debit, Long credit, Currency amount,
                  DateTime date = DateTime::FromYmd(2024, 1, 31));
  void CheckAndPost(Long voucher);

  // `operation` is refused for everybody but administrators and changes nothing.
  void ExpectAdministratorsOnly(const std::function<void(const std::string& props)>& operation);

  // Runs `operation` again and again, each time with another of its statements failing, until it
  // succeeds. After each failure the books are as before, and so is what `watched` tells.
  void FailEachStatement(
      const std::function<void()>& operation,
      const std::function<std::string()>& watched = [] { return ""; });
};

class RecordsTest : public ::testing::TestWithParam<DatabaseKind>, protected RecordBooks {
 protected:
  explicit RecordsTest(DatabaseKind kind = GetParam()) : RecordBooks(kind) {}
};

// A value as text, objects by their class, and so the keys and values of a row.
std::string ValueText(const Variant& value);
std::string TextOf(const Dictionary& row);
// A recordset's rows: the values of these columns, blanks between them, a line for each row.
std::string TextOf(const Ref<Recordset>& list, std::initializer_list<std::string_view> columns);

}  // namespace qdclgl::server::testing

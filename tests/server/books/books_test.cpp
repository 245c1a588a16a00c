#include "qdclgl/server/books/books.h"

#include <filesystem>

#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/db/schema.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kBooks = "QDSVGLBooks.BooksUpdate";

class BooksUpdateTest : public RecordsTest {
 protected:
  BooksUpdateTest() : fresh(NewConnectionText(GetParam())) {}
  ~BooksUpdateTest() override { RemoveBooks(fresh); }

  bool IsSQLite() const { return GetParam() == DatabaseKind::kSQLite; }
  Long Version(const std::string& text) {
    return Call("QDSVGLBooks.BooksInfo", "Version", text).As<Long>();
  }
  // What is there where the fresh books would be: nothing, or books of a version.
  std::string FreshBooks() {
    std::string answer;
    const std::string refusal = RefusalOf([&] { answer = std::to_string(Version(fresh)); });
    return refusal == "none" ? answer : refusal;
  }
  std::string Settings() {
    return TextOf(*Call("QDSVBase.SystemProfile", "ListProfiles", props, "GL").As<Dictionary>());
  }

  std::string fresh;  // the connection text of books that are not made yet
};

TEST_P(BooksUpdateTest, NewBooksAreReadyForWork) {
  EXPECT_EQ(Version(connection), CurrentSchemaVersion());
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(TextOf(Call("QDSVGLCurrency.CurrencyInfo", "GetList", props).As<Recordset>(),
                   {"FCurrencyID", "FNumber"}),
            "1 EUR\n");
}

TEST_P(BooksUpdateTest, EverythingCanBeChosen) {
  Call(kBooks, "Create", fresh, "usd", Long{2030}, Long{13}, Long{4}, "Ann", "sesame");
  props = Call("QDSVGLSession.SessionUpdate", "Login", fresh, "Ann", "sesame").As<String>();
  EXPECT_EQ(Settings(),
            "CurrentPeriod=1;CurrentYear=2030;PeriodByMonth=0;PeriodCount=13;StartPeriod=1;"
            "StartYear=2030;YearStartMonth=4;");
  EXPECT_EQ(
      TextOf(Call("QDSVGLCurrency.CurrencyInfo", "GetList", props).As<Recordset>(), {"FNumber"}),
      "USD\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(BooksUpdateTest, WithoutAYearTheBooksBeginInThisOne) {
  Call(kBooks, "Create", fresh, "EUR", Named("NoPassword", true));
  props = Call("QDSVGLSession.SessionUpdate", "Login", fresh, "administrator", "").As<String>();
  const std::string year = std::to_string(CurrentPlatform().Today().ToParts().year);
  EXPECT_NE(Settings().find("CurrentYear=" + year + ";"), std::string::npos);
}

TEST_P(BooksUpdateTest, BooksAreNotMadeTwice) {
  const std::string before = State();
  EXPECT_EQ(
      RefusalOf([&] { Call(kBooks, "Create", connection, "EUR", Named("NoPassword", true)); }),
      "BooksExist");
  EXPECT_EQ(State(), before);
}

TEST_P(BooksUpdateTest, BooksThatCantBeAreNotBegun) {
  const auto refusal = [&](std::string_view currency, Long year = 2024, Long count = 12,
                           Long month = 1, std::string_view user = "a",
                           std::string_view password = "x") {
    return RefusalOf(
        [&] { Call(kBooks, "Create", fresh, currency, year, count, month, user, password); });
  };
  const std::string nothing = IsSQLite() ? "NoBooks" : "0";
  EXPECT_EQ(refusal(""), "BadNumber");
  EXPECT_EQ(refusal("A-B"), "BadNumber");
  EXPECT_EQ(refusal("ABCDEFGHI"), "BadNumber");
  EXPECT_EQ(refusal("EUR", 99), "BadValue");
  EXPECT_EQ(refusal("EUR", 9999), "BadValue");
  EXPECT_EQ(refusal("EUR", 2024, 0), "BadSetting");
  EXPECT_EQ(refusal("EUR", 2024, -12), "BadSetting");
  EXPECT_EQ(refusal("EUR", 2024, 53), "BadSetting");
  EXPECT_EQ(refusal("EUR", 2024, 12, 13), "BadSetting");
  EXPECT_EQ(refusal("EUR", 2024, 12, 1, ""), "Required");
  EXPECT_EQ(refusal("EUR", 2024, 12, 1, "a", ""), "Required") << "no password, and nobody said so";
  EXPECT_EQ(FreshBooks(), nothing);
  EXPECT_EQ(refusal("EUR", 2024, 12, 1, std::string_view("a\0b", 3)), "BadValue");
  EXPECT_EQ(FreshBooks(), nothing);
  EXPECT_EQ(RefusalOf([&] { Call(kBooks, "Create", "", "EUR"); }), "BadConnectionText");
}

TEST_P(BooksUpdateTest, HalfMadeBooksAreTakenAway) {
  const std::string nothing = IsSQLite() ? "NoBooks" : "0";
  int statements = 1;
  for (;; ++statements) {
    int count = 0;
    Database::SetStatementHook([&](std::string_view) {
      if (++count == statements) throw Error(4711, "test", "this statement fails");
    });
    const std::string refusal =
        RefusalOf([&] { Call(kBooks, "Create", fresh, "EUR", Named("NoPassword", true)); });
    Database::SetStatementHook(nullptr);
    if (refusal == "none") break;
    ASSERT_EQ(refusal, "error 4711");
    ASSERT_EQ(FreshBooks(), nothing) << statements;
    statements += 4;  // some of them will do: hashing the password takes its time
  }
  EXPECT_GT(statements, 20);
  EXPECT_EQ(FreshBooks(), std::to_string(CurrentSchemaVersion()));
}

class BooksFileTest : public BooksUpdateTest {};

TEST_P(BooksFileTest, AFileOfSomethingElseIsLeftAlone) {
  const std::string file(ConnectionText::Parse(fresh)[connection_key::kDataSource]);
  FILE* other = std::fopen(file.c_str(), "w");
  ASSERT_NE(other, nullptr);
  std::fputs("my diary, which is quite long and no database at all", other);
  std::fclose(other);
  EXPECT_EQ(RefusalOf([&] { Call(kBooks, "Create", fresh, "EUR", Named("NoPassword", true)); }),
            "BooksExist");
  EXPECT_EQ(RefusalOf([&] { Version(fresh); }), "NoBooks");
  EXPECT_EQ(std::filesystem::file_size(file), 52u);
}

class LostConnectionTest : public BooksUpdateTest {};

TEST_P(LostConnectionTest, ALostConnectionIsMadeAnew) {
  const auto cut = [&] {
    const auto backend = Books().QueryValue<Long>("SELECT pg_backend_pid()").value_or(0);
    Database other(ConnectionText::Parse(connection));
    other.QueryValue<bool>("SELECT CASE WHEN pg_terminate_backend(?, 5000) THEN 1 ELSE 0 END",
                           backend);
  };
  const auto read = [&] { Settings(); };
  cut();
  EXPECT_EQ(RefusalOf(read), "ConnectionLost");
  EXPECT_EQ(RefusalOf(read), "none");
  cut();
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "ConnectionLost");
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "none");
  Call("QDSVGLBatch.BatchUpdate", "Begin", props);
  AddGroup("Payments");
  cut();
  EXPECT_EQ(RefusalOf([&] { AddGroup("Transfers"); }), "ConnectionLost");
  EXPECT_EQ(RefusalOf([&] { AddGroup("Transfers"); }), "BatchFailed");
  EXPECT_EQ(RefusalOf(read), "BatchFailed") << "not even a look past the batch";
  EXPECT_EQ(RefusalOf([&] { Call("QDSVGLBatch.BatchUpdate", "Begin", props); }), "BatchFailed");
  EXPECT_EQ(RefusalOf([&] { Call("QDSVGLBatch.BatchUpdate", "Commit", props); }), "BatchFailed")
      << "what was in the batch is lost, and nobody shall think otherwise";
  Call("QDSVGLBatch.BatchUpdate", "RollBack", props);
  EXPECT_EQ(TextOf(Call("QDSVGLVoucherGroup.VoucherGroupInfo", "GetList", props).As<Recordset>(),
                   {"FName"}),
            "Receipts\n");
}

QDCLGL_BOOKS_TEST(BooksUpdateTest);
QDCLGL_BOOKS_TEST_OF(BooksFileTest, kSQLite);
QDCLGL_BOOKS_TEST_OF(LostConnectionTest, kPostgreSQL);

}  // namespace
}  // namespace qdclgl::server::testing

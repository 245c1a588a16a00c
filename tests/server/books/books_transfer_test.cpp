// Books that are copied to another database, by either way, and copies that are broken off.
#include "qdclgl/server/books/books_transfer.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/schema.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kSession = "QDSVGLSession.SessionUpdate";

class BooksTransfer : public LedgerTest {
 protected:
  BooksTransfer() : there(NewConnectionText(GetParam())) {
    for (const char* date : {"2024-01-10", "2024-01-20", "2024-01-31"}) Save(Sale(10.5, date));
    Step("Post", 1);
    Save(Voucher("2024-01-31", {Line("1000", 7, 0, {{"FQuantity", 2.125}}), Line("2000", 0, 7)}));
    Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{2});
    AddUser("ann", "preparer");
    // The id of a record that is gone is given to no other one.
    Call("QDSVGLCurrency.CurrencyUpdate", "Delete", props,
         Call("QDSVGLCurrency.CurrencyUpdate", "Create", props,
              Row({{"FNumber", "GONE"}, {"FName", "Gone \xC3\xA9"}, {"FExchangeRate", 1.0 / 3}}))
             .As<Long>());
  }
  ~BooksTransfer() override {
    Database::SetStatementHook(nullptr);
    Connections::OfThisThread().CloseAll();
    for (const std::string& place : places) RemoveBooks(place);
    RemoveBooks(there);
  }

  Ref<Dictionary> CopyTo(const std::string& place) {
    return Call("QDSVGLBooks.BooksInfo", "CopyTo", props, place).As<Dictionary>();
  }
  std::string NewPlace(DatabaseKind kind) { return places.emplace_back(NewConnectionText(kind)); }
  // All that stands somewhere, past the server.
  std::string StateAt(const std::string& place) {
    const std::string own_props = std::exchange(props, "");
    const std::string own_connection = std::exchange(connection, place);
    std::string state = State();
    props = own_props;
    connection = own_connection;
    return state;
  }
  static std::string LoginAt(const std::string& place) {
    return Call(kSession, "Login", place, "administrator", "").As<String>();
  }
  static std::string SentenceAt(const std::string& place) {
    return SentenceOf([&] { LoginAt(place); });
  }
  // Acts before the first statement that begins so, whatever its case.
  static void Before(const std::string& beginning, const std::function<void()>& act) {
    Database::SetStatementHook([beginning, act](std::string_view sql) {
      if (!ToUpper(sql).starts_with(ToUpper(beginning))) return;
      const auto last_act = act;  // the hook ends here, and what it holds
      Database::SetStatementHook(nullptr);
      last_act();
    });
  }
  void BreakOffBefore(const std::string& beginning) {
    Before(beginning, [] { throw std::runtime_error("killed"); });
    EXPECT_THROW(CopyTo(there), std::runtime_error);
    EXPECT_EQ(SentenceAt(there), kHalf);
  }
  static void ChangeAt(const std::string& place, std::string_view sql) {
    Database(ConnectionText::Parse(place)).Execute(sql);
  }

  static constexpr const char* kHalf =
      "A copy of books is not complete here: repeat the qdclgl copy that began it.";
  const std::string there;
  std::vector<std::string> places;
};
QDCLGL_BOOKS_TEST(BooksTransfer);

TEST_P(BooksTransfer, ThereAndBackAreTheSameBooks) {
  const std::string before = State();
  const std::string own = props;
  for (const DatabaseKind kind : Databases()) {
    const std::string other = NewPlace(kind), back = NewPlace(GetParam());
    const Ref<Dictionary> account = CopyTo(other);
    EXPECT_EQ(account->Value("FVouchers").As<Long>(), 3);
    EXPECT_FALSE(account->Value("FWentOn").As<Boolean>());
    EXPECT_FALSE(account->Value("FBeganAnew").As<Boolean>());
    Database copied(ConnectionText::Parse(other));
    TransferBooks(copied, ConnectionText::Parse(back), "");
    EXPECT_EQ(StateAt(back), before);
    EXPECT_EQ(State(), before) << "the source is only read";
  }
  // All of them go on alike.
  std::vector<std::string> went_on;
  std::vector<std::string> all = places;
  all.push_back(connection);
  for (const std::string& place : all) {
    props = LoginAt(place);
    const Long id = Save(Sale(3, "2024-01-31"));
    const Ref<Dictionary> voucher = Read(id);
    went_on.push_back(std::to_string(id) + " " + ValueText(voucher->Value("FNumber")) + " " +
                      std::to_string(AddGroup("New")) + "\n" + BalanceText() + Breaches());
    EXPECT_EQ(went_on.back(), went_on.front());
    EXPECT_EQ(Call("QDSVGLCurrency.CurrencyUpdate", "Create", props,
                   Row({{"FNumber", "NEW"}, {"FName", "New"}, {"FExchangeRate", 2.0}}))
                  .As<Long>(),
              4);
  }
  EXPECT_TRUE(went_on.front().starts_with("5 ")) << went_on.front();
  props = own;
}

TEST_P(BooksTransfer, ACopyThatFailsAnywhereIsNoBooksAndGoesOn) {
  const std::string before = State();
  // Each time a little later, counted from where it goes on.
  constexpr int kStep = 41;
  std::string refusal;
  int failures = 0;
  for (int failing = 1; refusal != "none"; failing += kStep) {
    ASSERT_LT(failing, 2000);
    int count = 0;
    Database::SetStatementHook([&](std::string_view) {
      if (++count >= failing) throw Error(4711, "test", "this statement fails");
    });
    refusal = RefusalOf([&] { CopyTo(there); });
    Database::SetStatementHook(nullptr);
    if (refusal == "none") break;
    ++failures;
    // What fails in the check of a record is told as something that is wrong with it.
    EXPECT_TRUE(refusal == "error 4711" || refusal == "Damaged") << refusal << " at " << failing;
    EXPECT_EQ(RefusalOf([&] { LoginAt(there); }), "NoBooks") << "after statement " << failing;
  }
  EXPECT_GT(failures, 10);
  EXPECT_EQ(State(), before);
  EXPECT_EQ(StateAt(there), before);
}

TEST_P(BooksTransfer, ACopyThatWasBrokenOffGoesOnWhereItWas) {
  const std::string before = State();
  BreakOffBefore("INSERT INTO t_Voucher ");
  std::vector<std::string> written;
  Database::SetStatementHook([&](std::string_view sql) {
    if (ToUpper(sql).starts_with("INSERT INTO T_")) {
      const std::string_view rest = sql.substr(std::string_view("INSERT INTO ").size());
      written.push_back(ToUpper(rest.substr(0, rest.find(' '))));
    }
  });
  const Ref<Dictionary> account = CopyTo(there);
  Database::SetStatementHook(nullptr);
  EXPECT_TRUE(account->Value("FWentOn").As<Boolean>());
  EXPECT_FALSE(account->Value("FBeganAnew").As<Boolean>());
  EXPECT_EQ(std::ranges::count(written, "T_ACCOUNT"), 0) << "was there already";
  EXPECT_EQ(std::ranges::count(written, "T_VOUCHER"), 4);
  EXPECT_EQ(StateAt(there), before);
}

TEST_P(BooksTransfer, ALoginMeanwhileIsNoChange) {
  BreakOffBefore("INSERT INTO t_AuditSeal");
  Login("administrator");
  EXPECT_FALSE(CopyTo(there)->Value("FBeganAnew").As<Boolean>());
  EXPECT_EQ(StateAt(there), State());
}

TEST_P(BooksTransfer, ACopyOfBooksThatChangedMeanwhileBeginsAnew) {
  BreakOffBefore("INSERT INTO t_Audit");
  Step("Post", 3);
  const Ref<Dictionary> account = CopyTo(there);
  EXPECT_TRUE(account->Value("FWentOn").As<Boolean>());
  EXPECT_TRUE(account->Value("FBeganAnew").As<Boolean>());
  EXPECT_EQ(StateAt(there), State());
}

TEST_P(BooksTransfer, RowsThatAreGoneFromTheBooksAreNotInTheCopy) {
  BreakOffBefore("INSERT INTO t_Audit");
  ChangeAt(there, "INSERT INTO t_LoginFailure VALUES ('nobody', 1, 1)");
  EXPECT_TRUE(CopyTo(there)->Value("FBeganAnew").As<Boolean>());
  EXPECT_EQ(StateAt(there), State());
}

TEST_P(BooksTransfer, OthersWorkOnMeanwhileAndTheirSavesAreNotInTheCopy) {
  const std::string before = State();
  Before("INSERT INTO t_Account",
         [&] { ChangeAt(connection, "UPDATE t_Audit SET FMachineName = 'meanwhile'"); });
  CopyTo(there);
  EXPECT_NE(State(), before);
  EXPECT_EQ(StateAt(there), before);
}

TEST_P(BooksTransfer, OneProgramAtATimeGoesOnWithACopy) {
  Before("INSERT INTO t_Account", [&] {
    Before("BEGIN", [&] { ChangeAt(there, "UPDATE t_halfcopy SET FRun = 'another'"); });
  });
  EXPECT_EQ(SentenceOf([&] { CopyTo(there); }), "Another program goes on with this copy.");
  EXPECT_EQ(SentenceAt(there), kHalf);
}

TEST_P(BooksTransfer, RowsThatAreNotThoseOfTheBooksAreFoundAtTheEnd) {
  Before("INSERT INTO t_Audit ", [&] {
    Before("BEGIN", [&] { ChangeAt(there, "UPDATE t_Currency SET FName = 'another'"); });
  });
  const std::string sentence = SentenceOf([&] { CopyTo(there); });
  EXPECT_EQ(ToUpper(sentence), "THE ROWS OF T_CURRENCY ARE NOT THOSE OF THE BOOKS.");
  EXPECT_EQ(SentenceAt(there), kHalf);
  EXPECT_TRUE(CopyTo(there)->Value("FBeganAnew").As<Boolean>());
  EXPECT_EQ(StateAt(there), State());
}

TEST_P(BooksTransfer, HalfACopyIsNothingForAnybodyElse) {
  BreakOffBefore("INSERT INTO t_Voucher ");
  const auto sentence = [&](std::string_view method, auto&&... arguments) {
    return SentenceOf([&] { Call("QDSVGLBooks.BooksUpdate", method, arguments...); });
  };
  EXPECT_EQ(sentence("Upgrade", there), kHalf);
  if (GetParam() == DatabaseKind::kPostgreSQL) {
    EXPECT_EQ(sentence("Create", there, "EUR", Long{2024}, Named("NoPassword", true)), kHalf);
    EXPECT_EQ(sentence("Restore", connection, there), kHalf);
  } else {
    EXPECT_NE(sentence("Create", there, "EUR", Long{2024}, Named("NoPassword", true)), "");
    EXPECT_NE(sentence("Restore", connection, there), "");
  }
  EXPECT_EQ(Call("QDSVGLBooks.BooksInfo", "Version", there).As<Long>(), 0);
  CopyTo(there);
  EXPECT_EQ(StateAt(there), State());
}

TEST_P(BooksTransfer, WhatStandsInThePlaceStays) {
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { CopyTo(connection); }), "BooksExist") << "the books themselves";
  CopyTo(there);
  EXPECT_EQ(RefusalOf([&] { CopyTo(there); }), "BooksExist");
  EXPECT_EQ(StateAt(there), before);
  EXPECT_EQ(State(), before);

  const std::string others = NewPlace(GetParam());
  const ConnectionText text = ConnectionText::Parse(others);
  if (text.IsSQLite()) {
    std::ofstream(std::string(text[connection_key::kDataSource])) << "a letter, and no books";
    EXPECT_EQ(RefusalOf([&] { CopyTo(others); }), "NoBooks");
    EXPECT_EQ(std::filesystem::file_size(std::string(text[connection_key::kDataSource])), 22);
  } else {
    Database db(text);
    db.MakeSchema();
    db.ExecuteScript("CREATE TABLE letters (words TEXT)");
    EXPECT_EQ(RefusalOf([&] { CopyTo(others); }), "BooksExist");
    EXPECT_EQ(db.QueryValue<std::string>(
                  "SELECT string_agg(CAST(table_name AS TEXT), ' ') FROM information_schema.tables"
                  " WHERE table_schema = current_schema()"),
              "letters");
  }
}

TEST_P(BooksTransfer, DamagedBooksAreNotCopied) {
  Break("UPDATE t_Balance SET FDebit = FDebit + 1");
  EXPECT_EQ(RefusalOf([&] { CopyTo(there); }), "Damaged");
  EXPECT_TRUE(RefusalOf([&] { LoginAt(there); }) != "none" && SentenceAt(there) != kHalf);
}

TEST_P(BooksTransfer, BooksOfAnOlderVersionAreNotCopied) {
  const std::string old = NewPlace(GetParam());
  MakeBooks(ConnectionText::Parse(old), [](Database& db) { Migrate(db, 1); });
  Database db(ConnectionText::Parse(old));
  const std::string sentence =
      SentenceOf([&] { TransferBooks(db, ConnectionText::Parse(there), ""); });
  EXPECT_NE(sentence.find("back them up and upgrade them."), std::string::npos) << sentence;
  EXPECT_EQ(RefusalOf([&] { LoginAt(there); }), "NoBooks");
}

TEST_P(BooksTransfer, IsForAdministrators) {
  ExpectAdministratorsOnly(
      [&](const std::string& user) { Call("QDSVGLBooks.BooksInfo", "CopyTo", user, there); });
}

}  // namespace
}  // namespace qdclgl::server::testing

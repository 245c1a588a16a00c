// What callers may do is what the books say of them at that moment, and not what they said at the
// login; sessions that nobody uses end.
#include <functional>
#include <utility>

#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/access/session.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kUsers = "QDSVGLUser.UserUpdate";

class StandingTest : public LedgerTest {
 protected:
  StandingTest() : administrator_(props) {
    AddUser("anna", "preparer, poster");
    anna_ = Login("anna");
  }
  ~StandingTest() override { SetClock(nullptr); }

  // What somebody else does to anna.
  void ChangeAnna(std::string_view key, const Variant& value) {
    Long id = AnnaId();
    const Ref<Dictionary> row =
        Call("QDSVGLUser.UserInfo", "GetDetail", administrator_, ByRef(id)).As<Dictionary>();
    row->Value(key, value);
    Call(kUsers, "Update", administrator_, ByRef(id), row);
  }
  Long AnnaId() const {
    return Books().QueryValue<Long>("SELECT FUserID FROM t_User WHERE FName = 'anna'").value_or(0);
  }
  // Calls of each way in which a caller is confirmed, by what they are answered.
  std::string Answers() {
    props = anna_;
    std::string answers = RefusalOf([&] { Read(1); });
    answers += " " + RefusalOf([&] { Read(99); });
    answers += " " + RefusalOf([&] { BalanceText(); });
    answers += " " + RefusalOf([&] { Save(Sale(1)); });
    answers += " " + RefusalOf([&] {
                 Call("QDSVGLBatch.BatchUpdate", "Begin", props);
                 Call("QDSVGLBatch.BatchUpdate", "RollBack", props);
               });
    return answers;
  }

  std::string administrator_, anna_;
};
QDCLGL_BOOKS_TEST(StandingTest);

TEST_P(StandingTest, ADisabledUsersSessionIsOver) {
  Save(Sale(5));
  EXPECT_EQ(Answers(), "none none none none none");
  ChangeAnna("FDisabled", true);
  const std::string before = State();
  EXPECT_EQ(SentenceOf([&] { Save(Sale(1)); }),
            "The session of anna has ended: the user is disabled; log in first.");
  EXPECT_EQ(Answers(), "NotLoggedIn NotLoggedIn NotLoggedIn NotLoggedIn NotLoggedIn");
  EXPECT_EQ(State(), before);
  ChangeAnna("FDisabled", false);
  EXPECT_EQ(RefusalOf([&] { Read(1); }), "NotLoggedIn") << "what is over does not come back";
}

TEST_P(StandingTest, EachCallOfItsOwnMeetsADisabledUser) {
  const Long id = Save(Sale(5));
  const std::vector<std::function<void()>> calls = {
      [&] { Read(id); },         [&] { Read(99); },
      [&] { BalanceText(); },    [&] { Save(Sale(1)); },
      [&] { Step("Post", id); }, [&] { Call("QDSVGLPeriod.PeriodUpdate", "Close", props); }};
  for (std::size_t i = 0; i < calls.size(); ++i) {
    ChangeAnna("FDisabled", false);
    Login("anna");
    ChangeAnna("FDisabled", true);
    const std::string before = State();
    EXPECT_EQ(RefusalOf(calls[i]), "NotLoggedIn") << i;
    EXPECT_EQ(State(), before) << i;
  }
}

TEST_P(StandingTest, ADemotedUserLosesRightsAtOnceAndAPromotedOneGetsThem) {
  Long id = Save(Sale(5));
  ChangeAnna("FRoles", "reader");
  EXPECT_EQ(Answers(), "none none none NotPermitted NotPermitted");
  EXPECT_EQ(SentenceOf([&] { Step("Post", id); }), "User anna (reader) may not post vouchers.");
  ChangeAnna("FRoles", "checker");
  Step("Check", id);
  ChangeAnna("FRoles", "");
  EXPECT_EQ(Answers(), "NotPermitted NotPermitted NotPermitted NotPermitted NotPermitted");
  ChangeAnna("FRoles", "administrator");
  EXPECT_EQ(Answers(), "none none none none none");
}

TEST_P(StandingTest, ADeletedUsersSessionIsOver) {
  Save(Sale(5));
  Long id = AnnaId();
  Call(kUsers, "Delete", administrator_, ByRef(id));
  EXPECT_EQ(SentenceOf([&] { Read(1); }),
            "The session of anna has ended: there is no such user any more; log in first.");
  EXPECT_EQ(Answers(), "NotLoggedIn NotLoggedIn NotLoggedIn NotLoggedIn NotLoggedIn");
}

TEST_P(StandingTest, NobodySignsWithAFormerName) {
  ChangeAnna("FName", "anne");
  EXPECT_EQ(SentenceOf([&] { Save(Sale(5)); }),
            "The session of anna has ended: the user has another name now; log in first.");
}

TEST_P(StandingTest, ASessionEndsWhenNobodyUsesIt) {
  std::int64_t now = 1'700'000'000;
  SetClock([&] { return now; });
  props = Login("administrator");
  std::string category = "Base", key = "SessionMinutes", minutes = "10";
  Call("QDSVBase.SystemProfile", "SetProfile", props, ByRef(category), ByRef(key), ByRef(minutes));
  const std::string anna = Login("anna");
  for (int i = 0; i < 3; ++i) {
    now += 10 * 60;
    BalanceText();
  }
  now += 10 * 60 + 1;
  EXPECT_EQ(SentenceOf([&] { BalanceText(); }),
            "The session of anna has ended for want of use; log in first.");
  EXPECT_EQ(RefusalOf([&] { BalanceText(); }), "NotLoggedIn");
  EXPECT_TRUE(
      Call("QDCPropsMgr.ShareProps", "GetProperty", CurrentPlatform().ProcessId(), "UserName")
          .IsEmpty());
}

TEST_P(StandingTest, ASessionLastsEightHoursWithoutASettingAndForeverWithZero) {
  std::int64_t now = 1'700'000'000;
  SetClock([&] { return now; });
  Login("anna");
  now += 8 * 60 * 60;
  EXPECT_EQ(RefusalOf([&] { BalanceText(); }), "none");
  now += 8 * 60 * 60 + 1;
  EXPECT_EQ(RefusalOf([&] { BalanceText(); }), "NotLoggedIn");
  Login("administrator");
  std::string category = "Base", key = "SessionMinutes", minutes = "0";
  Call("QDSVBase.SystemProfile", "SetProfile", props, ByRef(category), ByRef(key), ByRef(minutes));
  Login("anna");
  now += 365LL * 24 * 60 * 60;
  EXPECT_EQ(RefusalOf([&] { BalanceText(); }), "none");
}

TEST_P(StandingTest, ABatchEndsWithTheSessionThatBeganIt) {
  const auto batch = [&](const char* method) {
    return RefusalOf([&] { Call("QDSVGLBatch.BatchUpdate", method, props); });
  };
  const auto is_free = [&] { return !Books().InBatch(); };
  const std::string before = State();
  std::int64_t now = 1'700'000'000;
  SetClock([&] { return now; });
  BalanceText();
  EXPECT_EQ(batch("Begin"), "none");
  Save(Sale(5));
  now += 9 * 60 * 60;
  EXPECT_EQ(batch("Commit"), "NotLoggedIn") << "nobody used it";
  EXPECT_TRUE(is_free());
  EXPECT_EQ(State(), before);

  Login("anna");
  EXPECT_EQ(batch("Begin"), "none");
  Save(Sale(5));
  Books().Execute("UPDATE t_User SET FDisabled = 1 WHERE FName = 'anna'");
  EXPECT_EQ(RefusalOf([&] { Save(Sale(6)); }), "NotLoggedIn");
  EXPECT_TRUE(is_free());
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher"), 0);

  Login("anna");
  EXPECT_EQ(batch("Begin"), "none");
  Save(Sale(5));
  Call("QDSVGLSession.SessionUpdate", "Logout", props);
  EXPECT_TRUE(is_free());
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher"), 0);
}

// The look at the user rides along with what is asked anyhow.
TEST_P(StandingTest, ASaveAndItsReadingCostNoStatementMore) {
  const Long id = Save(Sale(5));
  Read(id);
  int statements = 0;
  bool asked = false;
  Database::SetStatementHook([&](std::string_view sql) {
    const bool is_own = sql.starts_with("SELECT FRoles");
    statements += is_own ? 0 : 1;
    asked = asked || (is_own && !Books().IsSQLite());
  });
  const Long second = Save(Sale(6));
  const int of_save = std::exchange(statements, 0);
  Read(second);
  Database::SetStatementHook(nullptr);
  EXPECT_EQ(of_save, 8) << "begin, facts, number, header, lines, audit trail and its end, commit";
  EXPECT_EQ(statements, 3) << "header, lines, details";
  EXPECT_FALSE(asked) << "PostgreSQL is sent no message for it";
}

}  // namespace
}  // namespace qdclgl::server::testing

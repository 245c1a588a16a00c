// Wrong passwords make the next attempt wait, whoever tries from wherever; comings and goings stand
// on the audit trail.
#include "qdclgl/server/access/login_attempt.h"

#include <thread>

#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kSession = "QDSVGLSession.SessionUpdate";
constexpr const char* kUsers = "QDSVGLUser.UserUpdate";

class LoginAttemptTest : public RecordsTest {
 protected:
  LoginAttemptTest() {
    SetClock([this] { return now; });
    Call(kUsers, "Create", props,
         Row({{"FName", "anna"}, {"FRoles", "reader"}, {"FPassword", "sesame"}}));
  }
  ~LoginAttemptTest() override { SetClock(nullptr); }

  std::string Try(const std::string& user, const std::string& password) {
    return RefusalOf([&] { Login(user, password); });
  }
  // So many failures, each as soon as it is allowed.
  void Fail(const std::string& user, int times) {
    for (int i = 0; i < times; ++i) {
      while (Try(user, "wrong") == "LoginDelayed") now += 1;
    }
  }
  // How long the right password has to wait.
  std::int64_t WaitOf(const std::string& user, const std::string& password) {
    const std::int64_t start = now;
    while (Try(user, password) == "LoginDelayed") now += 1;
    return now - start;
  }
  std::string Trail() {
    Login("administrator");
    return TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props,
                       "FSubject = 'Session' AND NOT (FRecord = 'administrator')")
                      .As<Recordset>(),
                  {"FUserName", "FRecordID", "FRecord", "FAction", "FChanges"});
  }

  std::int64_t now = 1'700'000'000;
};
QDCLGL_BOOKS_TEST(LoginAttemptTest);

TEST_P(LoginAttemptTest, EachFailureMakesTheNextAttemptWaitLonger) {
  std::string waits;
  for (int failures = 1; failures <= 11; ++failures) {
    Fail("anna", 1);
    const std::int64_t start = now;
    while (RefusalOf([&] { LoginAttempt(Books(), "anna"); }) == "LoginDelayed") now += 1;
    waits += std::to_string(now - start) + " ";
  }
  EXPECT_EQ(waits, "0 0 0 1 2 4 8 16 32 900 900 ");
}

TEST_P(LoginAttemptTest, EvenTheRightPasswordWaits) {
  Fail("anna", 10);
  EXPECT_EQ(SentenceOf([&] { Login("anna", "sesame"); }),
            "There were 10 failed logins in a row; the next one can be tried in 900 seconds.");
  const std::string before = State();
  EXPECT_EQ(Try("anna", "sesame"), "LoginDelayed");
  EXPECT_EQ(State(), before) << "waiting is no failure";
  EXPECT_EQ(WaitOf("anna", "sesame"), 900);
  EXPECT_EQ(Try("anna", "wrong"), "LoginRefused") << "the count began anew";
  EXPECT_EQ(Try("anna", "sesame"), "none");
}

TEST_P(LoginAttemptTest, AnotherProgramWaitsTheSameTime) {
  Fail("anna", 8);
  std::string refusal;
  std::thread([&] {
    SetApartmentStarted(true);
    refusal = RefusalOf([&] { Call(kSession, "Login", connection, "anna", "sesame"); });
    Connections::OfThisThread().CloseAll();
  }).join();
  EXPECT_EQ(refusal, "LoginDelayed");
  EXPECT_EQ(Try("administrator", ""), "none") << "others are not held up";
}

TEST_P(LoginAttemptTest, TheLastAdministratorWaitsAMinuteAtMost) {
  Fail("administrator", 12);
  EXPECT_EQ(WaitOf("administrator", ""), 60);
  AddUser("bob", "administrator");
  Fail("administrator", 12);
  EXPECT_EQ(WaitOf("administrator", ""), 900) << "somebody else can get in";
}

TEST_P(LoginAttemptTest, UnknownUsersWaitLikeOthers) {
  Fail("nobody", 10);
  EXPECT_EQ(WaitOf("nobody", ""), 900);
  Fail(std::string(70'000, 'x'), 10);
  EXPECT_EQ(Try(std::string(80'000, 'y'), ""), "LoginDelayed");
}

TEST_P(LoginAttemptTest, FailuresAreForgottenAfterADay) {
  Fail("anna", 9);
  now += 24 * 60 * 60 + 1;
  Fail("anna", 1);
  EXPECT_EQ(WaitOf("anna", "sesame"), 0);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_LoginFailure"), 0);
}

TEST_P(LoginAttemptTest, AnAdministratorLetsSomebodyInAgain) {
  Fail("anna", 10);
  Login("administrator");
  Long id = 2;
  Call(kUsers, "SetPassword", props, ByRef(id), "open");
  EXPECT_EQ(Try("anna", "open"), "none");
}

TEST_P(LoginAttemptTest, NoPasswordIsTriedBesideABatchThatCouldTakeAFailureBack) {
  Login("administrator");
  Call("QDSVGLBatch.BatchUpdate", "Begin", props);
  const std::string batch = props;
  EXPECT_EQ(Try("anna", "wrong"), "DatabaseBusy");
  EXPECT_EQ(Try("anna", "sesame"), "DatabaseBusy") << "it tells nothing of the password";
  props = batch;
  EXPECT_EQ(RefusalOf([&] { Call(kUsers, "SetPassword", props, Long{0}, "x"); }), "BadBatch");
  Call("QDSVGLBatch.BatchUpdate", "RollBack", props);
  EXPECT_EQ(Try("anna", "sesame"), "none");
}

TEST_P(LoginAttemptTest, LoginsFailuresAndLogoutsAreOnTheTrail) {
  Fail("anna", 4);
  Fail("nobody", 1);
  now += 10;
  const std::string anna = Login("anna", "sesame");
  Call(kSession, "Logout", anna);
  EXPECT_EQ(Trail(), "anna 2 anna LoginFailed 1 in a row\nanna 2 anna LoginFailed 2 in a row\n"
                     "anna 2 anna LoginFailed 3 in a row\n"
                     "anna 2 anna LoginFailed 4 in a row, the next one waits 1 seconds\n"
                     "nobody 0 nobody LoginFailed 1 in a row\nanna 2 anna Login \n"
                     "anna 2 anna Logout \n");
}

TEST_P(LoginAttemptTest, NobodyLogsInWithoutBeingOnTheTrail) {
  FailEachStatement([&] { Login("anna", "sesame"); });
}

TEST_P(LoginAttemptTest, TheOwnPasswordChangesWithTheOldOneAlone) {
  Login("anna", "sesame");
  const auto set = [&](std::string_view password, std::string_view old) {
    return RefusalOf([&] { Call(kUsers, "SetPassword", props, Long{0}, password, old); });
  };
  EXPECT_EQ(RefusalOf([&] { Call(kUsers, "SetPassword", props, Long{0}, "new"); }), "LoginRefused");
  EXPECT_EQ(set("new", "Sesame"), "LoginRefused");
  EXPECT_EQ(set("", "sesame"), "Required");
  EXPECT_EQ(set("new", "sesame"), "none");
  EXPECT_EQ(Try("anna", "sesame"), "LoginRefused");
  EXPECT_EQ(Try("anna", "new"), "none");
  for (int i = 0; i < 4; ++i) EXPECT_EQ(set("x", "guess"), "LoginRefused");
  EXPECT_EQ(set("x", "new"), "LoginDelayed") << "guessing goes no faster here";
}

TEST_P(LoginAttemptTest, AnEmptyPasswordIsSaidExpressly) {
  Long id = 2;
  EXPECT_EQ(RefusalOf([&] { Call(kUsers, "SetPassword", props, ByRef(id), ""); }), "Required");
  EXPECT_EQ(Try("anna", "sesame"), "none");
  Login("administrator");
  Call(kUsers, "SetPassword", props, ByRef(id), "", "", true);
  EXPECT_EQ(Try("anna", ""), "none");
}

TEST_P(LoginAttemptTest, AUserWhoWasGivenNoPasswordCantLogIn) {
  Call(kUsers, "Create", props, Row({{"FName", "bob"}, {"FRoles", "reader"}}));
  EXPECT_EQ(Try("bob", ""), "LoginRefused");
  Long id = 3;
  Call(kUsers, "SetPassword", props, ByRef(id), "x");
  EXPECT_EQ(Try("bob", "x"), "none");
}

}  // namespace
}  // namespace qdclgl::server::testing

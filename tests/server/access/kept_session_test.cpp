// A session that outlasts its process ends when it has to, and nobody gets one by guessing.
#include "qdclgl/server/access/kept_session.h"

#include <functional>

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/access/clock.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/sha256.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kSession = "QDSVGLSession.SessionUpdate";
constexpr const char* kUsers = "QDSVGLUser.UserUpdate";
constexpr const char* kEnded = "The session that was kept has ended; log in again.";

class KeptSessionTest : public RecordsTest {
 protected:
  KeptSessionTest() {
    SetClock([this] { return now; });
    anna = Call(kUsers, "Create", props,
                Row({{"FName", "anna"}, {"FRoles", "reader, poster"}, {"FPassword", "sesame"}}))
               .As<Long>();
    administrator = props;
  }
  ~KeptSessionTest() override { SetClock(nullptr); }

  // Anna's session is kept, and its process is over.
  std::string KeepAnna(Long minutes = 0) {
    const std::string session = Login("anna", "sesame");
    const auto ticket = Call(kSession, "Keep", session, ByRef(minutes)).As<String>();
    EndSession(session);
    return ticket;
  }
  std::string Resume(const std::string& ticket) {
    return Call(kSession, "Resume", connection, ticket).As<String>();
  }
  std::string AnswerTo(const std::string& ticket) {
    return SentenceOf([&] { EndSession(Resume(ticket)); });
  }
  Long KeptSessions() { return *Books().QueryValue<Long>("SELECT COUNT(*) FROM t_KeptSession"); }
  void ChangeAnna(std::string_view key, const Variant& value) {
    Long id = anna;
    const Ref<Dictionary> user =
        Call("QDSVGLUser.UserInfo", "GetDetail", administrator, ByRef(id)).As<Dictionary>();
    user->Put(key, value);
    Call(kUsers, "Update", administrator, ByRef(id), user);
  }

  std::int64_t now = 1'700'000'000;
  Long anna = 0;
  std::string administrator;
};
QDCLGL_BOOKS_TEST(KeptSessionTest);

TEST_P(KeptSessionTest, AnotherProcessGoesOnWithItAndWritesNothing) {
  const std::string ticket = KeepAnna();
  const std::string before = State();
  const std::string session = Resume(ticket);
  EXPECT_EQ(State(), before);
  const auto stored = [&](const char* key) {
    return Call("QDCPropsMgr.ShareProps", "GetProperty", CurrentPlatform().ProcessId(), key);
  };
  EXPECT_EQ(stored("UserName").As<String>(), "anna");
  EXPECT_EQ(stored("UserID").As<Long>(), anna);
  EXPECT_EQ(stored("PropsString").As<String>(), session);
  EXPECT_EQ(stored("IsOuterLogin").As<Long>(), 0);
  EXPECT_EQ(
      SentenceOf([&] { Call("QDSVBase.SystemProfile", "SetProfile", session, "PA", "a", "b"); }),
      "User anna (reader, poster) may not change settings.");
}

TEST_P(KeptSessionTest, TheBooksKeepTheTicketsHashAloneForTheMachineAndTheUser) {
  const std::string ticket = KeepAnna(30);
  const auto row = Books().QueryRow<std::string, Long, std::string, std::int64_t>(
      "SELECT FTicketHash, FUserID, FMachineName, FEndTime FROM t_KeptSession");
  EXPECT_EQ(*row, std::tuple(Sha256Of(ticket), anna, GetMachineName(), now + 30 * 60));
  EXPECT_EQ(ticket.size(), 32u);
  EXPECT_EQ(State().find(ticket), std::string::npos);
}

TEST_P(KeptSessionTest, ItEndsWhenItsTimeIsOver) {
  const std::string ticket = KeepAnna(30);
  now += 30 * 60 - 1;
  EXPECT_EQ(AnswerTo(ticket), "");
  now += 1;
  EXPECT_EQ(AnswerTo(ticket), kEnded);
  EXPECT_EQ(KeptSessions(), 1);
  KeepAnna();
  EXPECT_EQ(KeptSessions(), 1) << "what is over is cleared away by the next one";
}

TEST_P(KeptSessionTest, ItLastsAsLongAsUnusedSessionsDoAndNoLonger) {
  const auto keep = [&](Long minutes) {
    const std::string session = Login("anna", "sesame");
    std::string sentence = SentenceOf([&] { Call(kSession, "Keep", session, ByRef(minutes)); });
    return sentence.empty() ? std::to_string(minutes) : sentence;
  };
  EXPECT_EQ(keep(0), "480");
  EXPECT_EQ(keep(480), "480");
  EXPECT_EQ(keep(481), "A session can be kept for 1 to 480 minutes, not 481.");
  EXPECT_EQ(keep(-1), "A session can be kept for 1 to 480 minutes, not -1.");
  Call("QDSVBase.SystemProfile", "SetProfile", administrator, "Base", "SessionMinutes", "20");
  EXPECT_EQ(keep(0), "20");
  EXPECT_EQ(keep(21), "A session can be kept for 1 to 20 minutes, not 21.");
  Call("QDSVBase.SystemProfile", "SetProfile", administrator, "Base", "SessionMinutes", "0");
  EXPECT_EQ(keep(0), "480") << "nothing is kept for ever";
  EXPECT_EQ(keep(10'080), "10080");
  EXPECT_EQ(keep(10'081), "A session can be kept for 1 to 10080 minutes, not 10081.");
}

TEST_P(KeptSessionTest, ALogoutEndsItWhicheverProcessLogsOut) {
  const std::string ticket = KeepAnna();
  Call(kSession, "Logout", Resume(ticket));
  EXPECT_EQ(AnswerTo(ticket), kEnded);
  EXPECT_EQ(KeptSessions(), 0);

  const std::string session = Login("anna", "sesame");
  Long minutes = 5;
  const auto own = Call(kSession, "Keep", session, ByRef(minutes)).As<String>();
  Call(kSession, "Logout", session);
  EXPECT_EQ(AnswerTo(own), kEnded);
}

TEST_P(KeptSessionTest, EveryOneOfAUserEndsWithAnotherPasswordOtherRightsOrAnotherName) {
  const auto ends = [&](const std::function<void()>& change) {
    const std::string one = KeepAnna();
    const std::string two = KeepAnna();
    const std::string others = [&] {
      Long minutes = 5;
      return Call(kSession, "Keep", administrator, ByRef(minutes)).As<String>();
    }();
    change();
    const std::string answers = AnswerTo(one) + '|' + AnswerTo(two) + '|' + AnswerTo(others);
    administrator = Login("administrator");
    return answers;
  };
  const std::string both = std::string(kEnded) + '|' + kEnded + '|';
  EXPECT_EQ(ends([&] { ChangeAnna("FRoles", "reader"); }), both);
  EXPECT_EQ(ends([&] {
              ChangeAnna("FDisabled", true);
              ChangeAnna("FDisabled", false);
            }),
            both);
  EXPECT_EQ(ends([&] {
              ChangeAnna("FName", "ann");
              ChangeAnna("FName", "anna");
            }),
            both);
  EXPECT_EQ(ends([&] { Call(kUsers, "SetPassword", administrator, anna, "sesame"); }), both);
  EXPECT_EQ(ends([&] { Call(kUsers, "SetPassword", Login("anna", "sesame"), 0, "x", "sesame"); }),
            both);
  Call(kUsers, "SetPassword", administrator, anna, "sesame");
  EXPECT_EQ(ends([&] { Call(kUsers, "Delete", administrator, ByRef(anna)); }), both);
}

TEST_P(KeptSessionTest, ASaveThatChangesNothingOfTheseLeavesIt) {
  const std::string ticket = KeepAnna();
  ChangeAnna("FRoles", "poster, reader");
  EXPECT_EQ(AnswerTo(ticket), "");
}

TEST_P(KeptSessionTest, ADisabledUserHasNoneEvenWhereTheTableSaysSo) {
  const std::string ticket = KeepAnna();
  Break("UPDATE t_User SET FDisabled = 1 WHERE FName = 'anna'");
  EXPECT_EQ(AnswerTo(ticket), kEnded);
}

TEST_P(KeptSessionTest, ItIsOfTheMachineThatItWasBegunOn) {
  const std::string ticket = KeepAnna();
  Break("UPDATE t_KeptSession SET FMachineName = 'ELSEWHERE'");
  EXPECT_EQ(AnswerTo(ticket), kEnded);
}

TEST_P(KeptSessionTest, NobodyGetsOneByGuessing) {
  const std::string ticket = KeepAnna();
  for (const std::string& wrong :
       {std::string(), std::string("0"), ticket + " ", ticket.substr(1), Sha256Of(ticket),
        std::string("' OR '1'='1"), std::string(100'000, 'x'), std::string("%")}) {
    EXPECT_EQ(AnswerTo(wrong), kEnded) << wrong.substr(0, 40);
  }
  EXPECT_EQ(RefusalOf([&] { Call(kSession, "Resume", connection, std::string("a\0b", 3)); }),
            "NotLoggedIn");
}

TEST_P(KeptSessionTest, TheTrailTellsOfItsBeginningAndItsEnd) {
  Call(kSession, "Logout", Resume(KeepAnna(30)));
  props = administrator;
  EXPECT_EQ(Trail("FUserName = 'anna'"), "Session anna Login \n"
                                         "Session anna Keep 30 minutes\n"
                                         "Session anna Logout \n");
}

TEST_P(KeptSessionTest, ASessionThatIsOverIsNotKept) {
  Call(kSession, "Logout", props);
  Long minutes = 0;
  EXPECT_EQ(RefusalOf([&] { Call(kSession, "Keep", props, ByRef(minutes)); }), "NotLoggedIn");
  EXPECT_EQ(minutes, 0);
}

TEST_P(KeptSessionTest, KeepingWhollyHappensOrNotAtAll) {
  const std::string session = Login("anna", "sesame");
  FailEachStatement([&] {
    Long minutes = 5;
    Call(kSession, "Keep", session, ByRef(minutes));
  });
  EXPECT_EQ(KeptSessions(), 1);
}

TEST_P(KeptSessionTest, CopiesOfTheBooksHaveNone) {
  const std::string ticket = KeepAnna();
  const std::string copy = NewConnectionText(GetParam());
  Call("QDSVGLBooks.BooksInfo", "BackUp", administrator, copy);
  EXPECT_EQ(SentenceOf([&] { Call(kSession, "Resume", copy, ticket); }), kEnded);
  Connections::OfThisThread().CloseAll();
  RemoveBooks(copy);
}

}  // namespace
}  // namespace qdclgl::server::testing

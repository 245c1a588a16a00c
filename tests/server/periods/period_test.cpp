// Going back behind periods that have postings.
#include "qdclgl/server/db/refusals.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kPeriod = "QDSVGLPeriod.PeriodUpdate";

class PeriodTest : public LedgerTest {
 protected:
  void Close() { Call(kPeriod, "Close", props); }
  void ReopenTo(Long year, Long period) { Call(kPeriod, "ReopenTo", props, year, period); }
  std::string Current() {
    const Ref<Dictionary> settings =
        Call("QDSVBase.SystemProfile", "ListProfiles", props, "GL").As<Dictionary>();
    return CStr(settings->Value("CurrentYear")) + "/" + CStr(settings->Value("CurrentPeriod"));
  }
};
QDCLGL_BOOKS_TEST(PeriodTest);

TEST_P(PeriodTest, APrematureCloseIsTakenBackWhateverIsPostedBehindIt) {
  const Long january = Save(Sale(5)), march = Save(Sale(7, "2024-03-10"));
  Step("Post", january);
  Step("Post", march);
  for (int i = 0; i < 3; ++i) Close();
  const std::string balances = BalanceText();
  EXPECT_EQ(RefusalOf([&] { Save(Sale(1)); }), "PeriodClosed");
  EXPECT_EQ(RefusalOf([&] { Step("UnPost", march); }), "PeriodClosed");
  ReopenTo(2024, 1);
  EXPECT_EQ(Current(), "2024/1");
  EXPECT_EQ(BalanceText(), balances) << "what is posted stays posted";
  EXPECT_EQ(Breaches(), "");
  // The later ones are open again too, and are closed anew one by one.
  Step("UnPost", march);
  Step("Post", march);
  const Long forgotten = Save(Sale(1));
  EXPECT_EQ(RefusalOf([&] { Close(); }), "NotAllPosted");
  Step("Post", forgotten);
  for (const char* period : {"2024/2", "2024/3", "2024/4"}) {
    Close();
    EXPECT_EQ(Current(), period);
  }
  EXPECT_EQ(BalanceText(), RecomputedText());
}

TEST_P(PeriodTest, EachPeriodThatIsOpenAgainStandsOnTheTrail) {
  for (int i = 0; i < 13; ++i) Close();
  EXPECT_EQ(Current(), "2025/2");
  ReopenTo(2024, 12);
  EXPECT_EQ(
      TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props, "FAction = 'Reopen'").As<Recordset>(),
             {"FSubject", "FRecord"}),
      "Period 2025/1\nPeriod 2024/12\n");
}

TEST_P(PeriodTest, OnlyClosedPeriodsOfTheBooksAreReopened) {
  Close();
  const std::string before = State();
  const auto refusal = [&](Long year, Long period) {
    return RefusalOf([&] { ReopenTo(year, period); });
  };
  EXPECT_EQ(refusal(2024, 2), "BadValue") << "it is open";
  EXPECT_EQ(refusal(2024, 13), "BadValue");
  EXPECT_EQ(refusal(2024, 0), "BadValue");
  EXPECT_EQ(refusal(2023, 12), "FirstPeriod");
  EXPECT_EQ(State(), before);
  FailEachStatement([&] { ReopenTo(2024, 1); });
}

TEST_P(PeriodTest, ItTakesMoreThanAPoster) {
  Step("Post", Save(Sale(5, "2024-02-10")));
  Close();
  AddUser("anna", "reader, preparer, checker, cashier, poster");
  Login("anna");
  EXPECT_EQ(RefusalOf([&] { Call(kPeriod, "Reopen", props); }), "LaterPostings");
  EXPECT_EQ(SentenceOf([&] { ReopenTo(2024, 1); }),
            "User anna (reader, preparer, checker, cashier, poster) may not reopen periods that "
            "have postings behind them.");
}

}  // namespace
}  // namespace qdclgl::server::testing

// What people have signed stays as they saw it, and nobody signs a part of his own where the books
// want four eyes.
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kUpdate = "QDSVGLVoucher.VoucherUpdate";

class Signatures : public LedgerTest {
 protected:
  void SetSetting(std::string key, std::string value) {
    std::string category = "GL";
    Call("QDSVBase.SystemProfile", "SetProfile", props, ByRef(category), ByRef(key), ByRef(value));
  }
  void Delete(Long id, bool purge) { Call(kUpdate, "Delete", props, ByRef(id), purge, "M", "A"); }
  // Whatever changes a voucher, by what it is answered.
  std::string Answers(Long id) {
    Ref<Dictionary> row = Read(id, true);
    row->Value("FExplanation", "another one");
    std::string answers = RefusalOf([&] { Update(id, row); });
    answers += " " + RefusalOf([&] { Delete(id, false); });
    answers += " " + RefusalOf([&] { Delete(id, true); });
    answers += " " + RefusalOf([&] { Call(kUpdate, "ClearCashFlow", props, ByRef(id)); });
    return answers;
  }
  static std::string Each(const std::string& refusal) {
    return refusal + " " + refusal + " " + refusal + " " + refusal;
  }
};
QDCLGL_BOOKS_TEST(Signatures);

TEST_P(Signatures, NothingChangesUnderASignature) {
  const Long cashed = Save(Sale(5)), checked = Save(Sale(6)), approved = Save(Sale(7)),
             posted = Save(Sale(8));
  Step("Cash", cashed);
  Step("Check", checked);
  Step("Check", approved);
  Step("Approve", approved);
  Step("Post", posted);
  const std::string before = State();
  EXPECT_EQ(Answers(cashed), Each("VoucherCashed"));
  EXPECT_EQ(Answers(checked), Each("VoucherChecked"));
  EXPECT_EQ(Answers(approved), Each("VoucherChecked"));
  EXPECT_EQ(Answers(posted), Each("VoucherPosted"));
  EXPECT_EQ(State(), before);
  Step("Cash", cashed, false);
  EXPECT_EQ(Answers(cashed), "none none none NotFound") << "the signature is taken back first";
}

TEST_P(Signatures, ACashedVoucherThatFormerProgramsDeletedIsNotPurged) {
  const Long id = Save(Sale(5));
  Step("Cash", id);
  Books().Execute("UPDATE t_Voucher SET FDeleted = 1 WHERE FVoucherID = ?", id);
  EXPECT_EQ(RefusalOf([&] { Delete(id, true); }), "VoucherCashed");
}

// ---- Four eyes ----

struct FourEyes {
  const char* setting;
  const char* step;
  const char* role;
};
constexpr FourEyes kFourEyes[] = {{"CheckerNotPreparer", "Check", "checker"},
                                  {"ApproverNotPreparer", "Approve", "checker"},
                                  {"CashierNotPreparer", "Cash", "cashier"},
                                  {"PosterNotPreparer", "Post", "poster"}};

TEST_P(Signatures, WhoHadAHandInAVoucherDoesNotTakeTheStepThatWantsOthers) {
  for (const FourEyes& rule : kFourEyes) {
    Login("administrator");
    const std::string of_all = "preparer, checker, cashier, poster";
    for (const char* name : {"anna", "bob", "carl"}) {
      if (rule.setting == kFourEyes[0].setting) AddUser(name, of_all);
    }
    SetSetting(rule.setting, "1");
    Login("anna");
    const Long id = Save(Sale(5));
    Login("bob");
    Ref<Dictionary> row = Read(id);
    row->Value("FFootNote", "a remark");
    Update(id, row);
    EXPECT_EQ(CStr(Read(id)->Value("FPreparer")), "bob");
    const auto take = [&] { Step(rule.step, id); };
    if (std::string_view(rule.step) == "Approve") {
      Login("carl");
      Step("Check", id);
    }
    Login("anna");
    EXPECT_EQ(RefusalOf(take), "OwnVoucher") << rule.step << " by who made it";
    EXPECT_NE(SentenceOf(take).find("anna had a hand in it; somebody else must "),
              std::string::npos)
        << SentenceOf(take);
    Login("bob");
    EXPECT_EQ(RefusalOf(take), "OwnVoucher") << rule.step << " by who changed it";
    EXPECT_NE(SentenceOf(take).find("bob prepared it; somebody else must "), std::string::npos);
    Login("carl");
    EXPECT_EQ(RefusalOf(take), "none") << rule.step;
    Login("administrator");
    SetSetting(rule.setting, "0");
  }
}

TEST_P(Signatures, EachStepHasASettingOfItsOwn) {
  for (const FourEyes& rule : kFourEyes) {
    SetSetting(rule.setting, "1");
    std::string refused;
    for (const FourEyes& other : kFourEyes) {
      const Long id = Save(Sale(5));
      if (std::string_view(other.step) == "Approve") {
        SetSetting("CheckerNotPreparer", "0");
        Step("Check", id);
        SetSetting("CheckerNotPreparer", rule.setting == kFourEyes[0].setting ? "1" : "0");
      }
      if (RefusalOf([&] { Step(other.step, id); }) == "OwnVoucher") refused += other.step;
    }
    EXPECT_EQ(refused, rule.step);
    SetSetting(rule.setting, "0");
  }
}

TEST_P(Signatures, TakingAStepBackIsNobodysOwnAffair) {
  const Long id = Save(Sale(5));
  Step("Check", id);
  SetSetting("CheckerNotPreparer", "1");
  Step("Check", id, false);
  EXPECT_EQ(RefusalOf([&] { Step("Check", id); }), "OwnVoucher");
}

TEST_P(Signatures, ClearingCashFlowItemsIsAHandInTheVoucher) {
  Long id = Save(Sale(5));
  AddUser("anna", "preparer, checker");
  SetSetting("CheckerNotPreparer", "1");
  Login("anna");
  Call(kUpdate, "ClearCashFlow", props, ByRef(id));
  EXPECT_EQ(RefusalOf([&] { Step("Check", id); }), "OwnVoucher");
}

TEST_P(Signatures, EditorsGoWithThePurgedVoucher) {
  const Long id = Save(Sale(5));
  AddUser("anna", "preparer");
  Login("anna");
  Update(id, Read(id));
  const auto count = [&] {
    return Books().QueryValue<Long>("SELECT COUNT(*) FROM t_VoucherEditor").value_or(-1);
  };
  EXPECT_EQ(count(), 1);
  Delete(id, true);
  EXPECT_EQ(count(), 0);
}

// A switch that a former version took and read as off is on: it guards the books.
TEST_P(Signatures, AnOldSettingInWordsCountsAsOn) {
  const Long id = Save(Sale(5));
  for (const char* text : {"True", "yes", "on", "1"}) {
    Books().Execute("DELETE FROM t_SystemProfile WHERE FKey = 'CheckBeforePost'");
    Books().Execute("INSERT INTO t_SystemProfile (FCategory, FKey, FValue)"
                    " VALUES ('GL', 'CheckBeforePost', ?)",
                    text);
    EXPECT_EQ(RefusalOf([&] { Step("Post", id); }), "WrongStep") << text;
  }
}

}  // namespace
}  // namespace qdclgl::server::testing

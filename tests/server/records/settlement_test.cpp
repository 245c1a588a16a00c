#include "qdclgl/server/records/settlement.h"

#include "qdclgl/frame/containers/vector.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

// ---- What dictionaries of settlement share with all kinds ----

Long Create(RecordBooks& books, const std::string& component, const Ref<Dictionary>& row) {
  return books.Call(component + "Update", "Create", books.props, row).As<Long>();
}

// Another number at each call, unlike those of the samples.
std::string NextNumber() {
  static int number = 0;
  return "N" + std::to_string(++number);
}

Long NewAccount(RecordBooks& books) { return books.AddAccount(NextNumber()); }

Long NewSettAcct(RecordBooks& books) {
  return Create(books, "QDSVGLSettAcct.SettAcct", Row({{"FNumber", NextNumber()}}));
}

constexpr RecordKind::Reference ToAccount(std::string_view column) {
  return {.column = column,
          .noun = "account",
          .id = "FAccountID",
          .update = "QDSVGLAccount.AccountUpdate",
          .make = NewAccount};
}

// Accounts 1 and 2, which the samples refer to.
void PrepareAccounts(RecordBooks& books) {
  books.AddAccount("1000", "Cash");
  books.AddAccount("2000", "Bank");
}

// A dictionary of these columns between number and name and the mark.
RecordKind OfSettlement(RecordKind kind, std::vector<RecordKind::Column> columns) {
  kind.columns = {{"FNumber", "A1", "B_2"}, {"FName", "First", "Second"}};
  kind.columns.insert(kind.columns.end(), columns.begin(), columns.end());
  kind.columns.push_back({"FDeleted", Integer{0}, Integer{0}});
  kind.spelled = {{"FNumber", "a1"}};
  kind.coded = {"FNumber"};
  kind.required = {"FNumber"};
  kind.unique = {{"FNumber", "NumberTaken"}};
  kind.text_key = "FNumber";
  kind.detail_by_text = "GetDetailByNumber";
  kind.text_argument = "Number";
  kind.mark = "FDeleted";
  return kind;
}

const RecordKind kSettTypes = OfSettlement(
    {
        .noun = "Settlement type",
        .subject = "SettType",
        .info = "QDSVGLSettType.SettTypeInfo",
        .update = "QDSVGLSettType.SettTypeUpdate",
        .table = "t_SettType",
        .id = "FItemID",
        .columns = {},
        .absent = {{"FBrNo", "0"}, {"AcctNumber", ""}},
        .joined = {"AcctNumber"},
        .order = "FNumber",
        .id_argument = "SettTypeID",
        .uses = {[](RecordBooks& books, Long type) {
          const std::string name = "V" + std::to_string(type);
          const Long account = books.AddAccount(name);
          auto lines = Make<Vector>();
          for (const Long side : {1, 0}) {
            lines->Append(Row({{"FAccountID", account},
                               {"FDC", side},
                               {"FAmount", Currency(7)},
                               {"FSettleTypeID", type}}));
          }
          books.Call("QDSVGLVoucher.VoucherUpdate", "Create", books.props,
                     Row({{"FDate", DateTime::FromYmd(2024, 1, 31)},
                          {"FGroupID", books.AddGroup(name)},
                          {"_Entries", lines}}));
        }},
        .prepare =
            [](RecordBooks& books) {
              for (const char* number : {"CASH", "BANK"}) {
                Create(books, "QDSVGLSettAcct.SettAcct", Row({{"FNumber", number}}));
              }
            },
        .references = {{.column = "FAcctID",
                        .noun = "settlement account",
                        .id = "FItemID",
                        .update = "QDSVGLSettAcct.SettAcctUpdate",
                        .make = NewSettAcct}},
    },
    {{"FAcctID", Long{1}, Long{2}}, {"AcctNumber", "CASH", "BANK"}, {"FBrNo", "7", "8"}});
QDCLGL_RECORD_KIND(SettType, kSettTypes);

const RecordKind kSettAccts = OfSettlement(
    {
        .noun = "Settlement account",
        .subject = "SettAcct",
        .info = "QDSVGLSettAcct.SettAcctInfo",
        .update = "QDSVGLSettAcct.SettAcctUpdate",
        .table = "t_SettAcct",
        .id = "FItemID",
        .columns = {},
        .absent = {{"FBrNo", "0"}, {"AcctNumber", ""}},
        .joined = {"AcctNumber"},
        .order = "FNumber",
        .id_argument = "SettAcctID",
        .uses = {[](RecordBooks& books, Long account) {
          Create(books, "QDSVGLSettType.SettType",
                 Row({{"FNumber", NextNumber()}, {"FAcctID", account}}));
        }},
        .prepare = PrepareAccounts,
        .references = {ToAccount("FAcctID")},
    },
    {{"FAcctID", Long{1}, Long{2}},
     {"AcctNumber", "1000", "2000"},
     {"FBrNo", "7", "8"},
     {"FBalance", 12.5, -0.25},
     {"FStartPeriod", "2024-01", "soon"},
     {"FBeforeEnable", true, false}});
QDCLGL_RECORD_KIND(SettAcct, kSettAccts);

const RecordKind kCheckTypes = OfSettlement(
    {
        .noun = "Check type",
        .subject = "CheckType",
        .info = "QDSVGLCheckType.CheckTypeInfo",
        .update = "QDSVGLCheckType.CheckTypeUpdate",
        .table = "t_CheckType",
        .id = "FItemID",
        .columns = {},
        .absent = {{"AdjustAcctNumber", ""},
                   {"CheckAcctNumber", ""},
                   {"CostAcctNumber", ""},
                   {"IncomAcctNumber", ""},
                   {"SellAcctNumber", ""},
                   {"ZZCXAcctNumber", ""}},
        .joined = {"AdjustAcctNumber", "CheckAcctNumber", "CostAcctNumber", "IncomAcctNumber",
                   "SellAcctNumber", "ZZCXAcctNumber"},
        .order = "FNumber",
        .id_argument = "CheckTypeID",
        .prepare = PrepareAccounts,
        .references = {ToAccount("FAdjustAcctID"), ToAccount("FCheckAcctID"),
                       ToAccount("FCostAcctID"), ToAccount("FIncomAcctID"),
                       ToAccount("FSellAcctID"), ToAccount("FZZCXAcctID")},
    },
    {{"FAdjustAcctID", Long{1}, Long{2}},
     {"AdjustAcctNumber", "1000", "2000"},
     {"FCheckAcctID", Long{2}, Long{1}},
     {"CheckAcctNumber", "2000", "1000"},
     {"FCostAcctID", Long{1}, Long{2}},
     {"CostAcctNumber", "1000", "2000"},
     {"FIncomAcctID", Long{2}, Long{1}},
     {"IncomAcctNumber", "2000", "1000"},
     {"FSellAcctID", Long{1}, Long{2}},
     {"SellAcctNumber", "1000", "2000"},
     {"FZZCXAcctID", Long{2}, Long{1}},
     {"ZZCXAcctNumber", "2000", "1000"}});
QDCLGL_RECORD_KIND(CheckType, kCheckTypes);

const RecordKind kPayments = OfSettlement(
    {
        .noun = "Payment term",
        .subject = "Payment",
        .info = "QDSVGLPayment.PaymentInfo",
        .update = "QDSVGLPayment.PaymentUpdate",
        .table = "t_Payment",
        .id = "FItemID",
        .columns = {},
        .absent = {{"FType", "1"}},
        .order = "FNumber",
        .id_argument = "PaymentID",
    },
    {{"FBeforeDays", Integer{5}, Integer{999}},
     {"FMonthPayDay", Integer{31}, Integer{1}},
     {"FType", "2", "net"},
     {"FStandDays", Integer{30}, Integer{0}}});
QDCLGL_RECORD_KIND(Payment, kPayments);

// ---- Rules of their own ----

class SettlementTest : public RecordsTest {
 protected:
  static constexpr const char* kComponents[] = {
      "QDSVGLSettType.SettType", "QDSVGLSettAcct.SettAcct", "QDSVGLCheckType.CheckType",
      "QDSVGLPayment.Payment"};

  Long Existence(const std::string& component, Argument argument) {
    return Call(component + "Info", "ExistenceCheck", props, std::move(argument)).As<Long>();
  }
};

TEST_P(SettlementTest, NumbersAreCodesOfUpTo80Characters) {
  const std::string before = State();
  for (const std::string component : kComponents) {
    for (const std::string& number : {std::string("A-B"), std::string("A.B"), std::string("A B"),
                                      std::string("元"), std::string(81, 'A')}) {
      EXPECT_EQ(RefusalOf([&] {
                  Create(*this, component, Row({{"FNumber", number}}));
                }),
                "BadNumber")
          << component << " " << number;
    }
  }
  EXPECT_EQ(SentenceOf([&] {
              Create(*this, kComponents[0], Row({{"FNumber", "A-B"}, {"FName", "Check"}}));
            }),
            "Settlement type A-B (Check): a number has 1 to 80 letters, digits and underscores.");
  EXPECT_EQ(State(), before);
  for (const std::string component : kComponents) {
    Create(*this, component, Row({{"FNumber", std::string(80, 'a')}}));
    EXPECT_NE(Existence(component, Named("Number", std::string(80, 'A'))), 0);
  }
}

TEST_P(SettlementTest, RecordsAreFoundByTheirNamesToo) {
  for (const std::string component : kComponents) {
    const Long first = Create(*this, component, Row({{"FNumber", "B"}, {"FName", "Same"}}));
    Create(*this, component, Row({{"FNumber", "A"}, {"FName", "Same"}}));
    Create(*this, component, Row({{"FNumber", "C"}}));
    EXPECT_EQ(Existence(component, Named("Name", "Same")), first) << "the first one saved";
    EXPECT_EQ(Existence(component, Named("Name", "same")), 0);
    EXPECT_EQ(Existence(component, Named("Name", "")), 0) << "none is found by no name";
    EXPECT_EQ(Existence(component, Named("Name", Missing)), 0);
  }
}

TEST_P(SettlementTest, WhetherARecordIsDeletedIsZeroOrOne) {
  for (const std::string component : kComponents) {
    const Ref<Dictionary> row = Row({{"FNumber", "A"}, {"FDeleted", Integer{-1}}});
    Long id = Create(*this, component, row);
    const auto mark = [&] {
      return ValueText(Call(component + "Info", "GetDetail", props, ByRef(id))
                           .As<Dictionary>()
                           ->Value("FDeleted"));
    };
    EXPECT_EQ(mark(), "1") << component;
    row->Put("FDeleted", false);
    Call(component + "Update", "Update", props, ByRef(id), row);
    EXPECT_EQ(mark(), "0") << component;
  }
}

TEST_P(SettlementTest, PaymentTermsStandWithinACalendar) {
  const auto outcome = [&](std::string_view column, Integer days) {
    return RefusalOf([&] {
      Create(*this, "QDSVGLPayment.Payment", Row({{"FNumber", NextNumber()}, {column, days}}));
    });
  };
  for (const auto& [column, largest] : {std::pair("FMonthPayDay", Integer{31}),
                                        {"FBeforeDays", Integer{999}},
                                        {"FStandDays", Integer{999}}}) {
    const std::string before = State();
    EXPECT_EQ(outcome(column, -1), "BadValue") << column;
    EXPECT_EQ(outcome(column, static_cast<Integer>(largest + 1)), "BadValue") << column;
    EXPECT_EQ(State(), before);
    EXPECT_EQ(outcome(column, 0), "none") << column;
    EXPECT_EQ(outcome(column, largest), "none") << column;
  }
  EXPECT_EQ(SentenceOf([&] {
              Create(*this, "QDSVGLPayment.Payment",
                     Row({{"FNumber", "NET"}, {"FMonthPayDay", Integer{99}}}));
            }),
            "Payment term NET (): FMonthPayDay is 0 to 31.");
}

TEST_P(SettlementTest, AnAccountIsHeldByEachColumnThatNamesIt) {
  const Long account = AddAccount("1000", "Cash");
  const auto removal = [&] {
    return SentenceOf([&] { Call("QDSVGLAccount.AccountUpdate", "Delete", props, Long{account}); });
  };
  const Long check =
      Create(*this, "QDSVGLCheckType.CheckType",
             Row({{"FNumber", "CHQ"}, {"FName", "Check"}, {"FZZCXAcctID", account}}));
  EXPECT_EQ(removal(), "Account 1000 (Cash): check type CHQ (Check) refers to it.");
  Call("QDSVGLCheckType.CheckTypeUpdate", "Delete", props, Long{check});
  const Long settlement =
      Create(*this, "QDSVGLSettAcct.SettAcct", Row({{"FNumber", "TILL"}, {"FAcctID", account}}));
  EXPECT_EQ(removal(), "Account 1000 (Cash): settlement account TILL () refers to it.");
  Call("QDSVGLSettAcct.SettAcctUpdate", "Delete", props, Long{settlement});
  EXPECT_EQ(removal(), "");
}

QDCLGL_BOOKS_TEST(SettlementTest);

}  // namespace
}  // namespace qdclgl::server::testing

#include "qdclgl/server/access/audit.h"

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

class AuditTest : public RecordsTest {
 protected:
  // Who came and went is left out, unless a filter asks for it.
  Ref<Recordset> List(std::string filter = "FSubject <> 'Session'", std::string sort = "") {
    return Call("QDSVGLAudit.AuditInfo", "GetList", props, ByRef(filter), ByRef(sort))
        .As<Recordset>();
  }
  std::string Head() { return Call("QDSVGLAudit.AuditInfo", "GetHead", props).As<String>(); }
};

TEST_P(AuditTest, TheTrailOfNewBooksTellsOfTheirMaking) {
  const auto list = List();
  EXPECT_EQ(TextOf(list, {"FUserID", "FUserName", "FSubject", "FRecordID", "FRecord", "FAction",
                          "FNumber"}),
            "1 administrator Setting 0  Create 1\n"
            "1 administrator Currency 1 EUR (EUR) Create 1\n"
            "1 administrator ItemClass 1 DEP (部门) Create 1\n"
            "1 administrator ItemClass 2 STAFF (职员) Create 1\n"
            "1 administrator ItemClass 3 CUSTOMER (客户) Create 1\n"
            "1 administrator ItemClass 4 SUPPLIER (供应商) Create 1\n"
            "1 administrator ItemClass 5 GOODS (商品) Create 1\n"
            "1 administrator User 1 administrator Create 1\n");
  EXPECT_EQ(TextOf(List("FSubject IN ('Setting', 'Currency')"), {"FChanges"}),
            R"({"new":{"GL.CurrentPeriod":"1","GL.CurrentYear":"2024","GL.PeriodByMonth":"1",)"
            R"("GL.PeriodCount":"12","GL.StartPeriod":"1","GL.StartYear":"2024",)"
            R"("GL.YearStartMonth":"1"}})"
            "\n"
            R"({"new":{"FVersion":1,"FNumber":"EUR","FName":"EUR","FExchangeRate":1,)"
            R"("FOperator":"*","FScale":2,"FFixRate":1}})"
            "\n");
}

TEST_P(AuditTest, ADeedTellsWhoWhatWhereAndWhen) {
  AddUser("anna", "administrator");
  Login("anna");
  AddGroup("Receipts");
  const Ref<Dictionary> deed = List("FSubject = 'VoucherGroup'")->Row();
  EXPECT_EQ(deed->Value("FUserName").As<String>(), "anna");
  EXPECT_EQ(deed->Value("FUserID").As<Long>(), 2);
  EXPECT_EQ(deed->Value("FAction").As<String>(), "Create");
  EXPECT_EQ(deed->Value("FRecord").As<String>(), "Receipts");
  EXPECT_EQ(deed->Value("FOrigin").As<Long>(), 1);
  EXPECT_NE(deed->Value("FMachineName").As<String>(), "");
  const auto time = deed->Value("FTime").As<String>();
  EXPECT_EQ(time.size(), std::string("2024-01-31T13:05:00Z").size());
  EXPECT_TRUE(time.starts_with("20") && time.ends_with("Z") && time[10] == 'T') << time;
}

TEST_P(AuditTest, TheTrailIsListedInOrderUnlessSorted) {
  for (const char* name : {"b", "a", "c"}) AddGroup(name);
  const std::string groups = "FSubject = 'VoucherGroup'";
  EXPECT_EQ(TextOf(List(groups), {"FRecord"}), "b\na\nc\n");
  EXPECT_EQ(TextOf(List(groups, "FRecord DESC"), {"FRecord"}), "c\nb\na\n");
  EXPECT_EQ(TextOf(List("FRecord IN ('a', 'c') AND FTime > '2024-01-01'"), {"FRecord"}), "a\nc\n");
  EXPECT_EQ(RefusalOf([&] { List("FPassword = ''"); }), "BadFilter");
  EXPECT_EQ(RefusalOf([&] { List("", "FAuditID; DELETE FROM t_Audit"); }), "BadSort");
}

TEST_P(AuditTest, RefusedCallsLeaveNoTrace) {
  AddGroup("Receipts");
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "NameTaken");
  EXPECT_EQ(List("FSubject = 'VoucherGroup'")->RecordCount(), 1);
}

TEST_P(AuditTest, EveryReaderReadsAndStrangersDoNot) {
  AddUser("anna", "reader");
  Login("anna");
  EXPECT_EQ(List()->RecordCount(), 9);
  EXPECT_NE(Head(), "");
  for (const char* method : {"GetList", "GetHead"}) {
    EXPECT_EQ(RefusalOf([&] { Call("QDSVGLAudit.AuditInfo", method, connection); }), "NotLoggedIn");
  }
}

QDCLGL_BOOKS_TEST(AuditTest);

}  // namespace
}  // namespace qdclgl::server::testing

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
};

TEST_P(AuditTest, NewBooksHaveAnEmptyTrail) { EXPECT_EQ(List()->RecordCount(), 0); }

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
  EXPECT_EQ(TextOf(List(), {"FRecord"}), "b\na\nc\n");
  EXPECT_EQ(TextOf(List("FSubject <> 'Session'", "FRecord DESC"), {"FRecord"}), "c\nb\na\n");
  EXPECT_EQ(TextOf(List("FRecord IN ('a', 'c') AND FTime > '2024-01-01'"), {"FRecord"}), "a\nc\n");
  EXPECT_EQ(RefusalOf([&] { List("FPassword = ''"); }), "BadFilter");
  EXPECT_EQ(RefusalOf([&] { List("", "FAuditID; DELETE FROM t_Audit"); }), "BadSort");
}

TEST_P(AuditTest, RefusedCallsLeaveNoTrace) {
  AddGroup("Receipts");
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "NameTaken");
  EXPECT_EQ(List()->RecordCount(), 1);
}

TEST_P(AuditTest, EveryReaderReadsAndStrangersDoNot) {
  AddUser("anna", "reader");
  Login("anna");
  EXPECT_EQ(List()->RecordCount(), 1);
  EXPECT_EQ(RefusalOf([&] { Call("QDSVGLAudit.AuditInfo", "GetList", connection); }),
            "NotLoggedIn");
}

QDCLGL_BOOKS_TEST(AuditTest);

}  // namespace
}  // namespace qdclgl::server::testing

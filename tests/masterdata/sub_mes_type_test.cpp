#include "qdclgl/masterdata/sub_mes_type.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/failing_events.h"
#include "tests/support/family.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::RecordingServer;
using testing::StateText;

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";

class SubMesTypeTest : public ::testing::Test {
 protected:
  SubMesTypeTest() {
    server.AnswerWith(kInfo, "GetSubMesTypeList", [](std::span<Argument>) {
      return Variant(Recordset::Create({"FTypeID", "FName"}));
    });
  }
  // What Remove of a key does: "deletes 5" or the error.
  std::string OutcomeOf(const Variant& key) {
    const std::string error = ErrorOf([&] { types->Remove(key); });
    const std::string log = server.TakeLog();
    if (log.empty()) return error;
    const std::string head = "create QDSVGLItem.ItemUpdate\ncall DeleteSubMesType(\"props\", ref ";
    const std::string tail = ", \"HOST\", \"10.0.0.1\")\n"
                             "create QDSVGLItem.ItemInfo\n"
                             "call GetSubMesTypeList(\"props\", Missing, ref \"\") -> "
                             "recordset{FTypeID, FName}\n";
    if (error != "no error" || !log.starts_with(head) || !log.ends_with(tail)) return error + log;
    return "deletes " + log.substr(head.size(), log.size() - head.size() - tail.size());
  }

  RecordingServer server;
  Ref<SubMesTypeSet> types = Make<SubMesTypeSet>();
};

TEST_F(SubMesTypeTest, BothClassesHaveTheirMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<SubMesType>(),
            "CancelChanges Construct Refresh SaveChanges Name TypeID UUID");
  EXPECT_EQ(testing::MemberNames<SubMesTypeSet>(),
            "Filter CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh Remove Count Item "
            "RecordSet");
  EXPECT_EQ(types->Members()->default_member(), nullptr);
}

TEST_F(SubMesTypeTest, AMemberThatIsOnlyReadCannotBeLet) {
  Ref<Object> type = Make<SubMesType>();
  EXPECT_EQ(ErrorOf([&] { type->Let("TypeID", Long{5}); }),
            "error 438 (SubMesType): The member TypeID can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { type->Get("Modified"); }), "error 438 (SubMesType): No member Modified.");
}

TEST_F(SubMesTypeTest, RemoveRefusesTheTypesThatTheSystemComesWith) {
  const std::string preset = "error 5: 系统预设数据不能删除。";
  for (const Long id : {21, 22, 499, 601, 602, 999}) EXPECT_EQ(OutcomeOf(id), preset) << id;
  for (const Long id : {-1, 1, 19, 20, 500, 501, 600, 1000, 1001}) {
    EXPECT_EQ(OutcomeOf(id), "deletes " + std::to_string(id));
  }
  EXPECT_EQ(OutcomeOf(20.5), "deletes 20");
  EXPECT_EQ(OutcomeOf(20.6), preset);
}

TEST_F(SubMesTypeTest, RemoveOfAnyOtherKeyGoesToTheServerAsIdZero) {
  std::vector<Variant> keys = testing::OtherKeys();
  keys.insert(keys.end(), {Variant("21"), Variant("Colours"), Variant(Long{0})});
  for (const Variant& key : keys) EXPECT_EQ(OutcomeOf(key), "deletes 0") << StateText(key);
}

TEST_F(SubMesTypeTest, TheFilterGoesByReferenceBehindAnArgumentLeftOut) {
  server.AnswerWith(kInfo, "GetSubMesTypeList", [](std::span<Argument> arguments) {
    arguments[2].Put(Variant("back"));
    return Variant(Recordset::Create({"FTypeID", "FName"}));
  });
  types->Let("Filter", "FName = 'x'");
  EXPECT_EQ(types->Count(), 0);
  EXPECT_EQ(types->Filter(), "back");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItem.ItemInfo\n"
                              "call GetSubMesTypeList(\"props\", Missing, ref \"FName = 'x'\") -> "
                              "recordset{FTypeID, FName}\n");
}

}  // namespace
}  // namespace qdclgl

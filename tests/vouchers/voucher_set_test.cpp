#include "qdclgl/vouchers/voucher_set.h"

#include <gtest/gtest.h>

#include <functional>

#include "qdclgl/frame/objects/class_table.h"
#include "tests/support/recording_server.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::List;
using testing::RecordingServer;
using testing::Row;
using testing::State;
using testing::StateText;
using testing::WholeState;

constexpr const char* kInfo = "QDSVGLVoucher.VoucherInfo";
constexpr const char* kUpdate = "QDSVGLVoucher.VoucherUpdate";

const std::string kThreeVouchers = "recordset{FVoucherID, FNumber | 1, 11 | 2, 12 | 3, Null}";

Ref<Recordset> ThreeVouchers() {
  auto list = Recordset::Create({"FVoucherID", "FNumber"});
  list->AddRow({Long{1}, Long{11}});
  list->AddRow({Long{2}, Long{12}});
  list->AddRow({Long{3}, Null});
  return list;
}

class VoucherSetTest : public ::testing::Test {
 protected:
  // The log of one call of the reading or of the writing component.
  static std::string Read(const std::string& call) {
    return "create QDSVGLVoucher.VoucherInfo\ncall " + call + "\n";
  }
  static std::string Written(const std::string& call) {
    return "create QDSVGLVoucher.VoucherUpdate\ncall " + call + "\n";
  }

  RecordingServer server;
  Ref<VoucherSet> vouchers = Make<VoucherSet>();
};

TEST_F(VoucherSetTest, HasItsMembersInInterfaceOrder) {
  std::string text;
  for (const ClassMember& member : VoucherSet::Table().members()) {
    text += std::string(member.row.name) + "(";
    for (const MemberParameter& parameter : member.parameters) {
      text += (&parameter == &member.parameters.front() ? "" : ", ") +
              std::string(parameter.optional ? "[" : "") + parameter.name +
              (parameter.type == "Variant" ? "" : " As " + std::string(parameter.type)) +
              (parameter.optional ? "]" : "");
    }
    text += ")" + std::string(member.row.get != nullptr ? " get" : "") +
            (member.row.let != nullptr ? " let" : "") + (member.row.set != nullptr ? " set" : "") +
            "\n";
  }
  EXPECT_EQ(text,
            "ListOptions() get let\n"
            "Filter() get let\n"
            "Sort() get let\n"
            "Cash(VoucherID As Long, Cashed As Boolean)\n"
            "Check(VoucherID As Long, Checked As Boolean)\n"
            "CreateNew([nYear As Long], [Period], [Group], [Number])\n"
            "ExistenceCheck([VoucherID], [nYear], [Period], [Group], [Number])\n"
            "GetCurrent()\n"
            "GetLastVchDateThisPeriod()\n"
            "GetNext()\n"
            "NewEnum()\n"
            "Post(VoucherID As Long)\n"
            "PostAll()\n"
            "Refresh()\n"
            "Remove([Key], [nYear], [Period], [Group], [Number])\n"
            "UnPost(VoucherID As Long)\n"
            "UnPostAll()\n"
            "Count() get\n"
            "Item([Key], [nYear As Long], [Period As Long], [Group As String], [Number As Long], "
            "[ShowDeleted As Boolean]) get\n"
            "RecordSet() get set\n");
}

// ---- The list ----

TEST_F(VoucherSetTest, AVoucherOfTheListHasNoLinesUntilItIsRead) {
  vouchers->RecordSet(ThreeVouchers());
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FVoucherID", Long{1}}, {"_Entries", List({Row({}), Row({})})}})));
  const auto voucher = vouchers->GetCurrent();
  EXPECT_EQ(voucher->Entries()->Count(), 0);
  EXPECT_EQ(server.TakeLog(), "");
  voucher->Refresh();
  EXPECT_EQ(voucher->Entries()->Count(), 2);
  EXPECT_EQ(server.TakeLog(),
            Read("GetDetail(\"props\", ref 1, ref False) -> {FVoucherID: 1, _Entries: [{}, {}]}"));
}

// ---- Item ----

TEST_F(VoucherSetTest, ItemOfAnyOtherKeyReadsTheVoucherByItsPartsByReference) {
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FVoucherID", Long{5}}})));
  const Variant keys[] = {Missing, "5",         "",          Variant(), Null,
                          true,    Currency(5), DateTime(5), Nothing,   Variant(Row({}))};
  for (const Variant& key : keys) {
    EXPECT_EQ(State(*vouchers->Item(key)), "id 5 {FVoucherID: 5}") << StateText(key);
    EXPECT_EQ(server.TakeLog(), Read("GetDetailByNumber(\"props\", ref 0, ref 0, ref \"\", ref 0, "
                                     "ref False) -> {FVoucherID: 5}"));
    vouchers->Item(key, 2024, 3, "J", 17, true);
    EXPECT_EQ(server.TakeLog(), Read("GetDetailByNumber(\"props\", ref 2024, ref 3, ref \"J\", ref "
                                     "17, ref True) -> {FVoucherID: 5}"));
  }
}

TEST_F(VoucherSetTest, ItemOfANumberDoesNotLookAtTheParts) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  vouchers->Item(5, 2024, 3, "J", 17);
  EXPECT_EQ(server.TakeLog(), Read("GetDetail(\"props\", 5, ref False) -> {FVoucherID: 5}"));
}

TEST_F(VoucherSetTest, AVoucherAskedForWithShowDeletedKeepsAskingSo) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FVoucherID", Long{6}}})));
  const auto by_id = vouchers->Item(5, 0, 0, "", 0, true);
  const auto by_parts = vouchers->Item(Missing, 2024, 3, "J", 17, true);
  const auto plain = vouchers->Item(5);
  EXPECT_EQ(server.TakeLog(),
            Read("GetDetail(\"props\", 5, ref True) -> {FVoucherID: 5}") +
                Read("GetDetailByNumber(\"props\", ref 2024, ref 3, ref \"J\", ref 17, ref True) "
                     "-> {FVoucherID: 6}") +
                Read("GetDetail(\"props\", 5, ref False) -> {FVoucherID: 5}"));
  by_id->Refresh();
  by_parts->Refresh();
  plain->Refresh();
  EXPECT_EQ(server.TakeLog(),
            Read("GetDetail(\"props\", ref 5, ref True) -> {FVoucherID: 5}") +
                Read("GetDetail(\"props\", ref 6, ref True) -> {FVoucherID: 5}") +
                Read("GetDetail(\"props\", ref 5, ref False) -> {FVoucherID: 5}"));
}

TEST_F(VoucherSetTest, ItemTakesHolesAndNamesLateBound) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FVoucherID", Long{6}}})));
  const Ref<Object> late = vouchers;
  const auto voucher = late->Get("Item", 5, Missing, Missing, Missing, Missing, true).As<Voucher>();
  voucher->Refresh();
  EXPECT_EQ(server.TakeLog(), Read("GetDetail(\"props\", 5, ref True) -> {FVoucherID: 5}") +
                                  Read("GetDetail(\"props\", ref 5, ref True) -> {FVoucherID: 5}"));
  late->Get("Item");
  late->Get("item", Missing, 2024, Missing, "J");
  late->Get("Item", Named("number", "17"), Named("NYEAR", 2024));
  late->Get("Item", "17");
  late->Get("Item", 5, Named("ShowDeleted", 1));
  EXPECT_EQ(server.TakeLog(),
            Read("GetDetailByNumber(\"props\", ref 0, ref 0, ref \"\", ref 0, ref False) -> "
                 "{FVoucherID: 6}") +
                Read("GetDetailByNumber(\"props\", ref 2024, ref 0, ref \"J\", ref 0, ref False) "
                     "-> {FVoucherID: 6}") +
                Read("GetDetailByNumber(\"props\", ref 2024, ref 0, ref \"\", ref 17, ref False) "
                     "-> {FVoucherID: 6}") +
                Read("GetDetailByNumber(\"props\", ref 0, ref 0, ref \"\", ref 0, ref False) -> "
                     "{FVoucherID: 6}") +
                Read("GetDetail(\"props\", 5, ref True) -> {FVoucherID: 5}"));
  EXPECT_EQ(ErrorOf([&] { late->Get("Item", Named("Name", "x")); }), "error 448");
  EXPECT_EQ(ErrorOf([&] { late->Get("Item", 1, 2, 3, "4", 5, true, 7); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { late->Get("Item", Missing, "soon"); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- ExistenceCheck ----

TEST_F(VoucherSetTest, ExistenceCheckPassesAYearThatIsLeftOutAsMissing) {
  server.Answer(kInfo, "ExistenceCheck", Long{5});
  EXPECT_EQ(vouchers->ExistenceCheck(Missing, Missing, 3, "J", 17), 5);
  EXPECT_EQ(server.TakeLog(),
            Read("ExistenceCheck(\"props\", nYear:=ref Variant Missing, Period:=ref Variant 3, "
                 "Group:=ref Variant \"J\", Number:=ref Variant 17) -> 5"));
}

TEST_F(VoucherSetTest, ExistenceCheckWithoutPeriodGroupAndNumberMakesTheComponentAndNoCall) {
  EXPECT_EQ(vouchers->ExistenceCheck(), 0);
  EXPECT_EQ(vouchers->ExistenceCheck(Missing, 2024), 0);
  EXPECT_EQ(vouchers->ExistenceCheck(Missing, 2024, 3, "J"), 0);
  EXPECT_EQ(vouchers->ExistenceCheck(Missing, 2024, 3, Missing, 17), 0);
  EXPECT_EQ(vouchers->ExistenceCheck(Missing, 2024, Missing, "J", 17), 0);
  std::string created;
  for (int i = 0; i < 5; ++i) created += "create QDSVGLVoucher.VoucherInfo\n";
  EXPECT_EQ(server.TakeLog(), created);
}

TEST_F(VoucherSetTest, ExistenceCheckTakesNamedAndLeftOutArgumentsLateBound) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  const Ref<Object> late = vouchers;
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Missing, Missing, 3, "J", 17)), "7");
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Named("number", 17), Named("group", "J"),
                                 Named("period", 3))),
            "7");
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Named("voucherid", 7))), "7");
  EXPECT_EQ(StateText(late->Call("ExistenceCheck")), "0");
  const std::string by_parts =
      Read("ExistenceCheck(\"props\", nYear:=ref Variant Missing, Period:=ref Variant 3, "
           "Group:=ref Variant \"J\", Number:=ref Variant 17) -> 7");
  EXPECT_EQ(server.TakeLog(), by_parts + by_parts +
                                  Read("ExistenceCheck(\"props\", ref Variant 7) -> 7") +
                                  "create QDSVGLVoucher.VoucherInfo\n");
}

// ---- CreateNew ----

TEST_F(VoucherSetTest, CreateNewWritesTheYearAlwaysAndTheRestWhereItIsGiven) {
  EXPECT_EQ(WholeState(*vouchers->CreateNew()), "id 0 {FYear: 0} modified flagged from Nothing");
  EXPECT_EQ(State(*vouchers->CreateNew(2024)), "id 0 {FYear: 2024} modified flagged");
  EXPECT_EQ(State(*vouchers->CreateNew(2024, 3, 9, 17)),
            "id 0 {FYear: 2024, FPeriod: 3, FGroupID: 9, FNumber: 17} modified flagged");
  EXPECT_EQ(State(*vouchers->CreateNew(2024, Missing, "9")),
            "id 0 {FYear: 2024, FGroupID: 9} modified flagged");
  EXPECT_EQ(State(*vouchers->CreateNew(2024, 0, Variant(), 2.5)),
            "id 0 {FYear: 2024, FPeriod: 0, FGroupID: 0, FNumber: 2} modified flagged");
  EXPECT_TRUE(vouchers->CreateNew()->Modified());
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherSetTest, CreateNewTakesTheIdOfTheGroupAndNotItsWord) {
  EXPECT_EQ(ErrorOf([&] { vouchers->CreateNew(2024, 3, "J", 17); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { vouchers->CreateNew(2024, Null); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { vouchers->CreateNew(2024, 3, 9, 3e9); }), "error 6");
}

TEST_F(VoucherSetTest, CreateNewTakesNamedAndLeftOutArgumentsLateBound) {
  const Ref<Object> late = vouchers;
  EXPECT_EQ(State(*late->Call("CreateNew").As<Voucher>()), "id 0 {FYear: 0} modified flagged");
  EXPECT_EQ(State(*late->Call("CreateNew", Missing, 3, Missing, 17).As<Voucher>()),
            "id 0 {FYear: 0, FPeriod: 3, FNumber: 17} modified flagged");
  EXPECT_EQ(State(*late->Call("CreateNew", Named("Group", 9)).As<Voucher>()),
            "id 0 {FYear: 0, FGroupID: 9} modified flagged");
}

TEST_F(VoucherSetTest, ACreatedVoucherIsSavedAsItStands) {
  server.Answer(kUpdate, "Create", Long{8});
  vouchers->CreateNew()->SaveChanges1();
  EXPECT_EQ(server.TakeLog(), Written("Create(\"props\", {FYear: 0, MachineName: \"HOST\", "
                                      "IPAddress: \"10.0.0.1\"}) -> 8"));
}

// ---- Remove ----

TEST_F(VoucherSetTest, RemoveByPartsLooksTheVoucherUpFirst) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  vouchers->Remove(Missing, 2024, 3, "J", 17);
  EXPECT_EQ(server.TakeLog(),
            Read("ExistenceCheck(\"props\", nYear:=ref Variant 2024, Period:=ref Variant 3, "
                 "Group:=ref Variant \"J\", Number:=ref Variant 17) -> 7") +
                Written("Delete(\"props\", ref 7, False, \"HOST\", \"10.0.0.1\")"));
  const Ref<Object> late = vouchers;
  late->Call("Remove", Missing, Missing, 3, "J", 17);
  EXPECT_EQ(server.TakeLog(),
            Read("ExistenceCheck(\"props\", nYear:=ref Variant Missing, Period:=ref Variant 3, "
                 "Group:=ref Variant \"J\", Number:=ref Variant 17) -> 7") +
                Written("Delete(\"props\", ref 7, False, \"HOST\", \"10.0.0.1\")"));
}

TEST_F(VoucherSetTest, RemoveByPartsOfAnUnknownVoucherRaisesFive) {
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(ErrorOf([&] { vouchers->Remove(Missing, 2024, 3, "J", 17); }), "error 5");
  EXPECT_EQ(server.TakeLog(),
            Read("ExistenceCheck(\"props\", nYear:=ref Variant 2024, Period:=ref Variant 3, "
                 "Group:=ref Variant \"J\", Number:=ref Variant 17) -> 0"));
}

TEST_F(VoucherSetTest, RemoveWithoutAUsableKeyRaisesFiveWithoutAServerCall) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  const Variant keys[] = {"17",        "",          Variant(), Null, true,
                          Currency(5), DateTime(5), Nothing,   0,    0.5};
  for (const Variant& key : keys) {
    EXPECT_EQ(ErrorOf([&] { vouchers->Remove(key, 2024, 3, "J", 17); }), "error 5")
        << StateText(key);
  }
  EXPECT_EQ(ErrorOf([&] { vouchers->Remove(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { vouchers->Remove(Missing, 2024, 3, "J"); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { vouchers->Remove(Missing, 2024, 3, Missing, 17); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { vouchers->Remove(Missing, 2024, Missing, "J", 17); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { vouchers->Call("Remove"); }), "error 5");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- Check, Cash, Post and what does nothing ----

TEST_F(VoucherSetTest, CheckAndCashPassTheIdAndTheStateByReference) {
  vouchers->Check(5, true);
  vouchers->Check(5, false);
  vouchers->Cash(6, true);
  vouchers->Cash(6, false);
  EXPECT_EQ(server.TakeLog(), Written("Check(\"props\", ref 5, ref True)") +
                                  Written("Check(\"props\", ref 5, ref False)") +
                                  Written("Cash(\"props\", ref 6, ref True)") +
                                  Written("Cash(\"props\", ref 6, ref False)"));
}

TEST_F(VoucherSetTest, CheckAndCashOfIdZeroDoNothing) {
  vouchers->Check(0, true);
  vouchers->Cash(0, true);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherSetTest, PostAndUnPostPassAnyIdByReference) {
  vouchers->Post(5);
  vouchers->Post(0);
  vouchers->UnPost(5);
  vouchers->UnPost(0);
  EXPECT_EQ(server.TakeLog(),
            Written("Post(\"props\", ref 5)") + Written("Post(\"props\", ref 0)") +
                Written("UnPost(\"props\", ref 5)") + Written("UnPost(\"props\", ref 0)"));
}

TEST_F(VoucherSetTest, AnOpenVoucherDoesNotLearnOfTheShortForms) {
  vouchers->RecordSet(ThreeVouchers());
  const auto voucher = vouchers->GetCurrent();
  vouchers->Check(1, true);
  vouchers->Cash(1, true);
  vouchers->Post(1);
  EXPECT_EQ(WholeState(*voucher),
            "id 1 {FVoucherID: 1, FNumber: 11} from {FVoucherID: 1, FNumber: 11}");
  EXPECT_EQ(StateText(Variant(vouchers->RecordSet())), kThreeVouchers);
}

TEST_F(VoucherSetTest, TheShortFormsConvertTheirArgumentsLateBound) {
  const Ref<Object> late = vouchers;
  late->Call("Check", "5", 1);
  late->Call("Cash", Named("Cashed", false), Named("VoucherID", 6));
  late->Call("Post", 7.0);
  late->Call("UnPost", "8");
  EXPECT_EQ(server.TakeLog(), Written("Check(\"props\", ref 5, ref True)") +
                                  Written("Cash(\"props\", ref 6, ref False)") +
                                  Written("Post(\"props\", ref 7)") +
                                  Written("UnPost(\"props\", ref 8)"));
  EXPECT_EQ(ErrorOf([&] { late->Call("Check", 5); }), "error 449");
  EXPECT_EQ(ErrorOf([&] { late->Call("Post"); }), "error 449");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(VoucherSetTest, TheMembersWithoutABodyDoNothing) {
  vouchers->PostAll();
  vouchers->UnPostAll();
  EXPECT_EQ(StateText(vouchers->GetLastVchDateThisPeriod()), "Empty");
  const Ref<Object> late = vouchers;
  late->Call("PostAll");
  late->Call("UnPostAll");
  EXPECT_EQ(StateText(late->Call("GetLastVchDateThisPeriod")), "Empty");
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(vouchers->RecordSet(), nullptr);
}

// ---- Failures ----

TEST_F(VoucherSetTest, ServerFailuresOfTheOperationsOfVouchersPassUnchanged) {
  const Error failure(-2147217900, "database", "deadlock");
  const std::pair<std::function<void()>, int> operations[] = {
      {[&] { vouchers->Item(); }, 2},
      {[&] { vouchers->Remove(Missing, 2024, 3, "J", 17); }, 4},
      {[&] { vouchers->Post(5); }, 2},
      {[&] { vouchers->UnPost(5); }, 2},
      {[&] { vouchers->Check(5, true); }, 2},
      {[&] { vouchers->Cash(5, true); }, 2},
  };
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  for (std::size_t i = 0; i < std::size(operations); ++i) {
    const auto& [operation, events] = operations[i];
    for (int position = 1; position <= events; ++position) {
      server.FailAt(position, failure);
      EXPECT_EQ(ErrorOf(operation), "error 0x80040E14 (database): deadlock")
          << "operation " << i << ", event " << position;
      const std::string log = server.TakeLog();
      EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), position) << log;
      EXPECT_EQ(vouchers->RecordSet(), nullptr);
    }
  }
}

}  // namespace
}  // namespace qdclgl

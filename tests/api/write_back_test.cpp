// What a component writes through the references of a call: every call of every class that passes
// some, with a component that writes over all of them. What the caller sees behind the call tells
// which of them are the object's own and which are variables of the call.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/accounts/currency.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/masterdata/item.h"
#include "qdclgl/masterdata/item_class.h"
#include "qdclgl/settings/system_profile.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "qdclgl/vouchers/voucher_set.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::Row;
using testing::StateText;

constexpr const char* kVoucherInfo = "QDSVGLVoucher.VoucherInfo";
constexpr const char* kVoucherUpdate = "QDSVGLVoucher.VoucherUpdate";
constexpr const char* kAccountInfo = "QDSVGLAccount.AccountInfo";
constexpr const char* kAccountUpdate = "QDSVGLAccount.AccountUpdate";
constexpr const char* kGroupInfo = "QDSVGLVoucherGroup.VoucherGroupInfo";
constexpr const char* kGroupUpdate = "QDSVGLVoucherGroup.VoucherGroupUpdate";
constexpr const char* kCurrencyInfo = "QDSVGLCurrency.CurrencyInfo";
constexpr const char* kCurrencyUpdate = "QDSVGLCurrency.CurrencyUpdate";
constexpr const char* kClassInfo = "QDSVGLItemClass.ItemClassInfo";
constexpr const char* kClassUpdate = "QDSVGLItemClass.ItemClassUpdate";
constexpr const char* kItemInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kItemUpdate = "QDSVGLItem.ItemUpdate";
constexpr const char* kProfile = "QDSVBase.SystemProfile";
constexpr const char* kCalendar = "QDCPeriodDate.clsPeriodDate";

// Another value of the variable's type.
Variant OtherThan(const Argument& argument) {
  if (argument.reference().IsVariant()) return "written";
  switch (argument.reference().type()) {
    case VariantType::kBoolean: return !argument.As<Boolean>();
    case VariantType::kString: return "written";
    case VariantType::kDate: return DateTime::FromYmd(2001, 2, 3);
    default: return Long{77};
  }
}

// The calls that a caller's operation makes, and what the caller sees behind it.
std::string Calls(testing::RecordingServer& server) {
  std::string calls, log = server.TakeLog();
  for (std::size_t begin = 0, end; begin < log.size(); begin = end + 1) {
    end = log.find('\n', begin);
    const std::string line = log.substr(begin, end - begin);
    if (line.starts_with("call ")) calls += line.substr(5) + "\n";
  }
  return calls;
}

class WriteBack : public ::testing::Test {
 protected:
  // From now on `method` writes over all of its references and answers.
  void Writes(const char* component, const char* method, Variant answer = {}) {
    server.AnswerWith(component, method, [answer](std::span<Argument> arguments) {
      for (Argument& argument : arguments) {
        if (argument.IsByRef()) argument.Put(OtherThan(argument));
      }
      return answer;
    });
  }

  template <class Entity>
  static Ref<Entity> EntityOf(const Ref<Dictionary>& row) {
    auto entity = Make<Entity>();
    entity->Construct(row, Nothing);
    return entity;
  }

  // Refresh and SaveChanges of the entities that keep to the family's protocol.
  template <class Entity>
  void TheIdIsTheEntitys(const char* info, const char* update, const char* id_key,
                         const char* id_member) {
    SCOPED_TRACE(info);
    const auto row = Row({{id_key, Long{5}}});
    const std::string text = "{" + std::string(id_key) + ": 5}";

    Writes(info, "GetDetail", Variant(row));
    const auto read = EntityOf<Entity>(row);
    read->Refresh();
    EXPECT_EQ(StateText(read->Get(id_member)), "77");
    EXPECT_EQ(Calls(server), "GetDetail(\"props\", ref 5) -> " + text + "\n");

    server.Answer(info, "GetDetail", Variant(row));
    Writes(update, "Update");
    const auto saved = EntityOf<Entity>(row);
    saved->Let("Name", "New");
    saved->SaveChanges();
    EXPECT_EQ(StateText(saved->Get(id_member)), "77");
    const std::string calls = Calls(server);
    EXPECT_TRUE(calls.starts_with("Update(\"props\", ref 5, {")) << calls;
    EXPECT_TRUE(calls.ends_with("\nGetDetail(\"props\", ref 77) -> " + text + "\n")) << calls;
  }

  // The reads, the deletion and the question for existence of a set.
  template <class Set>
  void OnlyTheQueryIsTheSets(const char* info, const char* update) {
    SCOPED_TRACE(info);
    const auto set = Make<Set>();
    Writes(info, "GetList", Variant(Recordset::Create({"FName"})));
    set->Refresh();
    EXPECT_EQ(std::to_string(set->ListOptions()) + " " + set->Filter() + " " + set->Sort(),
              "77 written written");
    server.TakeLog();

    Writes(info, "ExistenceCheck", Long{8});
    Writes(info, "GetDetail", Variant(Row({})));
    Writes(info, "GetDetailByNumber", Variant(Row({})));
    server.Answer("QDSVGLAccount.AccountItemInfo", "GetListByAccount",
                  Variant(Recordset::Create({"FName"})));
    Writes(update, "Delete");
    for (Variant key : {Variant(Long{5}), Variant("text")}) {
      const std::string before = StateText(key);
      set->Call("ExistenceCheck", ByRef(key));
      set->Get("Item", ByRef(key));
      set->Call("Remove", ByRef(key));
      EXPECT_EQ(StateText(key), before);
    }
  }

  testing::RecordingServer server;
};

TEST_F(WriteBack, TheIdOfAnEntityIsItsOwn) {
  TheIdIsTheEntitys<Account>(kAccountInfo, kAccountUpdate, "FAccountID", "AccountID");
  TheIdIsTheEntitys<Currencyx>(kCurrencyInfo, kCurrencyUpdate, "FCurrencyID", "CurrencyID");
  TheIdIsTheEntitys<VoucherGroup>(kGroupInfo, kGroupUpdate, "FGroupID", "VoucherGroupID");
  TheIdIsTheEntitys<Item>(kItemInfo, kItemUpdate, "FItemID", "ItemID");
}

TEST_F(WriteBack, AnItemClassTakesItsIdFromEachCallUntilItsRowIsRead) {
  Writes(kClassInfo, "GetShownF7Fields", Variant(Nothing));
  Writes(kClassInfo, "GetDetail", Variant(Row({{"FItemClassID", Long{6}}})));
  const auto item_class = EntityOf<ItemClass>(Row({{"FItemClassID", Long{5}}}));
  item_class->GetF7ShownFields();
  EXPECT_EQ(item_class->ItemClassID(), 77);
  item_class->Refresh();
  EXPECT_EQ(item_class->ItemClassID(), 6);
  Writes(kClassUpdate, "Update");
  item_class->Name("New");
  item_class->SaveChanges();
  EXPECT_EQ(Calls(server),
            "GetShownF7Fields(\"props\", ref 5) -> Nothing\n"
            "GetDetail(\"props\", ref 77) -> {FItemClassID: 6}\n"
            "Update(\"props\", ref 6, {FItemClassID: 6, FName: \"New\", MachineName: \"HOST\", "
            "IPAddress: \"10.0.0.1\"})\n"
            "GetDetail(\"props\", ref 77) -> {FItemClassID: 6}\n");
}

TEST_F(WriteBack, AnItemTakesItsClassFromTheUpdateOfDefinedFields) {
  server.AnswerWith(kItemUpdate, "UpdateDefineField", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{77}));
    return Variant(true);
  });
  const auto item = EntityOf<Item>(Row({{"FItemClassID", Long{3}}}));
  item->UpdateDefineField();
  EXPECT_EQ(item->ItemClassID(), 77);
}

TEST_F(WriteBack, AnAccountsQuestionsTakeItsIdAndLeaveTheSeparator) {
  for (const char* method : {"CheckAccountInVoucher", "ExistsSpecialChild"}) {
    Writes(kAccountInfo, method, true);
    const auto account = EntityOf<Account>(Row({{"FAccountID", Long{5}}}));
    EXPECT_EQ(StateText(account->Call(method)), "True");
    EXPECT_EQ(account->AccountID(), 77);
    EXPECT_EQ(Calls(server), std::string(method) + "(\"props\", ref 5) -> True\n");
  }
  Writes(kAccountInfo, "GetFullName", "A-B");
  const auto account = EntityOf<Account>(Row({{"FAccountID", Long{5}}}));
  String separator = "-";
  EXPECT_EQ(StateText(account->Call("GetFullName", ByRef(separator))), "\"A-B\"");
  EXPECT_EQ(std::to_string(account->AccountID()) + separator, "77-");
  EXPECT_EQ(Calls(server), "GetFullName(\"props\", ref 5, ref \"-\") -> \"A-B\"\n");
}

TEST_F(WriteBack, AVoucherTakesItsIdAndWhetherItShowsDeletedOnes) {
  Writes(kVoucherInfo, "GetDetail", Variant(Nothing));
  const auto voucher = EntityOf<Voucher>(Row({{"FVoucherID", Long{5}}}));
  voucher->Refresh();
  EXPECT_EQ(voucher->VoucherID(), 77);
  voucher->Refresh();
  EXPECT_EQ(Calls(server), "GetDetail(\"props\", ref 5, ref False) -> Nothing\n"
                           "GetDetail(\"props\", ref 77, ref True) -> Nothing\n");
}

TEST_F(WriteBack, EveryCallOfAVouchersSaveTakesItsIdAndNoneItsConnectionText) {
  struct {
    const char* component;
    const char* method;
    const char* save;
    std::string calls;
  } const cases[] = {
      {kVoucherInfo, "CheckExistCashProfit", "SaveChanges1",
       "CheckExistCashProfit(\"props\", ref 5) -> 3\nClearCashFlow(\"props\", ref 77)\n"
       "Update(\"props\", ref 77, <row>)\n"},
      {kVoucherUpdate, "ClearCashFlow", "SaveChanges1",
       "CheckExistCashProfit(\"props\", ref 5) -> 3\nClearCashFlow(\"props\", ref 5)\n"
       "Update(\"props\", ref 77, <row>)\n"},
      {kVoucherUpdate, "Update", "SaveChanges1",
       "CheckExistCashProfit(\"props\", ref 5) -> 3\nClearCashFlow(\"props\", ref 5)\n"
       "Update(\"props\", ref 5, <row>)\n"},
      // Behind these the accepted row has the word.
      {kVoucherUpdate, "Update", "SaveChanges",
       "CheckExistCashProfit(\"props\", ref 5) -> 3\nClearCashFlow(\"props\", ref 5)\n"
       "Update(\"props\", ref 5, <row>)\n"},
      {kVoucherUpdate, "Update", "SaveChanges2",
       "CheckExistCashProfit(\"props\", ref 5) -> 3\nClearCashFlow(\"props\", ref 5)\n"
       "Update(ref \"<>1props\", ref 5, <row>)\n"},
  };
  for (const auto& [component, method, save, calls] : cases) {
    SCOPED_TRACE(std::string(method) + " in " + save);
    testing::RecordingServer fresh;
    fresh.Answer(kVoucherInfo, "CheckExistCashProfit", Long{3});
    const bool asks = std::string_view(method) == "CheckExistCashProfit";
    fresh.AnswerWith(component, method, [asks](std::span<Argument> arguments) {
      for (Argument& argument : arguments) {
        if (argument.IsByRef()) argument.Put(OtherThan(argument));
      }
      return asks ? Variant(Long{3}) : Variant();
    });
    const auto voucher = EntityOf<Voucher>(Row({{"FVoucherID", Long{5}}}));
    voucher->Number(7);
    voucher->Call(save);
    const bool reloads = std::string_view(save) != "SaveChanges1";
    EXPECT_EQ(voucher->VoucherID(), reloads ? 5 : 77);
    std::string made = Calls(fresh);
    const auto row = made.find('{'), behind = made.find('}', row);
    ASSERT_NE(behind, std::string::npos) << made;
    EXPECT_EQ(made.replace(row, behind + 1 - row, "<row>"), calls);
  }
}

TEST_F(WriteBack, EveryStepOfAVouchersWorkflowTakesItsId) {
  struct {
    const char* member;
    const char* method;
    Ref<Dictionary> row;
    const char* arguments;  // behind the id
  } const cases[] = {
      {"Check", "Check", Row({{"FVoucherID", Long{5}}}), ", True)"},
      {"UnCheck", "Check", Row({{"FVoucherID", Long{5}}, {"FChecked", true}}), ", False)"},
      {"Approve", "Approve", Row({{"FVoucherID", Long{5}}, {"FChecked", true}}), ", True)"},
      {"UnApprove", "Approve",
       Row({{"FVoucherID", Long{5}}, {"FChecked", true}, {"FApproveID", Long{2}}}), ", False)"},
      {"Cash", "Cash", Row({{"FVoucherID", Long{5}}}), ", True, {FVoucherID: 5})"},
      {"UnCash", "Cash", Row({{"FVoucherID", Long{5}}}), ", False, {FVoucherID: 5})"},
  };
  for (const auto& [member, method, row, arguments] : cases) {
    SCOPED_TRACE(member);
    Writes(kVoucherUpdate, method);
    server.Answer(kVoucherInfo, "GetDetail", Variant(Nothing));
    const auto voucher = EntityOf<Voucher>(row);
    voucher->Call(member);
    EXPECT_EQ(voucher->VoucherID(), 77);
    EXPECT_EQ(Calls(server), std::string(method) + "(\"props\", ref 5" + arguments +
                                 "\nGetDetail(\"props\", ref 77, ref False) -> Nothing\n");
  }
}

TEST_F(WriteBack, ASetTakesItsQueryAndLeavesTheCallersKeys) {
  OnlyTheQueryIsTheSets<AccountSet>(kAccountInfo, kAccountUpdate);
  OnlyTheQueryIsTheSets<CurrencySet>(kCurrencyInfo, kCurrencyUpdate);
  OnlyTheQueryIsTheSets<VoucherGroupSet>(kGroupInfo, kGroupUpdate);
  OnlyTheQueryIsTheSets<ItemClassSet>(kClassInfo, kClassUpdate);
}

TEST_F(WriteBack, ASetOfAccountsTakesItsAuthority) {
  const auto accounts = Make<AccountSet>();
  Writes(kAccountInfo, "GetList", Variant(Recordset::Create({"FName"})));
  accounts->Refresh();
  accounts->Refresh();
  EXPECT_NE(Calls(server).find("GetList(\"props\", ref 77, ref \"written\", ref \"written\", "
                               "Missing, ref 77)"),
            std::string::npos);
}

TEST_F(WriteBack, ASearchForAnAccountLeavesTheCallersWords) {
  Writes(kAccountInfo, "ExistenceCheck", Long{8});
  const auto accounts = Make<AccountSet>();
  Variant number = "1001", helper = "cash";
  accounts->Call("ExistenceCheck", Missing, ByRef(number));
  accounts->Call("ExistenceCheck", Missing, Missing, ByRef(helper));
  EXPECT_EQ(StateText(number) + StateText(helper), "\"1001\"\"cash\"");
  EXPECT_EQ(Calls(server), "ExistenceCheck(\"props\", Number:=ref Variant \"1001\") -> 8\n"
                           "ExistenceCheck(\"props\", HelperCode:=ref Variant \"cash\") -> 8\n");
}

TEST_F(WriteBack, TheRemovalOfAGroupLeavesTheCallersSign) {
  Writes(kGroupUpdate, "Delete");
  const auto groups = Make<VoucherGroupSet>();
  Long key = 5, sign = 1;
  groups->Call("Remove", ByRef(key), ByRef(sign));
  EXPECT_EQ(std::to_string(key) + " " + std::to_string(sign), "5 1");
  EXPECT_TRUE(Calls(server).ends_with(", ref 1)\n"));
}

TEST_F(WriteBack, ASetOfVouchersTakesItsQueryAndLeavesEverythingElse) {
  const auto vouchers = Make<VoucherSet>();
  Writes(kVoucherInfo, "GetList", Variant(Recordset::Create({"FName"})));
  vouchers->Refresh();
  EXPECT_EQ(
      std::to_string(vouchers->ListOptions()) + " " + vouchers->Filter() + " " + vouchers->Sort(),
      "77 written written");
  server.TakeLog();

  Writes(kVoucherInfo, "ExistenceCheck", Long{8});
  for (const char* method : {"Cash", "Check", "Post", "UnPost", "Delete"}) {
    Writes(kVoucherUpdate, method);
  }
  Long id = 5;
  Boolean state = true;
  Variant key = Long{5}, year = Long{2024}, period = Long{3}, group = Long{1}, number = Long{9};
  vouchers->Call("Cash", ByRef(id), ByRef(state));
  vouchers->Call("Check", ByRef(id), ByRef(state));
  vouchers->Call("Post", ByRef(id));
  vouchers->Call("UnPost", ByRef(id));
  vouchers->Call("ExistenceCheck", ByRef(key));
  vouchers->Call("ExistenceCheck", Missing, ByRef(year), ByRef(period), ByRef(group),
                 ByRef(number));
  vouchers->Call("Remove", ByRef(key));
  EXPECT_EQ(std::to_string(id) + (state ? " True " : " False ") + StateText(key) + " " +
                StateText(year) + " " + StateText(period) + " " + StateText(group) + " " +
                StateText(number),
            "5 True 5 2024 3 1 9");
  const std::string calls = Calls(server);
  EXPECT_EQ(calls.substr(0, calls.find("Delete")),
            "Cash(\"props\", ref 5, ref True)\n"
            "Check(\"props\", ref 5, ref True)\n"
            "Post(\"props\", ref 5)\n"
            "UnPost(\"props\", ref 5)\n"
            "ExistenceCheck(\"props\", ref Variant 5) -> 8\n"
            "ExistenceCheck(\"props\", nYear:=ref Variant 2024, Period:=ref Variant 3, "
            "Group:=ref Variant 1, Number:=ref Variant 9) -> 8\n");
}

TEST_F(WriteBack, AVoucherFromASetTakesWhetherItShowsDeletedOnes) {
  Writes(kVoucherInfo, "GetDetail", Variant(Row({{"FVoucherID", Long{5}}})));
  Writes(kVoucherInfo, "GetDetailByNumber", Variant(Row({{"FVoucherID", Long{5}}})));
  const auto vouchers = Make<VoucherSet>();
  Long year = 2024, period = 3, number = 9;
  String group = "1";
  Boolean deleted = false;
  Ref<Voucher> by_id =
      vouchers->Get("Item", Long{5}, Missing, Missing, Missing, Missing, ByRef(deleted))
          .As<Voucher>();
  Ref<Voucher> by_number = vouchers
                               ->Get("Item", Missing, ByRef(year), ByRef(period), ByRef(group),
                                     ByRef(number), ByRef(deleted))
                               .As<Voucher>();
  EXPECT_EQ(std::to_string(year) + std::to_string(period) + group + std::to_string(number) +
                (deleted ? "True" : "False"),
            "2024319False");
  EXPECT_EQ(Calls(server),
            "GetDetail(\"props\", 5, ref False) -> {FVoucherID: 5}\n"
            "GetDetailByNumber(\"props\", ref 2024, ref 3, ref \"1\", ref 9, ref False) -> "
            "{FVoucherID: 5}\n");
  server.Answer(kVoucherInfo, "GetDetail", Variant(Nothing));
  by_id->Refresh();
  by_number->Refresh();
  EXPECT_EQ(Calls(server), "GetDetail(\"props\", ref 5, ref True) -> Nothing\n"
                           "GetDetail(\"props\", ref 5, ref True) -> Nothing\n");
}

TEST_F(WriteBack, ASettingIsRememberedAsTheServerWroteItBackAndTheCallersWordsStay) {
  const auto profile = Make<SystemProfile>();
  server.AnswerWith(kProfile, "ListProfiles",
                    [](std::span<Argument>) { return Variant(Make<Dictionary>()); });
  server.AnswerWith(kProfile, "SetProfile", [](std::span<Argument> arguments) {
    arguments[1].Put("SC");
    arguments[2].Put("written");
    arguments[3].Put("written too");
    return Variant();
  });
  String category = "GL", key = "K", value = "v";
  profile->Let("Item", ByRef(category), ByRef(key), ByRef(value));
  EXPECT_EQ(category + key + value, "GLKv");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))) +
                StateText(Variant(profile->ProfileList("SC"))),
            "{}{written: \"written too\"}");
}

TEST_F(WriteBack, APeriodOfADateIsWhatTheServerWroteAndTheDateStays) {
  const auto profile = Make<SystemProfile>();
  Writes(kCalendar, "GetPeriod", Long{2006});
  DateTime day = DateTime::FromYmd(2004, 3, 15);
  Long year = 1;
  EXPECT_EQ(StateText(profile->Call("GLGetPeriodByDate", ByRef(day), ByRef(year))), "77");
  EXPECT_EQ(StateText(Variant(day)) + " " + std::to_string(year), "#2004-03-15# 2006");
  EXPECT_EQ(Calls(server), "GetPeriod(\"props\", ref #2004-03-15#, ref 0) -> 2006\n");
}

TEST_F(WriteBack, TheDateOfAPeriodIsWhatTheServerWroteAndThePeriodStays) {
  const auto profile = Make<SystemProfile>();
  server.AnswerWith(kProfile, "ListProfiles", [](std::span<Argument>) {
    return Variant(Row({{"PeriodCount", "12"}, {"CurrentYear", "2024"}, {"CurrentPeriod", "3"}}));
  });
  Writes(kCalendar, "GetPeriodStartEnd");
  Long year = 2024, period = 3;
  EXPECT_EQ(StateText(profile->Call("GLGetPeriodDate", ByRef(year), ByRef(period))),
            "#2001-02-03#");
  EXPECT_EQ(std::to_string(year) + " " + std::to_string(period), "2024 3");
  const std::string calls = Calls(server);
  EXPECT_EQ(calls.substr(calls.find("GetPeriodStartEnd")),
            "GetPeriodStartEnd(\"props\", ref 3, ref 2024, ref #1899-12-30#, ref #1899-12-30#)\n");
}

TEST_F(WriteBack, AProcessIdThatAStoreWritesIsGoodForTheRestOfTheQuestion) {
  server.LogSession();
  server.AnswerWith("QDCMtsCacheService.CacheFacade", "GetItem", [](std::span<Argument> arguments) {
    arguments[0].Put(Long{arguments[0].As<Long>() + 1});
    return arguments[1].As<String>() == "IsOuterLogin" ? Variant(Long{1}) : Variant("text");
  });
  EXPECT_EQ(StateText(GetSessionProperty("UserName")), "\"text\"");
  EXPECT_EQ(Calls(server), "GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                           "GetItem(ref 4712, \"UserName\") -> \"text\"\n"
                           "GetItem(ref 4713, \"UserName\") -> \"text\"\n");

  server.Answer("QDCMtsCacheService.CacheFacade", "GetItem", Long{0});
  server.AnswerWith("QDCPropsMgr.ShareProps", "GetProperty", [](std::span<Argument> arguments) {
    arguments[0].Put(Long{arguments[0].As<Long>() + 1});
    return Variant("text");
  });
  EXPECT_EQ(StateText(GetSessionProperty("UserName")), "\"text\"");
  EXPECT_EQ(Calls(server), "GetItem(ref 4711, \"IsOuterLogin\") -> 0\n"
                           "GetProperty(ref 4711, \"UserName\") -> \"text\"\n"
                           "GetProperty(ref 4712, \"UserName\") -> \"text\"\n");
}

TEST_F(WriteBack, TheComputersNameIsDropped) {
  Writes("QDSVBase.BaseInfo", "IsNeedOffline", true);
  EXPECT_TRUE(QueryNeedOffline());
  EXPECT_TRUE(QueryNeedOffline());
  const std::string calls = Calls(server);
  const std::string first = calls.substr(0, calls.find('\n') + 1);
  EXPECT_EQ(calls, first + first);
  EXPECT_EQ(calls.find("written"), std::string::npos);
}

}  // namespace
}  // namespace qdclgl

#include "qdclgl/accounts/account_set.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "tests/support/columns.h"
#include "tests/support/failing_events.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::AtEachFailure;
using testing::ErrorOf;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;

constexpr const char* kInfo = "QDSVGLAccount.AccountInfo";
constexpr const char* kItemInfo = "QDSVGLAccount.AccountItemInfo";

std::string State(const Account& account) {
  return "id " + std::to_string(account.AccountID()) + " " +
         testing::State(static_cast<const RowView&>(account));
}

Ref<Recordset> NoAccounts() { return Recordset::Create({"FAccountID"}); }

Ref<Recordset> NoItems() { return Recordset::Create({"FItemClassID"}); }

Ref<Recordset> TwoItems() {
  auto list = NoItems();
  list->AddRow({Long{21}});
  list->AddRow({Long{22}});
  return list;
}

std::vector<Variant> KeysOfOtherKinds() {
  return {Variant(), Null, Missing, true, Currency(5), DateTime(5), Nothing, Variant(Row({}))};
}

class AccountSetTest : public ::testing::Test {
 protected:
  // The server knows a small tree: 1 "1001" over 2 "1001.01" over 3 "1001.01.01", and 4 "10010".
  void KnowTree() {
    server.AnswerWith(kInfo, "GetDetail", [](std::span<Argument> arguments) {
      return AccountOfId(arguments[1].As<Long>());
    });
    server.AnswerWith(kInfo, "GetDetailByNumber", [](std::span<Argument> arguments) {
      const String number = arguments[1].As<String>();
      for (const Long id : {1, 2, 3, 4}) {
        if (number == NumberOf(id)) return AccountOfId(id);
      }
      throw Error(1004, "server", "no account " + number);
    });
    server.AnswerWith(kItemInfo, "GetListByAccount",
                      [](std::span<Argument>) { return Variant(NoItems()); });
  }

  // The level of data authority that a Refresh passes.
  Long DataAuthority() {
    Long level = -1;
    server.AnswerWith(kInfo, "GetList", [&](std::span<Argument> arguments) {
      level = arguments[5].As<Long>();
      return Variant(NoAccounts());
    });
    accounts->Refresh();
    return level;
  }

  RecordingServer server;
  Ref<AccountSet> accounts = Make<AccountSet>();

 private:
  static const char* NumberOf(Long id) {
    return id == 1 ? "1001" : id == 2 ? "1001.01" : id == 3 ? "1001.01.01" : "10010";
  }
  static Variant AccountOfId(Long id) {
    if (id < 1 || id > 4) throw Error(1004, "server", "no account " + std::to_string(id));
    return Variant(Row({{"FAccountID", id},
                        {"FNumber", NumberOf(id)},
                        {"FParentID", Long{id == 4 ? 0 : id - 1}}}));
  }
};

// ---- The level of data authority ----

TEST_F(AccountSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<AccountSet>(),
            "ListOptions Filter Sort DataAuthority CreateNew ExistenceCheck GetCurrent GetNext "
            "IsChildAcct IsSubAcct NewEnum Refresh Remove Count Item RecordSet");
}

TEST_F(AccountSetTest, ALevelOutsideTheKnownOnesBecomesTwo) {
  const std::pair<Long, Long> cases[] = {
      {1, 1},   {2, 2},   {3, 3},    {105, 105}, {1052, 1052},    {0, 2}, {4, 2},    {-1, 2},
      {104, 2}, {106, 2}, {1051, 2}, {1053, 2},  {2147483647, 2}, {5, 2}, {-105, 2},
  };
  EXPECT_EQ(DataAuthority(), 3);
  for (const auto& [written, kept] : cases) {
    accounts->DataAuthority(3);
    accounts->DataAuthority(written);
    EXPECT_EQ(DataAuthority(), kept) << written;
    accounts->DataAuthority(3);
    accounts->Let("DataAuthority", written);
    EXPECT_EQ(DataAuthority(), kept) << written;
  }
}

TEST_F(AccountSetTest, TheLevelCannotBeReadAndALetOfAnotherTypeLeavesIt) {
  Ref<Object> late = accounts;
  EXPECT_EQ(ErrorOf([&] { late->Get("DataAuthority"); }),
            "error 438 (AccountSet): The member DataAuthority can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { late->Let("DataAuthority", "high"); }), "error 13");
  EXPECT_EQ(DataAuthority(), 3);
}

TEST_F(AccountSetTest, TheLevelGoesByReferenceAndWithTheNextRefreshAlone) {
  server.AnswerWith(kInfo, "GetList", [](std::span<Argument> arguments) {
    arguments[5].Put(Variant(Long{1052}));
    return Variant(NoAccounts());
  });
  accounts->DataAuthority(105);
  accounts->Refresh();
  accounts->Refresh();
  const auto fetch = [](const char* level) {
    return std::string("create QDSVGLAccount.AccountInfo\n"
                       "call GetList(\"props\", ref 0, ref \"\", ref \"\", Missing, ref ") +
           level + ") -> recordset{FAccountID}\n";
  };
  EXPECT_EQ(server.TakeLog(), fetch("105") + fetch("1052"));
  accounts->DataAuthority(1);
  EXPECT_EQ(accounts->Count(), 0);
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- CreateNew, ExistenceCheck ----

TEST_F(AccountSetTest, CreateNewMakesAnUnsavedAccountThroughTheSetters) {
  EXPECT_EQ(State(*accounts->CreateNew()), "id 0 {}");
  EXPECT_FALSE(accounts->CreateNew()->Modified());
  EXPECT_EQ(State(*accounts->CreateNew("1001a")), "id 0 {FNumber: \"1001A\"} modified flagged");
  EXPECT_EQ(State(*accounts->CreateNew("1001a", "Cash")),
            "id 0 {FNumber: \"1001A\", FName: \"Cash\"} modified flagged");
  EXPECT_EQ(State(*accounts->CreateNew(Missing, "Cash")),
            "id 0 {FName: \"Cash\"} modified flagged");
  EXPECT_EQ(State(*accounts->CreateNew(1001, 2.5)),
            "id 0 {FNumber: \"1001\", FName: \"2.5\"} modified flagged");
  EXPECT_EQ(State(*accounts->CreateNew("")), "id 0 {FNumber: \"\"} modified flagged");
  EXPECT_EQ(State(*accounts->Call("CreateNew", Named("Name", "Cash")).As<Account>()),
            "id 0 {FName: \"Cash\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { accounts->CreateNew(Null); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountSetTest, ExistenceCheckUsesTheFirstArgumentGivenAndNoOther) {
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(accounts->ExistenceCheck(5, "1001", "cash"), 0);
  EXPECT_EQ(accounts->ExistenceCheck(5, Missing, "cash"), 0);
  EXPECT_EQ(accounts->ExistenceCheck(5, "1001"), 0);
  EXPECT_EQ(accounts->ExistenceCheck(Missing, "1001", "cash"), 0);
  EXPECT_EQ(accounts->ExistenceCheck(Variant(), "1001"), 0) << "an empty value is given";
  EXPECT_EQ(server.TakeLog(), "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant 5) -> 0\n"
                              "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant 5) -> 0\n"
                              "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant 5) -> 0\n"
                              "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"1001\") -> 0\n"
                              "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant Empty) -> 0\n");
}

TEST_F(AccountSetTest, ExistenceCheckTakesNamedAndLeftOutArgumentsLateBound) {
  server.Answer(kInfo, "ExistenceCheck", "7");
  EXPECT_EQ(StateText(accounts->Call("ExistenceCheck", Named("helpercode", "cash"))), "7");
  EXPECT_EQ(StateText(accounts->Call("ExistenceCheck", Missing, "1001")), "7");
  EXPECT_EQ(StateText(accounts->Call("ExistenceCheck", Named("HelperCode", "cash"),
                                     Named("AccountID", 5))),
            "7");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountInfo\n"
            "call ExistenceCheck(\"props\", HelperCode:=ref Variant \"cash\") -> \"7\"\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call ExistenceCheck(\"props\", Number:=ref Variant \"1001\") -> \"7\"\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call ExistenceCheck(\"props\", ref Variant 5) -> \"7\"\n");
}

// ---- Item ----

TEST_F(AccountSetTest, TheItemsAreAskedForByTheIdAsItStandsInTheRow) {
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FAccountID", "5"}})));
  server.Answer(kItemInfo, "GetListByAccount", Variant(NoItems()));
  EXPECT_EQ(State(*accounts->Item(" 1001a")), "id 5 {FAccountID: \"5\", _Items: []}");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetailByNumber(\"props\", \" 1001a\") -> {FAccountID: \"5\"}\n"
            "create QDSVGLAccount.AccountItemInfo\n"
            "call GetListByAccount(\"props\", \"5\") -> recordset{FItemClassID}\n");
}

TEST_F(AccountSetTest, TheItemsAreTheRowsFromTheServersCursorOn) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FAccountID", Long{5}}})));
  const auto items = TwoItems();
  items->MoveNext();
  server.Answer(kItemInfo, "GetListByAccount", Variant(items));
  EXPECT_EQ(State(*accounts->Item(5)), "id 5 {FAccountID: 5, _Items: [{FItemClassID: 22}]}");
  EXPECT_TRUE(items->Eof());
}

TEST_F(AccountSetTest, TheItemsStayThroughCancelChangesAreSavedAndGoWithARefresh) {
  server.AnswerOnce(kInfo, "GetDetail", Variant(Row({{"FAccountID", Long{5}}})));
  server.AnswerOnce(kInfo, "GetDetail", Variant(Row({{"FAccountID", Long{5}}})));
  server.Answer(kItemInfo, "GetListByAccount", Variant(TwoItems()));
  const auto account = accounts->Item(5);
  account->Name("x");
  account->CancelChanges();
  EXPECT_EQ(State(*account),
            "id 5 {FAccountID: 5, _Items: [{FItemClassID: 21}, {FItemClassID: 22}]}");
  account->Name("x");
  server.TakeLog();
  account->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountUpdate\n"
            "call Update(\"props\", ref 5, {FAccountID: 5, _Items: [{FItemClassID: 21}, "
            "{FItemClassID: 22}], FName: \"x\", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", ref 5) -> {FAccountID: 5}\n");
  EXPECT_EQ(State(*account), "id 5 {FAccountID: 5}");
}

TEST_F(AccountSetTest, ItemNeedsTheAccountAndAListOfItsItems) {
  server.Answer(kInfo, "GetDetail", Nothing);
  server.Answer(kItemInfo, "GetListByAccount", Variant(TwoItems()));
  EXPECT_EQ(ErrorOf([&] { accounts->Item(99); }), "error 91");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FAccountID", Long{5}}})));
  server.Answer(kItemInfo, "GetListByAccount", Nothing);
  EXPECT_EQ(ErrorOf([&] { accounts->Item(5); }), "error 91");
  server.Answer(kItemInfo, "GetListByAccount", Variant(Row({})));
  EXPECT_EQ(ErrorOf([&] { accounts->Item(5); }), "error 13");
}

// ---- IsChildAcct ----

TEST_F(AccountSetTest, IsChildAcctReadsBothAccountsThroughFourComponents) {
  KnowTree();
  EXPECT_TRUE(accounts->IsChildAcct(2, "1001"));
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", 2) -> {FAccountID: 2, FNumber: \"1001.01\", FParentID: 1}\n"
            "create QDSVGLAccount.AccountItemInfo\n"
            "call GetListByAccount(\"props\", 2) -> recordset{FItemClassID}\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetailByNumber(\"props\", \"1001\") -> "
            "{FAccountID: 1, FNumber: \"1001\", FParentID: 0}\n"
            "create QDSVGLAccount.AccountItemInfo\n"
            "call GetListByAccount(\"props\", 1) -> recordset{FItemClassID}\n");
}

TEST_F(AccountSetTest, IsChildAcctIsTrueForTheDirectParentAlone) {
  KnowTree();
  for (const auto& [account, parent, is_child] :
       std::initializer_list<std::tuple<Long, Long, bool>>{{2, 1, true},
                                                           {3, 2, true},
                                                           {3, 1, false},
                                                           {1, 2, false},
                                                           {2, 2, false},
                                                           {1, 1, false},
                                                           {4, 1, false}}) {
    const Variant numbers[] = {"", "1001", "1001.01", "1001.01.01", "10010"};
    const auto number = [&](Long id) { return numbers[static_cast<std::size_t>(id)]; };
    EXPECT_EQ(accounts->IsChildAcct(account, parent), is_child) << account << " " << parent;
    EXPECT_EQ(accounts->IsChildAcct(number(account), parent), is_child);
    EXPECT_EQ(accounts->IsChildAcct(account, number(parent)), is_child);
    EXPECT_EQ(accounts->IsChildAcct(number(account), number(parent)), is_child);
    EXPECT_EQ(StateText(accounts->Call("IsChildAcct", Named("ParentAcct", parent),
                                       Named("Acct", account))),
              is_child ? "True" : "False");
  }
}

TEST_F(AccountSetTest, IsChildAcctLeavesTheCallersVariables) {
  KnowTree();
  Variant account(Long{2});
  String parent = "1001";
  accounts->Call("IsChildAcct", ByRef(account), ByRef(parent));
  EXPECT_EQ(StateText(account), "2");
  EXPECT_EQ(parent, "1001");
}

TEST_F(AccountSetTest, IsChildAcctOfAnUnknownAccountIsTheServersFailure) {
  KnowTree();
  EXPECT_EQ(ErrorOf([&] { accounts->IsChildAcct(9, 1); }), "error 1004 (server): no account 9");
  EXPECT_EQ(ErrorOf([&] { accounts->IsChildAcct(1, "9"); }), "error 1004 (server): no account 9");
  EXPECT_EQ(ErrorOf([&] { accounts->IsChildAcct(Null, 1); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { accounts->IsChildAcct(1, Currency(1)); }), "error 5");
}

TEST_F(AccountSetTest, IsChildAcctPassesAFailureAtAnyEvent) {
  KnowTree();
  std::string failures;
  for (int i = 1; i <= 8; ++i) failures += std::to_string(i) + " fails: Nothing\n";
  EXPECT_EQ(AtEachFailure(
                server, [] { return Make<AccountSet>(); },
                [](AccountSet& set) { set.IsChildAcct(2, "1001"); },
                [](AccountSet& set) { return StateText(Variant(set.RecordSet())); }),
            failures + "9 no error: Nothing\n");
}

// ---- IsSubAcct ----

TEST_F(AccountSetTest, IsSubAcctTellsAPrefixOfTextsWithoutTheServer) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"1001", "1001.01", true},  {"1001", "1001", true}, {"1001", "10010", true},
      {"1001.01", "1001", false}, {"1001", "100", false}, {"1001", "1002", false},
      {"1001", "2001", false},    {"", "1001", true},     {"", "", true},
      {"1", "", false},           {"abc", "ABCD", true},  {"ABC", "abcd", true},
      {"abd", "ABCD", false},     {"é", "É1", true},      {"ａ", "Ａｂ", true},
      {"现金", "现金01", true},   {"现金", "现", false},  {"1001", "01001", false},
  };
  for (const auto& [root, sub, is_sub] : cases) {
    Variant root_variable(root);
    Variant sub_variable(sub);
    EXPECT_EQ(accounts->IsSubAcct(root_variable, sub_variable), is_sub) << root << " " << sub;
    EXPECT_EQ(StateText(root_variable), "\"" + std::string(root) + "\"");
    EXPECT_EQ(StateText(sub_variable), "\"" + std::string(sub) + "\"");
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountSetTest, IsSubAcctTrimsTheCallersVariables) {
  Variant root(" 1001 ");
  Variant sub("1001.01 ");
  EXPECT_TRUE(accounts->IsSubAcct(root, sub));
  EXPECT_EQ(StateText(root), "\"1001\"");
  EXPECT_EQ(StateText(sub), "\"1001.01\"");

  root = "  10 01  ";
  sub = "   ";
  EXPECT_FALSE(accounts->IsSubAcct(root, sub));
  EXPECT_EQ(StateText(root), "\"10 01\"");
  EXPECT_EQ(StateText(sub), "\"\"");
  EXPECT_TRUE(accounts->IsSubAcct(sub, root)) << "a blank root is a root of everything";

  root = "\t1001";
  sub = "1001";
  EXPECT_FALSE(accounts->IsSubAcct(root, sub));
  EXPECT_EQ(StateText(root), "\"\t1001\"") << "blanks alone are trimmed";
}

TEST_F(AccountSetTest, IsSubAcctTrimsTheVariablesOfALateBoundCaller) {
  Variant root(" 1001 ");
  Variant sub("1001.01 ");
  EXPECT_EQ(StateText(accounts->Call("IsSubAcct", ByRef(root), ByRef(sub))), "True");
  EXPECT_EQ(StateText(root), "\"1001\"");
  EXPECT_EQ(StateText(sub), "\"1001.01\"");

  String root_text = " 1002";
  String sub_text = " 1001.01 ";
  EXPECT_EQ(StateText(accounts->Call("IsSubAcct", Named("SubAcct", ByRef(sub_text)),
                                     Named("RootAcct", ByRef(root_text)))),
            "False");
  EXPECT_EQ(root_text, "1002");
  EXPECT_EQ(sub_text, "1001.01");

  EXPECT_EQ(StateText(accounts->Call("IsSubAcct", " 1001", ByRef(sub))), "True");
}

TEST_F(AccountSetTest, IsSubAcctOfTwoIdsPutsTheNumbersOfTheAccountsIntoTheVariables) {
  KnowTree();
  Variant root(Long{1});
  Variant sub(Integer{3});
  EXPECT_TRUE(accounts->IsSubAcct(root, sub));
  EXPECT_EQ(StateText(root), "\"1001\"");
  EXPECT_EQ(StateText(sub), "\"1001.01.01\"");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", 1) -> {FAccountID: 1, FNumber: \"1001\", FParentID: 0}\n"
            "create QDSVGLAccount.AccountItemInfo\n"
            "call GetListByAccount(\"props\", 1) -> recordset{FItemClassID}\n"
            "create QDSVGLAccount.AccountInfo\n"
            "call GetDetail(\"props\", 3) -> "
            "{FAccountID: 3, FNumber: \"1001.01.01\", FParentID: 2}\n"
            "create QDSVGLAccount.AccountItemInfo\n"
            "call GetListByAccount(\"props\", 3) -> recordset{FItemClassID}\n");
  EXPECT_TRUE(accounts->IsSubAcct(root, sub)) << "the numbers serve a second question";
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountSetTest, IsSubAcctOfTwoIdsGoesByTheNumbersAndNotByTheTree) {
  KnowTree();
  for (const auto& [root_id, sub_id, is_sub] :
       std::initializer_list<std::tuple<Variant, Variant, bool>>{
           {Long{1}, Long{4}, true}, {2.0, Byte{1}, false}, {Single{2}, Long{2}, true}}) {
    Variant root = root_id;
    Variant sub = sub_id;
    EXPECT_EQ(accounts->IsSubAcct(root, sub), is_sub) << StateText(root) << StateText(sub);
  }
}

TEST_F(AccountSetTest, IsSubAcctTrimsTheNumbersFromTheServerToo) {
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FAccountID", Long{1}}, {"FNumber", " 1001a "}})));
  server.Answer(kItemInfo, "GetListByAccount", Variant(NoItems()));
  Variant root(Long{1});
  Variant sub(Long{1});
  EXPECT_TRUE(accounts->IsSubAcct(root, sub));
  EXPECT_EQ(StateText(root), "\"1001a\"");
  EXPECT_EQ(StateText(sub), "\"1001a\"");
}

TEST_F(AccountSetTest, IsSubAcctOfMixedOrOtherKindsRaisesFiveAndLeavesTheVariables) {
  KnowTree();
  std::vector<std::pair<Variant, Variant>> cases = {{Long{12}, "1001"}, {" 1001 ", Long{12}}};
  for (const Variant& other : KeysOfOtherKinds()) {
    cases.emplace_back(other, " 1001 ");
    cases.emplace_back(" 1001 ", other);
    cases.emplace_back(Long{1}, other);
    cases.emplace_back(other, Long{1});
    cases.emplace_back(other, other);
  }
  for (const auto& [root, sub] : cases) {
    Variant root_variable = root;
    Variant sub_variable = sub;
    EXPECT_EQ(ErrorOf([&] { accounts->IsSubAcct(root_variable, sub_variable); }), "error 5")
        << StateText(root) << " " << StateText(sub);
    EXPECT_EQ(StateText(root_variable), StateText(root));
    EXPECT_EQ(StateText(sub_variable), StateText(sub));
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(AccountSetTest, IsSubAcctThatFailsAtTheServerHasReplacedWhatItCameTo) {
  KnowTree();
  struct Question {
    Variant root{Long{1}};
    Variant sub{Long{2}};
  };
  const auto outcomes = AtEachFailure(
      server, [] { return std::make_unique<Question>(); },
      [&](Question& question) { accounts->IsSubAcct(question.root, question.sub); },
      [](const Question& question) {
        return StateText(question.root) + " " + StateText(question.sub);
      });
  EXPECT_EQ(outcomes, "1 fails: 1 2\n"
                      "2 fails: 1 2\n"
                      "3 fails: 1 2\n"
                      "4 fails: 1 2\n"
                      "5 fails: \"1001\" 2\n"
                      "6 fails: \"1001\" 2\n"
                      "7 fails: \"1001\" 2\n"
                      "8 fails: \"1001\" 2\n"
                      "9 no error: \"1001\" \"1001.01\"\n");
}

}  // namespace
}  // namespace qdclgl

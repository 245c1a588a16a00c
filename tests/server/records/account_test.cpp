#include "qdclgl/frame/containers/vector.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLAccount.AccountInfo";
constexpr const char* kItemInfo = "QDSVGLAccount.AccountItemInfo";
constexpr const char* kUpdate = "QDSVGLAccount.AccountUpdate";

Long AddUnitGroup(RecordBooks& books, const std::string& name) {
  return books.Call("QDSVGLUnit.UnitGroupUpdate", "Create", books.props, Row({{"FName", name}}))
      .As<Long>();
}
Long AddUnit(RecordBooks& books, Long group, const std::string& number) {
  return books
      .Call("QDSVGLUnit.UnitUpdate", "Create", books.props,
            Row({{"FUnitGroupID", group}, {"FNumber", number}, {"FName", number}}))
      .As<Long>();
}

const RecordKind kAccounts = {
    .noun = "Account",
    .subject = "Account",
    .info = kInfo,
    .update = kUpdate,
    .table = "t_Account",
    .id = "FAccountID",
    .columns = {{"FNumber", "A100", "B200"},
                {"FName", "Cash", "Till"},
                {"FFullName", "Cash", "Till"},
                {"FLevel", Integer{1}, Integer{1}},
                {"FDetail", true, true},
                {"FParentID", Long{0}, Long{0}},
                {"FRootID", Long{0}, Long{0}},
                {"FDC", Long{-1}, Long{1}},
                {"FGroupID", Long{3}, Long{13}},
                {"FCurrencyID", Long{2}, Long{1}},
                {"FCurrencyNumber", "USD", "EUR"},
                {"FCurrencyName", "Dollar", "EUR"},
                {"FHelperCode", "C", "T"},
                {"FQuantities", true, false},
                {"FMeasureUnitID", Long{0}, Long{2}},
                {"FMeasureUnit", "kg", "t"},
                {"FUnitGroupID", Long{1}, Long{2}},
                {"FUnitGroup", "Weights", "Pieces"},
                {"FIsCash", true, false},
                {"FIsBank", true, false},
                {"FIsBudget", true, false},
                {"FIsBusi", true, false},
                {"FIsCashFlow", true, false},
                {"FJournal", true, false},
                {"FContact", true, false},
                {"FAdjustRate", true, false},
                {"FAcctint", true, false},
                {"FintRate", Single{0.125}, Single{-0.5}},
                {"FInterest", true, false},
                {"FLastIntDate", DateTime::FromYmd(2024, 2, 29), DateTime::FromYmd(2023, 12, 31)},
                {"FAcnt", true, false},
                {"FAcntID", Long{0}, Long{0}},
                {"FAcntType", Long{6}, Long{16}},
                {"FIsAcnt", false, false},
                {"FControl", Long{0}, Long{0}},
                {"FControlSystem", Long{7}, Long{17}},
                {"FDetailID", Long{0}, Long{0}},
                {"FEarnAccountID", Long{8}, Long{18}},
                {"FSpecialType", Integer{9}, Integer{19}},
                {"FMessage", "careful", "careless"},
                {"FViewMsg", true, false},
                {"FDelete", false, false},
                {"UUID", "u", "v"},
                {"FKind", "asset", "income"}},
    .absent = {{"FCurrencyID", Long{1}},
               {"FCurrencyNumber", "EUR"},
               {"FCurrencyName", "EUR"},
               {"FUnitGroup", ""}},
    .spelled = {{"FNumber", "a100"}},
    .longest = {{"FName", 255}},
    .coded = {"FNumber", "FKind"},
    .kept_by_server = {"FFullName", "FLevel", "FDetail", "FParentID", "FUnitGroup", "FAcntID",
                       "FIsAcnt", "FControl", "FDetailID"},
    .joined = {"FCurrencyNumber", "FCurrencyName"},
    .ids_of_record = {"FRootID"},
    .required = {"FNumber", "FName"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FNumber",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "AccountID",
    .text_argument = "Number",
    .further_methods = {{kInfo, "CheckAccountInVoucher", "reader"},
                        {kInfo, "ExistsSpecialChild", "reader"},
                        {kInfo, "GetFullName", "reader"},
                        {kItemInfo, "GetListByAccount", "reader"}},
    .mark = "FDelete",
    .uses = {[](RecordBooks& books, Long account) {
      const std::string name = "V" + std::to_string(account);
      books.AddVoucher(books.AddGroup(name), account, books.AddAccount(name), Currency(7));
    }},
    .prepare =
        [](RecordBooks& books) {
          books.Call("QDSVGLCurrency.CurrencyUpdate", "Create", books.props,
                     Row({{"FNumber", "USD"}, {"FName", "Dollar"}}));
          AddUnit(books, AddUnitGroup(books, "Weights"), "kg");
          AddUnit(books, AddUnitGroup(books, "Pieces"), "pc");
        },
    .references = {{.column = "FCurrencyID",
                    .noun = "currency",
                    .id = "FCurrencyID",
                    .update = "QDSVGLCurrency.CurrencyUpdate",
                    .make =
                        [](RecordBooks& books) {
                          static int number = 0;
                          return books
                              .Call("QDSVGLCurrency.CurrencyUpdate", "Create", books.props,
                                    Row({{"FNumber", "R" + std::to_string(++number)}}))
                              .As<Long>();
                        },
                    .refusal = "BadCurrency",
                    .is_required = true,
                    .is_marked = true},
                   {.column = "FMeasureUnitID",
                    .noun = "unit of measure",
                    .id = "FMeasureUnitID",
                    .update = "QDSVGLUnit.UnitUpdate",
                    .make =
                        [](RecordBooks& books) {
                          static int number = 0;
                          return AddUnit(books, 1, "R" + std::to_string(++number));
                        },
                    .is_marked = true},
                   {.column = "FUnitGroupID",
                    .noun = "unit group",
                    .id = "FUnitGroupID",
                    .update = "QDSVGLUnit.UnitGroupUpdate",
                    .make =
                        [](RecordBooks& books) {
                          static int number = 0;
                          return AddUnitGroup(books, "R" + std::to_string(++number));
                        }}},
};
QDCLGL_RECORD_KIND(Account, kAccounts);

class AccountTest : public RecordCalls {
 protected:
  AccountTest() : RecordCalls("QDSVGLAccount.Account") {}

  Ref<Recordset> List(Long options = 0, std::string filter = "", std::string sort = "") {
    Long authority = 3;
    return Call(kInfo, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort), Missing,
                ByRef(authority))
        .As<Recordset>();
  }
  // The chart: number, level, parent's and root's ids, detail flag and full name.
  std::string Chart() {
    return TextOf(List(1), {"FNumber", "FLevel", "FParentID", "FRootID", "FDetail", "FFullName"});
  }
  std::string Items(Long id) {
    return TextOf(Call(kItemInfo, "GetListByAccount", props, id).As<Recordset>(),
                  {"FItemClassID", "FItemClassNumber", "FItemClassName"});
  }
  static Ref<Vector> ItemList(std::initializer_list<Ref<Dictionary>> items) {
    auto list = Make<Vector>();
    for (const auto& item : items) list->Append(item);
    return list;
  }
  Long UseInVoucher(Long account) {
    return AddVoucher(AddGroup("Receipts"), account, AddAccount("9999"), Currency(7));
  }
};

TEST_P(AccountTest, TheTreeFollowsTheNumbers) {
  const Long cash = AddAccount("1000", "Cash");
  const Long till = AddAccount("1000.01", "Till");
  const Long coins = AddAccount("1000.01.c-1", "Coins_");
  const auto text = [](Long id) { return std::to_string(id); };
  EXPECT_EQ(Chart(), "1000 1 0 " + text(cash) + " False Cash\n" + "1000.01 2 " + text(cash) + " " +
                         text(cash) + " False Cash_Till\n" + "1000.01.C-1 3 " + text(till) + " " +
                         text(cash) + " True Cash_Till_Coins_\n");
  Delete(coins);
  EXPECT_TRUE(Detail(till)->Value("FDetail").As<Boolean>());
  EXPECT_EQ(Breaches(), "");
}

TEST_P(AccountTest, NumbersSidesAndCurrenciesHaveTheirRules) {
  AddAccount("1000");
  const std::string before = State();
  const auto refusal = [&](std::initializer_list<std::pair<std::string_view, Variant>> cells) {
    const Ref<Dictionary> row = Row(cells);
    const std::string sent = TextOf(*row);
    const std::string name = RefusalOf([&] { Create(row); });
    EXPECT_EQ(TextOf(*row), sent);
    return name;
  };
  const auto number_refusal = [&](std::string_view number) {
    return refusal({{"FNumber", number}, {"FName", "x"}});
  };
  for (const char* number : {".", "1000.", ".1", "1000..1", "10 00", "1000.1;", "a'b", "a%", "1\n",
                             "-.'", "a/b", "a\\b"}) {
    EXPECT_EQ(number_refusal(number), "BadNumber") << number;
  }
  EXPECT_EQ(number_refusal(std::string(41, '1')), "BadNumber");
  EXPECT_EQ(number_refusal("2000.1"), "NoParent");
  EXPECT_EQ(number_refusal("1000.1.1"), "NoParent");
  for (const Long side : {2, -2}) {
    EXPECT_EQ(refusal({{"FNumber", "2000"}, {"FName", "x"}, {"FDC", side}}), "BadValue") << side;
  }
  for (const Long currency : {5, 0}) {
    EXPECT_EQ(refusal({{"FNumber", "2000"}, {"FName", "x"}, {"FCurrencyID", currency}}),
              "BadCurrency")
        << currency;
  }
  EXPECT_EQ(SentenceOf([&] { AddAccount("2000.1", "Till"); }),
            "Account 2000.1 (Till): there is no account 2000 above it.");
  EXPECT_EQ(State(), before);
}

TEST_P(AccountTest, NumbersAreUpperCaseAndUpTo40Characters) {
  const Long id = AddAccount("a_b-c");
  EXPECT_EQ(Detail(id)->Value("FNumber").As<String>(), "A_B-C");
  EXPECT_EQ(RefusalOf([&] { AddAccount("A_b-C"); }), "NumberTaken");
  AddAccount(std::string(40, '1'));
  Long deepest = AddAccount("1");
  std::string number = "1";
  for (int level = 2; level <= 20; ++level) deepest = AddAccount(number += ".1");
  EXPECT_EQ(Detail(deepest)->Value("FLevel").As<Long>(), 20);
  EXPECT_EQ(RefusalOf([&] { AddAccount(number + ".1"); }), "BadNumber");
}

TEST_P(AccountTest, AnAccountIsFoundByItsHelperCode) {
  const Long id = Create(Row({{"FNumber", "a1"}, {"FName", "Cash"}, {"FHelperCode", "C"}}));
  AddAccount("2000");
  const auto with_code = [&](std::string_view code) {
    return Call(kInfo, "ExistenceCheck", props, Named("HelperCode", code)).As<Long>();
  };
  EXPECT_EQ(with_code("C"), id);
  EXPECT_EQ(with_code("c"), 0) << "case counts";
  EXPECT_EQ(with_code(""), 0) << "accounts without a code are not found by it";
  EXPECT_EQ(with_code("X"), 0);
}

TEST_P(AccountTest, RenamingRenamesBelow) {
  const Long cash = AddAccount("1_0", "Cash");
  AddAccount("1_0.1", "Till");
  AddAccount("1_0.1.1", "Cash");
  AddAccount("1X0", "Bank");
  AddAccount("1X0.1", "Giro");
  AddAccount("1_00", "Cash");
  Change(cash, "FName", "Kasse 元 'x'");
  EXPECT_EQ(TextOf(List(), {"FFullName"}),
            "Bank\nBank_Giro\nKasse 元 'x'\nKasse 元 'x'_Till\nKasse 元 'x'_Till_Cash\nCash\n");
  EXPECT_EQ(Breaches(), "");
  const Ref<Dictionary> child = Call(kInfo, "GetDetailByNumber", props, "1_0.1").As<Dictionary>();
  EXPECT_EQ(child->Value("FVersion").As<Long>(), 1)
      << "who edits an account below is not disturbed";
}

TEST_P(AccountTest, FullNamesComeWithAnySeparator) {
  AddAccount("1", "A_B");
  const Long id = (AddAccount("1.1", "C"), AddAccount("1.1.1", "D"));
  const auto full_name = [&](Long account, std::string separator) {
    return Call(kInfo, "GetFullName", props, ByRef(account), ByRef(separator)).As<String>();
  };
  EXPECT_EQ(full_name(id, " / "), "A_B / C / D");
  EXPECT_EQ(full_name(id, ""), "A_BCD");
  EXPECT_EQ(Call(kInfo, "GetFullName", props, id).As<String>(), "A_B_C_D");
  EXPECT_EQ(RefusalOf([&] { full_name(99, "_"); }), "NotFound");
}

TEST_P(AccountTest, AnAccountMovesWithItsNumber) {
  const Long cash = AddAccount("1", "Cash"), bank = AddAccount("2", "Bank");
  const Long till = AddAccount("1.1", "Till");
  Change(till, "FNumber", "2.7");
  EXPECT_EQ(Chart(), "1 1 0 " + std::to_string(cash) + " True Cash\n" + "2 1 0 " +
                         std::to_string(bank) + " False Bank\n" + "2.7 2 " + std::to_string(bank) +
                         " " + std::to_string(bank) + " True Bank_Till\n");
  Change(till, "FNumber", "3");
  EXPECT_EQ(Chart(), "1 1 0 " + std::to_string(cash) + " True Cash\n" + "2 1 0 " +
                         std::to_string(bank) + " True Bank\n" + "3 1 0 " + std::to_string(till) +
                         " True Till\n");
  EXPECT_EQ(Breaches(), "");
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Change(till, "FNumber", "3.1"); }), "NoParent")
      << "it would be its own parent";
  EXPECT_EQ(RefusalOf([&] { Change(till, "FNumber", "2"); }), "NumberTaken");
  EXPECT_EQ(RefusalOf([&] { Change(till, "FNumber", "9.1"); }), "NoParent");
  EXPECT_EQ(State(), before);
  Change(till, "FNumber", "2.1");
  EXPECT_EQ(RefusalOf([&] { Change(bank, "FNumber", "4"); }), "HasChildren");
}

TEST_P(AccountTest, AnAccountInUseKeepsItsPlace) {
  const Long cash = AddAccount("1000", "Cash");
  const Long voucher = UseInVoucher(cash);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Change(cash, "FNumber", "1001"); }), "InUse");
  EXPECT_EQ(SentenceOf([&] { Change(cash, "FNumber", "1001"); }),
            "Account 1000 (Cash): it can't get another number, vouchers use it.");
  EXPECT_EQ(RefusalOf([&] { Delete(cash); }), "InUse");
  EXPECT_EQ(RefusalOf([&] { AddAccount("1000.1"); }), "ParentInUse");
  const Long other = AddAccount("2000");
  EXPECT_EQ(RefusalOf([&] { Change(other, "FNumber", "1000.2"); }), "ParentInUse");
  Delete(other);
  EXPECT_TRUE(Call(kInfo, "CheckAccountInVoucher", props, cash).As<Boolean>());
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, voucher);
  EXPECT_TRUE(Call(kInfo, "CheckAccountInVoucher", props, cash).As<Boolean>())
      << "a deleted voucher keeps its lines";
  EXPECT_EQ(RefusalOf([&] { Delete(cash); }), "InUse");
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, voucher, true);
  EXPECT_FALSE(Call(kInfo, "CheckAccountInVoucher", props, cash).As<Boolean>());
  Delete(cash);
  EXPECT_EQ(Detail(cash), nullptr);
  EXPECT_NE(State(), before);
}

TEST_P(AccountTest, AnAccountWhoseBalanceCameDownToNothingCanBeDeleted) {
  const Long cash = AddAccount("1000");
  const Long voucher = UseInVoucher(cash);
  CheckAndPost(voucher);
  EXPECT_EQ(RefusalOf([&] { Delete(cash); }), "InUse");
  Call("QDSVGLVoucher.VoucherUpdate", "UnPost", props, voucher);
  Call("QDSVGLVoucher.VoucherUpdate", "Check", props, voucher, false);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, voucher, true);
  Delete(cash);
  EXPECT_EQ(Detail(cash), nullptr);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(AccountTest, DeletionMarksGoFromBelowToAbove) {
  const Long cash = AddAccount("1", "Cash"), till = AddAccount("1.1", "Till");
  EXPECT_EQ(RefusalOf([&] { Change(cash, "FDelete", true); }), "HasChildren");
  Change(till, "FDelete", true);
  Change(cash, "FDelete", true);
  EXPECT_EQ(TextOf(List(), {"FNumber"}), "");
  EXPECT_EQ(TextOf(List(1), {"FNumber"}), "1\n1.1\n");
  EXPECT_EQ(TextOf(List(6), {"FNumber"}), "");
  EXPECT_EQ(RefusalOf([&] { AddAccount("1.2"); }), "NoParent");
  EXPECT_EQ(RefusalOf([&] { Change(till, "FDelete", false); }), "NoParent");
  EXPECT_EQ(SentenceOf([&] { Change(till, "FDelete", false); }),
            "Account 1.1 (Till): account 1 above it is deleted.");
  EXPECT_EQ(RefusalOf([&] { Delete(cash); }), "HasChildren");
  EXPECT_FALSE(Detail(cash)->Value("FDetail").As<Boolean>());
  Change(cash, "FDelete", false);
  Change(till, "FDelete", false);
  EXPECT_EQ(TextOf(List(), {"FNumber"}), "1\n1.1\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(AccountTest, ADeletedCurrencyStaysWithTheAccountsThatHaveIt) {
  const Long dollar = Call("QDSVGLCurrency.CurrencyUpdate", "Create", props,
                           Row({{"FNumber", "USD"}, {"FName", "Dollar"}}))
                          .As<Long>();
  const Long id = AddAccount("1");
  Change(id, "FCurrencyID", dollar);
  EXPECT_EQ(Detail(id)->Value("FCurrencyName").As<String>(), "Dollar");
  Call("QDSVGLCurrency.CurrencyUpdate", "Delete", props, dollar);
  Change(id, "FName", "Dollars");
  EXPECT_EQ(RefusalOf([&] { Change(AddAccount("2"), "FCurrencyID", dollar); }), "BadCurrency");
  EXPECT_EQ(RefusalOf([&] {
              Create(Row({{"FNumber", "3"}, {"FName", "x"}, {"FCurrencyID", dollar}}));
            }),
            "BadCurrency");
}

TEST_P(AccountTest, SpecialChildrenAreFoundAtAnyDepth) {
  const Long cash = AddAccount("1");
  AddAccount("1.1");
  const Long special = AddAccount("1.1.1"), other = AddAccount("11");
  const auto exists = [&](Long id) {
    return Call(kInfo, "ExistsSpecialChild", props, ByRef(id)).As<Boolean>();
  };
  Change(other, "FSpecialType", Integer{1});
  EXPECT_FALSE(exists(cash));
  Change(special, "FSpecialType", Integer{2});
  EXPECT_TRUE(exists(cash));
  EXPECT_FALSE(exists(special)) << "an account is not below itself";
  EXPECT_FALSE(exists(99));
}

TEST_P(AccountTest, ItemClassesAreReplacedWhenTheRowHasThem) {
  const Ref<Vector> items = ItemList({Row({{"FItemClassID", Long{7}},
                                           {"FItemClassNumber", "07"},
                                           {"FItemClassName", "Customers"}}),
                                      Row({{"FItemClassID", Long{3}}})});
  const Long id = Create(Row({{"FNumber", "1"}, {"FName", "x"}, {"_Items", items}}));
  EXPECT_EQ(Items(id), "3 CUSTOMER 客户\n7 07 Customers\n")
      << "as the class has them; there is no class 7";
  Change(id, "FName", "y");
  EXPECT_EQ(Items(id), "3 CUSTOMER 客户\n7 07 Customers\n") << "a row without _Items leaves them";
  const Ref<Dictionary> with_id = Row({{"FAccountID", id}, {"FItemClassID", Long{4}}});
  Change(id, "_Items", ItemList({with_id}));
  EXPECT_EQ(Items(id), "4 SUPPLIER 供应商\n");
  const std::string before = State();
  for (const Variant& wrong :
       {Variant("text"), Variant(Nothing), Variant(Make<Dictionary>()),
        Variant(ItemList({nullptr})), Variant(ItemList({Make<Dictionary>()})),
        Variant(ItemList({with_id, with_id})),
        Variant(ItemList({Row({{"FItemClassID", Long{4}}, {"FName", "?"}})})),
        Variant(ItemList({Row({{"FItemClassID", "many"}})}))}) {
    EXPECT_EQ(RefusalOf([&] { Change(id, "_Items", wrong); }), "BadValue");
  }
  EXPECT_EQ(State(), before);
  Change(id, "_Items", ItemList({}));
  EXPECT_EQ(Items(id), "");
  Change(id, "_Items", ItemList({with_id}));
  Delete(id);
  EXPECT_EQ(Items(id), "");
}

TEST_P(AccountTest, AFailureAtAnyStatementOfASaveLeavesNothingBehind) {
  AddAccount("1", "Cash");
  AddAccount("2", "Bank");
  const Ref<Dictionary> row = Row({{"FNumber", "1.1"},
                                   {"FName", "Till"},
                                   {"_Items", ItemList({Row({{"FItemClassID", Long{7}}})})}});
  FailEachStatement([&] { Create(row); }, [&] { return TextOf(*row); });
  const auto id = row->Value("FAccountID").As<Long>();
  row->Value("FNumber", "2.1");
  row->Value("FName", "Vault");
  FailEachStatement([&] { Update(id, row); }, [&] { return TextOf(*row); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(Breaches(), "");
}

QDCLGL_BOOKS_TEST(AccountTest);

}  // namespace
}  // namespace qdclgl::server::testing

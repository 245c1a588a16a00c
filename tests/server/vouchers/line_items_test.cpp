// Lines on accounts that ask for items: what they must name, and the balances that are kept of it.
#include "qdclgl/server/vouchers/line_items.h"

#include "tests/server/ledger_fixture.h"
#include "tests/server/list_pages.h"
#include "tests/support/state_text.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::StateText;

constexpr Long kDepartments = 1, kCustomers = 3, kGoods = 5;

// Account 1130 asks for customers, 6000.01 for departments and customers; 6000 stands above it.
class LineItemsTest : public LedgerTest {
 protected:
  LineItemsTest() {
    AddAsking("1130", {kCustomers});
    AddAccount("6000");
    AddAsking("6000.01", {kCustomers, kDepartments});
    anna = AddItem(kCustomers, "C001", "Anna");
    bert = AddItem(kCustomers, "C002", "Bert");
    shop = AddItem(kDepartments, "SHOP", "Shop");
    yard = AddItem(kDepartments, "YARD", "Yard");
  }

  static Ref<Vector> ListOf(const std::vector<Ref<Dictionary>>& rows) {
    auto list = Make<Vector>();
    for (const Ref<Dictionary>& row : rows) list->Append(Variant(row));
    return list;
  }
  static Ref<Vector> Classes(const std::vector<Long>& classes) {
    std::vector<Ref<Dictionary>> rows;
    for (const Long id : classes) rows.push_back(Row({{"FItemClassID", id}}));
    return ListOf(rows);
  }
  Long AddAsking(std::string_view number, const std::vector<Long>& classes) {
    return Call(kAccounts, "Create", props,
                Row({{"FNumber", number}, {"FName", number}, {"_Items", Classes(classes)}}))
        .As<Long>();
  }
  Long AddItem(Long item_class, std::string_view number, std::string_view name, Long parent = 0) {
    return Call("QDSVGLItem.ItemUpdate", "Create", props, item_class,
                Row({{"FItemClassID", item_class},
                     {"FNumber", number},
                     {"FName", name},
                     {"FParentID", parent}}))
        .As<Long>();
  }
  void ChangeItem(Long id, std::string_view key, const Variant& value) {
    const auto row = Call("QDSVGLItem.ItemInfo", "GetDetail", props, id).As<Dictionary>();
    row->Put(RowKey(key), value);
    Call("QDSVGLItem.ItemUpdate", "Update", props, id, row);
  }
  void RemoveItem(Long id) { Call("QDSVGLItem.ItemUpdate", "Delete", props, id); }
  void ChangeAccount(Long id, std::string_view key, const Variant& value) {
    const auto row = Call("QDSVGLAccount.AccountInfo", "GetDetail", props, id).As<Dictionary>();
    row->Put(RowKey(key), value);
    Call(kAccounts, "Update", props, id, row);
  }
  Long AccountId(std::string_view number) {
    return *Books().QueryValue<Long>("SELECT FAccountID FROM t_Account WHERE FNumber = ?", number);
  }

  // A detail by the numbers of class and item, or by their ids.
  static Ref<Dictionary> Named(std::string_view item_class, std::string_view item) {
    return Row({{"FItemClassNumber", item_class}, {"FItemNumber", item}});
  }
  static Ref<Dictionary> Named(Long item_class, Long item) {
    return Row({{"FItemClassID", item_class}, {"FItemID", item}});
  }
  static Ref<Dictionary> Customer(Long item) { return Named(kCustomers, item); }
  static Ref<Dictionary> Department(Long item) { return Named(kDepartments, item); }

  // So much from Sales into an account, for these items.
  static Ref<Dictionary> Sold(std::string_view account, Currency amount,
                              const std::vector<Ref<Dictionary>>& details,
                              std::string_view date = "2024-01-15", Cells more = {}) {
    const Ref<Dictionary> line = Line(account, amount, 0, more);
    line->Put(RowKey("_Details"), Variant(ListOf(details)));
    return Voucher(date, {line, Line("3000", 0, amount)});
  }
  Long SaveAndPost(const Ref<Dictionary>& voucher) {
    const Long id = Save(voucher);
    Step("Post", id);
    return id;
  }
  // What a save of such a line is refused with.
  std::string Refused(std::string_view account, const std::vector<Ref<Dictionary>>& details) {
    return ErrorText([&] { Save(Sold(account, 5, details)); });
  }
  std::string DetailsOf(Long voucher, Long line = 1) {
    return StateText(Read(voucher)
                         ->Value("_Entries")
                         .As<Vector>()
                         ->Item(line)
                         .As<Dictionary>()
                         ->Value("_Details"));
  }

  // "account currency items begin debit credit end", and that the lines say the same.
  std::string ByItems(const std::string& classes, Long year = 0, Long from = 0, Long to = 0,
                      const std::string& filter = "") {
    const auto text = [&](std::string_view method) {
      const auto list =
          Call("QDSVGLBalance.BalanceInfo", method, props, classes, year, from, to, filter)
              .As<Recordset>();
      return classes.find(',') == classes.npos
                 ? TextOf(list, {"FAccountNumber", "FCurrencyID", "FItemNumber1", "FBeginBalance",
                                 "FDebit", "FCredit", "FEndBalance"})
                 : TextOf(list, {"FAccountNumber", "FCurrencyID", "FItemNumber1", "FItemNumber2",
                                 "FBeginBalance", "FDebit", "FCredit", "FEndBalance"});
    };
    const std::string stored = text("GetItemList");
    EXPECT_EQ(stored, text("GetItemListFromLines"));
    return stored;
  }

  static constexpr const char* kAccounts = "QDSVGLAccount.AccountUpdate";
  Long anna = 0, bert = 0, shop = 0, yard = 0;
};

// ---- What lines name ----

TEST_P(LineItemsTest, ItemsAreCompletedByIdAndByNumberInWhateverCase) {
  const std::string anna_is = "FItemClassID: 3, FItemClassNumber: \"CUSTOMER\", FItemClassName: "
                              "\"客户\", FItemID: " +
                              std::to_string(anna) +
                              ", FItemNumber: \"C001\", FItemName: \"Anna\", FItemFullName: "
                              "\"Anna\", FValue: \"\"}]";
  EXPECT_EQ(DetailsOf(Save(Sold("1130", 5, {Customer(anna)}))), "[{FDetail: False, " + anna_is);
  EXPECT_EQ(DetailsOf(Save(Sold("1130", 5, {Named("customer", "c001")}))),
            "[{FDetail: False, " + anna_is);
  // The id counts, whatever is written beside it.
  const Ref<Dictionary> both = Customer(anna);
  both->Put(RowKey("FItemNumber"), Variant("C002"));
  both->Put(RowKey("FItemName"), Variant("Somebody"));
  both->Put(RowKey("FDetail"), Variant(true));
  EXPECT_EQ(DetailsOf(Save(Sold("1130", 5, {both}))), "[{FDetail: True, " + anna_is);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineItemsTest, ItemsThatALineLacksAreToldByTheirClass) {
  const std::string line = "8004422F: The new voucher of 2024-01-15: line 1: account ";
  const std::string nothing =
      line + "1130 asks for an item of item class CUSTOMER (客户), and the line names none.";
  EXPECT_EQ(Refused("1130", {}), nothing);
  EXPECT_EQ(Refused("1130", {Named(kCustomers, Long{0})}), nothing);
  EXPECT_EQ(Refused("6000.01", {Customer(anna)}),
            line + "6000.01 asks for an item of item class DEP (部门), and the line names none.");
  EXPECT_EQ(Refused("1130", {Row({})}),
            line + "1130 asks for items, and a detail names no item class.");
  EXPECT_EQ(Refused("6000.01", {Customer(anna), Department(shop)}), "no error");
}

TEST_P(LineItemsTest, ItemsThatAreNoneOrOutOfUseAreRefusedByName) {
  const std::string asks = "8004422F: The new voucher of 2024-01-15: line 1: account 1130 asks for "
                           "an item of item class CUSTOMER (客户), ";
  EXPECT_EQ(Refused("1130", {Customer(99)}), asks + "which has none with the id 99.");
  EXPECT_EQ(Refused("1130", {Customer(shop)}),
            asks + "which has none with the id " + std::to_string(shop) + ".");
  EXPECT_EQ(Refused("1130", {Named("CUSTOMER", "C009")}), asks + "which has none C009.");
  ChangeItem(anna, "FDeleted", true);
  EXPECT_EQ(Refused("1130", {Customer(anna)}), asks + "whose item C001 (Anna) is out of use.");
  AddItem(kCustomers, "C003", "Bert's shop", bert);
  EXPECT_EQ(Refused("1130", {Customer(bert)}), asks + "whose item C002 (Bert) has items below it.");
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher"), 0);
}

TEST_P(LineItemsTest, ItemsOfOtherClassesAndSecondOnesAreRefused) {
  const std::string line =
      "8004422F: The new voucher of 2024-01-15: line 1: account 1130 asks for ";
  EXPECT_EQ(Refused("1130", {Customer(anna), Department(shop)}),
            line + "no item of an item class with the id 1, and the line names one.");
  EXPECT_EQ(Refused("1130", {Customer(anna), Named("DEP", "SHOP")}),
            line + "no item of an item class DEP, and the line names one.");
  EXPECT_EQ(Refused("1130", {Customer(anna), Named("CUSTOMER", "C002")}),
            line + "one item of item class CUSTOMER (客户), and the line names two.");
}

TEST_P(LineItemsTest, AccountsThatAskForNoneKeepDetailsAsTheyAreSent) {
  const Long id = Save(Sold("1000", 5, {Named("DEP", "nowhere"), Named(kGoods, Long{77})}));
  EXPECT_EQ(DetailsOf(id),
            "[{FDetail: False, FItemClassID: 0, FItemClassNumber: \"DEP\", FItemClassName: \"\", "
            "FItemID: 0, FItemNumber: \"nowhere\", FItemName: \"\", FItemFullName: \"\", FValue: "
            "\"\"}, {FDetail: False, FItemClassID: 5, FItemClassNumber: \"\", FItemClassName: \"\","
            " FItemID: 77, FItemNumber: \"\", FItemName: \"\", FItemFullName: \"\", FValue: "
            "\"\"}]");
  Step("Post", id);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_ItemBalance"), 0);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineItemsTest, AVoucherKeepsItemsThatHaveGoneOutOfUseSince) {
  const Long id = Save(Sold("1130", 5, {Customer(anna)}));
  ChangeItem(anna, "FDeleted", true);
  const Ref<Dictionary> row = Read(id);
  row->Put(RowKey("FExplanation"), Variant("as before"));
  EXPECT_EQ(ErrorText([&] { Update(id, row); }), "no error");
  EXPECT_EQ(Refused("1130", {Customer(anna)}).substr(0, 8), "8004422F");
}

TEST_P(LineItemsTest, ItemsThatLinesNameStay) {
  const Long id = Save(Sold("1130", 5, {Customer(anna)}));
  EXPECT_EQ(RefusalOf([&] { RemoveItem(anna); }), "InUse");
  RemoveItem(bert);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, id, true);
  RemoveItem(anna);
  EXPECT_EQ(Breaches(), "");
}

// ---- What accounts ask for ----

TEST_P(LineItemsTest, AnAccountWithLinesGoesOnAskingForWhatItDoes) {
  const Long account = AccountId("1130"), cash = AccountId("1000");
  ChangeAccount(account, "_Items", Classes({kDepartments}));
  ChangeAccount(account, "_Items", Classes({kCustomers}));
  const Long first = Save(Sold("1130", 5, {Customer(anna)}));
  const Long second = Save(Sale(5));
  EXPECT_EQ(ErrorText([&] { ChangeAccount(account, "_Items", Classes({})); }),
            "80044219: Account 1130 (1130): it can't get other item classes, vouchers use it.");
  EXPECT_EQ(RefusalOf([&] {
              ChangeAccount(account, "_Items", Classes({kGoods, kCustomers}));
            }),
            "InUse");
  EXPECT_EQ(RefusalOf([&] { ChangeAccount(cash, "_Items", Classes({kCustomers})); }), "InUse");
  // The same ones are no change, as in the row of an account that was read with them.
  ChangeAccount(account, "_Items", Classes({kCustomers}));
  ChangeAccount(account, "FName", "Receivables");
  for (const Long id : {first, second}) {
    Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, id, true);
  }
  ChangeAccount(account, "_Items", Classes({}));
  ChangeAccount(cash, "_Items", Classes({kCustomers}));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineItemsTest, AccountsAndCurrenciesGoWithTheirEmptyBalances) {
  const Long account = AccountId("1130");
  const Long id = SaveAndPost(Sold("1130", 11, {Customer(anna)}, "2024-01-15",
                                   {{"FCurrencyNumber", "USD"}, {"FAmountFor", Currency(10)}}));
  Step("UnPost", id);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, id, true);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_ItemBalance"), 1);
  Call("QDSVGLCurrency.CurrencyUpdate", "Delete", props, Long{2});
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_ItemBalance"), 0);
  const Long again = SaveAndPost(Sold("1130", 11, {Customer(anna)}));
  Step("UnPost", again);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, again, true);
  Call(kAccounts, "Delete", props, account);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_ItemBalance"), 0);
  EXPECT_EQ(Breaches(), "");
}

// ---- Balances ----

TEST_P(LineItemsTest, PostingKeepsBalancesOfEachCombinationAndUnpostingTakesThemOut) {
  SaveAndPost(Sold("6000.01", 5, {Customer(anna), Department(shop)}));
  SaveAndPost(Sold("6000.01", 7, {Department(yard), Customer(anna)}));
  const Long last = SaveAndPost(Sold("6000.01", 9, {Department(yard), Customer(bert)}));
  SaveAndPost(Sold("1130", 2, {Customer(anna)}));
  Save(Sold("1130", 100, {Customer(anna)}));
  EXPECT_EQ(ByItems("CUSTOMER"), "1130 0 C001 0 2 0 2\n1130 1 C001 0 2 0 2\n"
                                 "6000 0 C001 0 12 0 12\n6000 1 C001 0 12 0 12\n"
                                 "6000 0 C002 0 9 0 9\n6000 1 C002 0 9 0 9\n"
                                 "6000.01 0 C001 0 12 0 12\n6000.01 1 C001 0 12 0 12\n"
                                 "6000.01 0 C002 0 9 0 9\n6000.01 1 C002 0 9 0 9\n");
  const std::string filter = "FDetail = TRUE AND FCurrencyID = 0";
  EXPECT_EQ(ByItems("dep", 0, 0, 0, filter), "6000.01 0 SHOP 0 5 0 5\n6000.01 0 YARD 0 16 0 16\n");
  EXPECT_EQ(ByItems("DEP,CUSTOMER", 0, 0, 0, filter),
            "6000.01 0 SHOP C001 0 5 0 5\n6000.01 0 YARD C001 0 7 0 7\n"
            "6000.01 0 YARD C002 0 9 0 9\n");
  EXPECT_EQ(ByItems("CUSTOMER,DEP", 0, 0, 0, filter + " AND FItemNumber2 = 'YARD'"),
            "6000.01 0 C001 YARD 0 7 0 7\n6000.01 0 C002 YARD 0 9 0 9\n");
  EXPECT_EQ(ByItems("GOODS"), "");
  EXPECT_EQ(Breaches(), "");
  Step("UnPost", last);
  EXPECT_EQ(ByItems("DEP,CUSTOMER", 0, 0, 0, filter),
            "6000.01 0 SHOP C001 0 5 0 5\n6000.01 0 YARD C001 0 7 0 7\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineItemsTest, BalancesByItemsKnowPeriodsCurrenciesAndQuantities) {
  SaveAndPost(Sold("1130", 11, {Customer(anna)}, "2024-01-15",
                   {{"FCurrencyNumber", "USD"}, {"FAmountFor", Currency(10)}, {"FQuantity", 2.5}}));
  SaveAndPost(Sold("1130", 4, {Customer(anna)}, "2024-02-15"));
  const auto paid = Line("1130", 0, 3, {{"_Details", Variant(ListOf({Customer(anna)}))}});
  SaveAndPost(Voucher("2024-02-16", {Line("1000", 3, 0), paid}));
  EXPECT_EQ(ByItems("CUSTOMER", 2024, 2, 2),
            "1130 0 C001 11 4 3 12\n1130 1 C001 0 4 3 1\n1130 2 C001 11 0 0 11\n");
  EXPECT_EQ(ByItems("CUSTOMER", 2024, 1, 1), "1130 0 C001 0 11 0 11\n1130 2 C001 0 11 0 11\n");
  const auto list = [&](std::string_view method) {
    return TextOf(Call("QDSVGLBalance.BalanceInfo", method, props, "CUSTOMER").As<Recordset>(),
                  {"FCurrencyNumber", "FItemID1", "FItemName1", "FDebitFor", "FCreditFor",
                   "FEndBalanceFor", "FDebitQty", "FEndQty"});
  };
  const std::string id = std::to_string(anna);
  EXPECT_EQ(list("GetItemList"), id + " Anna 0 0 0 2.5 2.5\nEUR " + id + " Anna 4 3 1 0 0\nUSD " +
                                     id + " Anna 10 0 10 2.5 2.5\n");
  EXPECT_EQ(list("GetItemList"), list("GetItemListFromLines"));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineItemsTest, PagesOfBalancesByItemsPutTogetherAreTheList) {
  SaveAndPost(Sold("1130", 11, {Customer(anna)}, "2024-01-15",
                   {{"FCurrencyNumber", "USD"}, {"FAmountFor", Currency(10)}, {"FQuantity", 2.5}}));
  SaveAndPost(Sold("1130", 4, {Customer(bert)}, "2024-02-15"));
  for (const char* const method : {"GetItemList", "GetItemListFromLines"}) {
    SCOPED_TRACE(method);
    ExpectPagesAreTheList(
        [&](const std::string& sort, const Variant& page) {
          return Call("QDSVGLBalance.BalanceInfo", method, props, "CUSTOMER", Long{2024}, Long{0},
                      Long{0}, "", sort, page)
              .As<Recordset>();
        },
        2);
  }
}

TEST_P(LineItemsTest, ListsByItemsNeedClassesThatThereAre) {
  const auto refused = [&](const std::string& classes) {
    return ErrorText([&] { Call("QDSVGLBalance.BalanceInfo", "GetItemList", props, classes); });
  };
  EXPECT_EQ(refused(""), "8004421A: There is no item class \"\".");
  EXPECT_EQ(refused("CUSTOMER,BOATS"), "8004421A: There is no item class \"BOATS\".");
  EXPECT_EQ(refused("CUSTOMER,customer"), "80044212: Item class customer stands twice.");
  std::string many;
  for (int i = 1; i <= 9; ++i) {
    const std::string number = "K" + std::to_string(i);
    Call("QDSVGLItemClass.ItemClassUpdate", "Create", props,
         Row({{"FNumber", number}, {"FName", number}}));
    many += (many.empty() ? "" : ",") + number;
  }
  EXPECT_EQ(refused(many), "80044212: A list is by at most 8 item classes.");
  EXPECT_EQ(refused(many.substr(0, many.rfind(','))), "no error");
}

TEST_P(LineItemsTest, AllOfASaveAndAPostingIsThereOrNothing) {
  Long id = 0;
  FailEachStatement([&] { id = Save(Sold("6000.01", 5, {Customer(anna), Department(shop)})); });
  FailEachStatement([&] { Step("Post", id); });
  FailEachStatement([&] { Step("UnPost", id); });
  Step("Post", id);
  EXPECT_EQ(ByItems("DEP", 0, 0, 0, "FDetail = TRUE AND FCurrencyID = 0"),
            "6000.01 0 SHOP 0 5 0 5\n");
  EXPECT_EQ(Breaches(), "");
}

// ---- The check of the books ----

TEST_P(LineItemsTest, TheCheckHoldsBalancesByItemsAgainstTheLines) {
  SaveAndPost(Sold("1130", 5, {Customer(anna)}));
  SaveAndPost(Sold("1130", 7, {Customer(bert)}));
  EXPECT_EQ(Breaches(), "");
  const std::string account = std::to_string(AccountId("1130"));
  const std::string wrong = "ItemBalance Account " + account + " 1130\n";
  for (const std::string name :
       {"FDebit", "FCredit", "FDebitFor", "FCreditFor", "FDebitQty", "FCreditQty"}) {
    const std::string of_anna = " WHERE FCombinationID = 1";
    Break("UPDATE t_ItemBalance SET " + name + " = " + name + " + 1" + of_anna);
    EXPECT_EQ(Breaches(), wrong) << name;
    Break("UPDATE t_ItemBalance SET " + name + " = " + name + " - 1" + of_anna);
  }
  EXPECT_EQ(Breaches(), "");
  Break("UPDATE t_ItemCombinationItem SET FItemID = " + std::to_string(bert) +
        " WHERE FCombinationID = 1");
  EXPECT_EQ(Breaches(), "ItemCombination Books 1 3:" + std::to_string(anna) + "\n" + wrong + wrong);
}

TEST_P(LineItemsTest, TheCheckTellsItemsByTheirNames) {
  SaveAndPost(Sold("6000.01", 5, {Customer(anna), Department(shop)}));
  Break("DELETE FROM t_ItemBalance");
  const auto problems = TextOf(Call("QDSVGLBooks.BooksInfo", "Check", props).As<Recordset>(),
                               {"FRecord", "FProblem"});
  EXPECT_EQ(problems, "6000.01 Its balance in currency 1, period 2024/1, DEP SHOP, CUSTOMER C001 "
                      "is not the sum of its posted lines.\n");
}

QDCLGL_BOOKS_TEST(LineItemsTest);

}  // namespace
}  // namespace qdclgl::server::testing

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/ledgers/multi_ledger_set.h"
#include "tests/server/records/record_suite.h"
#include "tests/support/state_text.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::StateText;

constexpr const char* kInfo = "QDSVGLMCLedger.MultiColumnLedgerInfo";
constexpr const char* kUpdate = "QDSVGLMCLedger.MColLedgerUpdate";

const RecordKind kLedgers = {
    .noun = "Multi-column ledger",
    .subject = "MultiColumnLedger",
    .info = kInfo,
    .update = kUpdate,
    .table = "t_MultiColumnLedger",
    .id = "FLedgerID",
    .columns = {{"FLedgerName", "Costs", "Expenses"},
                {"FAccountID", Long{1}, Long{2}},
                {"FAccountNumber", "4000", "5000"},
                {"FAccountName", "Costs", "Other"},
                {"FDelete", false, false}},
    .longest = {{"FLedgerName", 255}},
    .joined = {"FAccountNumber", "FAccountName", "FDelete"},
    .required = {"FLedgerName"},
    .unique = {{"FLedgerName", "NameTaken"}},
    .name = "FLedgerName",
    .order = "FLedgerName",
    .text_key = "FLedgerName",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "LedgerID",
    .text_argument = "LedgerName",
    .further_methods = {{kInfo, "GetLedger", "reader"}},
    .prepare =
        [](RecordBooks& books) {
          books.AddAccount("4000", "Costs");
          books.AddAccount("5000", "Other");
        },
    .references = {{.column = "FAccountID",
                    .noun = "account",
                    .id = "FAccountID",
                    .update = "QDSVGLAccount.AccountUpdate",
                    .make =
                        [](RecordBooks& books) {
                          static int number = 6000;
                          return books.AddAccount(std::to_string(++number));
                        },
                    .is_required = true}},
};
QDCLGL_RECORD_KIND(MultiColumnLedger, kLedgers);

class MultiLedgerTest : public RecordCalls {
 protected:
  MultiLedgerTest() : RecordCalls("QDSVGLMCLedger.MultiColumnLedger") {
    costs = AddAccount("4000", "Costs");
    rent = AddAccount("4000.01", "Rent");
    wages = AddAccount("4000.02", "Wages");
    dollar = Call("QDSVGLCurrency.CurrencyUpdate", "Create", props,
                  Row({{"FNumber", "USD"}, {"FName", "Dollar"}, {"FExchangeRate", 0.5}}))
                 .As<Long>();
  }

  static Variant List(std::initializer_list<Ref<Dictionary>> rows) {
    auto list = Make<Vector>();
    for (const auto& row : rows) list->Append(Variant(row));
    return Variant(list);
  }
  Ref<Dictionary> Column(std::string_view name, Long account, Long side = 1) const {
    return Row({{"FColumnName", name}, {"FAccountID", account}, {"FDC", side}});
  }
  Ref<Dictionary> Ledger(std::string_view name, const Variant& columns = Missing,
                         const Variant& sub_columns = Missing) const {
    auto row = Row({{"FLedgerName", name}, {"FAccountID", costs}});
    if (!columns.IsMissing()) row->Put("_Columns", columns);
    if (!sub_columns.IsMissing()) row->Put("_SubColumns", sub_columns);
    return row;
  }
  void Delete(Long id) { Call(kUpdate, "Delete", props, ByRef(id)); }
  Long Save(const Ref<Dictionary>& row) { return Call(kUpdate, "Create", props, row).As<Long>(); }
  void SaveAgain(Long id, const Ref<Dictionary>& row) {
    Call(kUpdate, "Update", props, ByRef(id), row);
  }
  std::string Listed(Long id, std::string_view key = "_Columns") {
    return StateText(Detail(id)->Value(key));
  }
  std::string LastChanges() {
    return *Books().QueryValue<std::string>(
        "SELECT FChanges FROM t_Audit WHERE FSubject = 'MultiColumnLedger' ORDER BY FAuditID DESC"
        " LIMIT 1");
  }

  Long costs, rent, wages, dollar;
};

TEST_P(MultiLedgerTest, ALedgerIsSavedWithItsListsAndReadWithNamesNumbersAndRates) {
  const Long id =
      Save(Ledger("Costs", List({Column("Wages", wages), Column("", rent, 0)}),
                  List({Row({{"FCurrencyID", dollar}, {"FSubColumnName", "Dollars"}})})));
  EXPECT_EQ(Listed(id),
            "[{FColumnID: 1, FColumnName: \"Wages\", FAccountID: " + std::to_string(wages) +
                ", FAccountNumber: \"4000.02\", FAccountName: \"Wages\", FDC: 1}, {FColumnID: 2, "
                "FColumnName: \"\", FAccountID: " +
                std::to_string(rent) +
                ", FAccountNumber: \"4000.01\", FAccountName: \"Rent\", FDC: 0}]");
  EXPECT_EQ(Listed(id, "_SubColumns"),
            "[{FSerialNo: 1, FSubColumnName: \"Dollars\", FCurrencyID: 2, FCurrencyNumber: "
            "\"USD\", FCurrencyName: \"Dollar\", FExchangeRate: 0.5#}]");
  const Ref<Dictionary> account =
      Call("QDSVGLAccount.AccountInfo", "GetDetail", props, rent).As<Dictionary>();
  account->Put("FName", "Lease");
  Call("QDSVGLAccount.AccountUpdate", "Update", props, rent, account);
  EXPECT_NE(Listed(id).find("FAccountName: \"Lease\""), std::string::npos) << "at each read";
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MultiLedgerTest, ListsAndReadsByNameHaveTheListsOfRowsToo) {
  const Long with = Save(Ledger("B", List({Column("x", rent)})));
  const Long without = Save(Ledger("A"));
  const auto list = Call(kInfo, "GetList", props).As<Recordset>();
  std::string text;
  for (; !list->Eof(); list->MoveNext()) {
    const Ref<Dictionary> row = list->Row();
    text += row->Value("FLedgerName").As<String>() + " " +
            std::to_string(row->Value("_Columns").As<Vector>()->Count()) +
            std::to_string(row->Value("_SubColumns").As<Vector>()->Count()) + "\n";
  }
  EXPECT_EQ(text, "A 00\nB 10\n");
  EXPECT_EQ(
      StateText(Call(kInfo, "GetDetailByNumber", props, "B").As<Dictionary>()->Value("_Columns")),
      Listed(with));
  EXPECT_EQ(Listed(without), "[]");
}

TEST_P(MultiLedgerTest, TheListsThatAreSentReplaceAndOthersStay) {
  const Long id = Save(Ledger("Costs", List({Column("a", rent), Column("b", wages)}),
                              List({Row({{"FCurrencyID", dollar}})})));
  const Ref<Dictionary> row = Detail(id);
  row->Remove("_SubColumns");
  row->Value("_Columns").As<Vector>()->Remove(1);
  row->Value("_Columns").As<Vector>()->Append(Variant(Column("c", rent)));
  SaveAgain(id, row);
  std::string names;
  for (const Long i : {1, 2}) {
    const auto column = Detail(id)->Value("_Columns").As<Vector>()->Item(i).As<Dictionary>();
    names += column->Value("FColumnName").As<String>();
  }
  EXPECT_EQ(names, "bc");
  EXPECT_EQ(Detail(id)->Value("_Columns").As<Vector>()->Count(), 2);
  EXPECT_EQ(Detail(id)->Value("_SubColumns").As<Vector>()->Count(), 1);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MultiLedgerTest, ColumnsKeepTheirOrderAndNumbersAndNewOnesGetFreeNumbers) {
  const auto column = [&](const Variant& number) {
    auto row = Column("x", rent);
    row->Put("FColumnID", number);
    return row;
  };
  const Long id = Save(Ledger(
      "Costs", List({column(Long{7}), column(Long{0}), column("2"), column(Null), column(1)})));
  std::string numbers;
  const auto columns = Detail(id)->Value("_Columns").As<Vector>();
  for (Long i = 1; i <= columns->Count(); ++i) {
    numbers += CStr(columns->Item(i).As<Dictionary>()->Value("FColumnID")) + " ";
  }
  EXPECT_EQ(numbers, "7 3 2 4 1 ");
}

TEST_P(MultiLedgerTest, WhatIsNoColumnIsRefusedByName) {
  const Long id = Save(Ledger("Costs", List({Column("a", rent)})));
  const std::string before = State();
  const auto twice = [&] {
    auto row = Column("x", rent);
    row->Put("FColumnID", Long{3});
    return row;
  };
  auto misspelt = Column("x", rent);
  misspelt->Put("FAcountID", rent);
  auto many = Make<Vector>();
  for (int i = 0; i < 1001; ++i) many->Append(Variant(Column("x", rent)));
  const std::tuple<Variant, const char*, std::string> cases[] = {
      {Variant("text"), "BadValue", "_Columns is no Vector."},
      {Nothing, "BadValue", "_Columns is no Vector."},
      {List({nullptr}), "BadValue", "an element of _Columns is no Dictionary."},
      {List({misspelt}), "BadValue", "there is no column \"FAcountID\" in an element of _Columns."},
      {List({twice(), twice()}), "BadValue", "_Columns: FColumnID 3 stands twice."},
      {List({Column("x", rent, 2)}), "BadValue", "_Columns: FDC is 1 for debit or 0 for credit."},
      {List({Column(std::string(256, 'x'), rent)}), "BadValue",
       "_Columns: FColumnName is longer than 255 characters."},
      {Variant(many), "BadValue", "_Columns: there are more than 1000 rows."},
      {List({Column("x", kNoRecord)}), "BadReference", "there is no account 30000."},
      {List({Column("x", 0)}), "BadReference", "FAccountID is missing."},
  };
  for (const auto& [columns, refusal, reason] : cases) {
    const auto create = Ledger("Other", columns);
    EXPECT_EQ(RefusalOf([&] { Save(create); }), refusal) << reason;
    EXPECT_EQ(SentenceOf([&] { Save(create); }), "Multi-column ledger Other: " + reason);
    const Ref<Dictionary> update = Detail(id);
    update->Put("_Columns", columns);
    EXPECT_EQ(RefusalOf([&] { SaveAgain(id, update); }), refusal) << reason;
  }
  EXPECT_EQ(RefusalOf([&] {
              Save(Ledger("Other", Missing, List({Row({{"FCurrencyID", Long{77}}})})));
            }),
            "BadReference");
  EXPECT_EQ(RefusalOf([&] {
              Save(Ledger("Other", Missing, List({Row({{"FCurrencyID", "x"}})})));
            }),
            "BadValue");
  EXPECT_EQ(State(), before);
}

TEST_P(MultiLedgerTest, AccountsAndCurrenciesOfLedgersStay) {
  const Long id =
      Save(Ledger("Costs", List({Column("a", rent)}), List({Row({{"FCurrencyID", dollar}})})));
  EXPECT_EQ(SentenceOf([&] { Call("QDSVGLAccount.AccountUpdate", "Delete", props, rent); }),
            "Account 4000.01 (Rent): multi-column ledger Costs refers to it.");
  Call("QDSVGLCurrency.CurrencyUpdate", "Delete", props, dollar);
  EXPECT_TRUE(Call("QDSVGLCurrency.CurrencyInfo", "GetDetail", props, dollar)
                  .As<Dictionary>()
                  ->Value("FDeleted")
                  .As<Boolean>());
  SaveAgain(id, Detail(id));  // what was there may stay
  EXPECT_EQ(RefusalOf([&] {
              Save(Ledger("Other", Missing, List({Row({{"FCurrencyID", dollar}})})));
            }),
            "BadReference");
  Delete(id);
  Call("QDSVGLAccount.AccountUpdate", "Delete", props, rent);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MultiLedgerTest, LedgersOfDeletedAccountsAreShownWithTheSwitchAlone) {
  const Long cash = AddAccount("1000", "Cash");
  auto row = Ledger("Cash");
  row->Put("FAccountID", cash);
  const Long id = Save(row), other = Save(Ledger("Costs"));
  const Ref<Dictionary> account =
      Call("QDSVGLAccount.AccountInfo", "GetDetail", props, cash).As<Dictionary>();
  account->Put("FDelete", true);
  Call("QDSVGLAccount.AccountUpdate", "Update", props, cash, account);
  const auto names = [&](Long options) {
    return TextOf(Call(kInfo, "GetList", props, options).As<Recordset>(), {"FLedgerName"});
  };
  EXPECT_EQ(names(0), "Costs\n");
  EXPECT_EQ(names(1), "Cash\nCosts\n");
  const auto read = [&](Long ledger, bool view, const char* filter) {
    String text = filter;
    const auto found =
        Call(kInfo, "GetDetail", props, ledger, ByRef(view), ByRef(text)).As<Dictionary>();
    return found ? found->Value("FLedgerName").As<String>() : "Nothing";
  };
  EXPECT_EQ(read(id, true, ""), "Cash");
  EXPECT_EQ(read(id, false, ""), "Nothing");
  EXPECT_EQ(read(other, false, ""), "Costs");
  EXPECT_EQ(read(other, true, "FLedgerName = 'Cash' OR FAccountNumber = '4000'"), "Costs");
  EXPECT_EQ(read(other, true, "FLedgerName = 'Cash'"), "Nothing");
  EXPECT_EQ(read(id, true, "FDelete"), "Cash");
  EXPECT_EQ(RefusalOf([&] { read(id, true, "FName = 'x'"); }), "BadFilter");
  EXPECT_EQ(Call(kInfo, "GetDetail", props, id).As<Dictionary>()->Value("FDelete").As<Boolean>(),
            true);
}

TEST_P(MultiLedgerTest, TheTrailTellsOldAndNewColumns) {
  const Long id = Save(Ledger("Costs", List({Column("a", rent), Column("b", wages)})));
  const std::string second = "{\"FIndex\":2,\"FColumnID\":2,\"FColumnName\":\"b\",\"FAccountID\":" +
                             std::to_string(wages) + ",\"FDC\":1}";
  EXPECT_EQ(
      LastChanges(),
      "{\"new\":{\"FVersion\":1,\"FLedgerName\":\"Costs\",\"FAccountID\":" + std::to_string(costs) +
          ",\"_Columns\":[{\"FIndex\":1,\"FColumnID\":1,\"FColumnName\":\"a\",\"FAccountID\":" +
          std::to_string(rent) + ",\"FDC\":1}," + second + "]}}");
  const Ref<Dictionary> row = Detail(id);
  row->Value("_Columns").As<Vector>()->Item(1).As<Dictionary>()->Put("FDC", Long{0});
  row->Value("_Columns").As<Vector>()->Remove(2);
  SaveAgain(id, row);
  EXPECT_EQ(
      LastChanges(),
      "{\"FVersion\":[1,2],\"_Columns\":{\"1\":{\"FDC\":[1,0]},\"2\":{\"old\":" + second + "}}}");
  Break("UPDATE t_MultiColumn SET FDC = 1");
  EXPECT_NE(Breaches().find("Record MultiColumnLedger"), std::string::npos);
}

TEST_P(MultiLedgerTest, ASaveAndARemovalAreWholeOrNotAtAll) {
  const Long id =
      Save(Ledger("Costs", List({Column("a", rent)}), List({Row({{"FCurrencyID", dollar}})})));
  const Ref<Dictionary> row = Detail(id);
  row->Put("FLedgerName", "New");
  row->Value("_Columns").As<Vector>()->Append(Variant(Column("b", wages)));
  FailEachStatement([&] { SaveAgain(id, row); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Breaches(), "");
  FailEachStatement([&] { Save(Ledger("Again", List({Column("a", rent)}))); });
}

TEST_P(MultiLedgerTest, TheCheckFindsColumnsThatLeadNowhere) {
  Save(Ledger("Costs", List({Column("a", rent)}), List({Row({{"FCurrencyID", dollar}})})));
  Break("UPDATE t_MultiColumn SET FAccountID = 30000");
  Break("UPDATE t_MultiSubColumn SET FCurrencyID = 30000");
  const std::string found = Breaches();
  EXPECT_NE(found.find("Reference MultiColumnLedger 1 Costs\nReference MultiColumnLedger 1 Costs"),
            std::string::npos)
      << found;
}

TEST_P(MultiLedgerTest, TheClassesWorkOnTheServer) {
  const auto ledgers = Make<MultiLedgerSet>();
  const auto ledger = ledgers->CreateNew("Costs");
  ledger->AccountID(costs);
  for (const Long account : {wages, rent}) {
    ledger->Columns()->Add();
    const auto column = ledger->Columns()->Item(ledger->Columns()->Count());
    column->AccountID(account);
    column->DC(1);
  }
  ledger->SubColumns()->Add();
  ledger->SubColumns()->Item(1)->CurrencyID(dollar);
  ledger->SaveChanges();
  EXPECT_EQ(ledger->AccountNumber(), "4000");
  EXPECT_EQ(ledger->Columns()->Item(1)->AccountNumber(), "4000.02");
  EXPECT_EQ(ledger->SubColumns()->Item(1)->ExchangeRate(), 0.5);
  ledger->Columns()->SortByAccountNumber();
  ledger->SaveChanges();
  EXPECT_EQ(ledger->Columns()->Item(1)->AccountNumber(), "4000.01");

  const auto again = ledgers->Item(ledger->LedgerID());
  again->Columns()->Item(1)->ColumnName("Rent");
  again->SaveChanges();
  EXPECT_EQ(ledgers->Item(ledger->LedgerID())->Columns()->Item(1)->ColumnName(), "Rent");
  EXPECT_EQ(RefusalOf([&] {
              ledger->LedgerName("x");
              ledger->SaveChanges();
            }),
            "Changed");

  for (auto& walked : *ledgers) {
    EXPECT_EQ(walked.Columns()->Count(), 2);
    walked.LedgerName("Renamed");
    walked.SaveChanges();
  }
  EXPECT_EQ(ledgers->Item(ledger->LedgerID())->Columns()->Count(), 2) << "a walk loses no columns";
  EXPECT_EQ(ledgers->ExistenceCheck(ledger->LedgerID()), ledger->LedgerID());
  ledgers->Remove(ledger->LedgerID());
  ledgers->Refresh();
  EXPECT_EQ(ledgers->Count(), 0);
  EXPECT_EQ(Breaches(), "");
}

QDCLGL_BOOKS_TEST(MultiLedgerTest);

}  // namespace
}  // namespace qdclgl::server::testing

// Voucher templates on the server: what is kept of them, and what is refused.
#include "qdclgl/vouchers/voucher_temp.h"

#include "qdclgl/vouchers/voucher_set.h"
#include "tests/server/ledger_fixture.h"
#include "tests/support/state_text.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::StateText;

constexpr std::string_view kInfo = "QDSVGLVoucherTemp.VoucherTempInfo";
constexpr std::string_view kUpdate = "QDSVGLVoucherTemp.VoucherTempUpdate";

class VoucherTempServer : public LedgerTest {
 protected:
  // A template to be sent.
  static Ref<Dictionary> Temp(std::string_view name, std::vector<Ref<Dictionary>> lines = {},
                              Cells more = {}) {
    auto row = Make<Dictionary>();
    row->Put("FName", name);
    for (const auto& [key, value] : more) row->Put(key, value);
    auto entries = Make<Vector>();
    for (const auto& line : lines) entries->Append(Variant(line));
    row->Put("_Entries", Variant(entries));
    return row;
  }
  // One with a detail, more of one side than of the other, and a line of no amount.
  static Ref<Dictionary> Rent() {
    auto details = Make<Vector>();
    details->Append(Variant(Row({{"FItemClassID", Long{3}}, {"FValue", "Shop"}})));
    return Temp("Rent",
                {Line("4000.01", Currency(800), 0,
                      {{"FExplanation", "Rent"}, {"_Details", Variant(details)}}),
                 Line("2000", 0, 0, {{"FNote", "kept along"}})},
                {{"FPeriod", Long{3}},
                 {"FPeriodRange", "1-12"},
                 {"FGroupID", Long{2}},
                 {"FReference", "R"},
                 {"FAttachments", Long{2}},
                 {"FTypeID", Long{7}},
                 {"FVoucherID", Long{70}},
                 {"FSaveFlag", "1"}});
  }
  static constexpr const char* kRent =
      "FName: \"Rent\", FPeriod: 3, FPeriodRange: \"1-12\", FGroupID: 2, FGroup: \"Payments\", "
      "FNumber: 1, FReference: \"R\", FAttachments: 2, FTypeID: 7, FVoucherID: 70, FSaveFlag: "
      "\"1\"";

  Long Create(const Ref<Dictionary>& row) { return Call(kUpdate, "Create", props, row).As<Long>(); }
  void Save(Long id, const Ref<Dictionary>& row) { Call(kUpdate, "Update", props, ByRef(id), row); }
  void Delete(Long id) { Call(kUpdate, "Delete", props, ByRef(id)); }
  Ref<Dictionary> Detail(Long id) {
    return Call(kInfo, "GetDetail", props, ByRef(id)).As<Dictionary>();
  }
  Long NumberOf(Long id) { return Detail(id)->Value("FNumber").As<Long>(); }
  // The header alone, and accounts with sides and amounts: "4000.01 1 800; ".
  static std::string Header(Dictionary& row) {
    const Ref<Dictionary> header = row.Clone();
    header->Erase("_Entries");
    return StateText(Variant(header));
  }
  static std::string Lines(const Dictionary& row) {
    std::string text;
    const auto entries = row.Value("_Entries").As<Vector>();
    for (std::size_t i = 0; i < entries->size(); ++i) {
      const auto line = entries->at(i).As<Dictionary>();
      text += CStr(line->Value("FAccountNumber")) + " " + CStr(line->Value("FDC")) + " " +
              CStr(line->Value("FAmount")) + "; ";
    }
    return text;
  }
  Ref<Recordset> List(String filter = "", String sort = "") {
    return Call(kInfo, "GetList", props, ByRef(filter), ByRef(sort)).As<Recordset>();
  }
  std::string Trail(Long id) {
    return RecordsTest::Trail("FSubject = 'VoucherTemp' AND FRecordID = " + std::to_string(id),
                              {"FNumber", "FRecord", "FAction", "FChanges"});
  }
};
QDCLGL_BOOKS_TEST(VoucherTempServer);

// ---- Saving and reading ----

TEST_P(VoucherTempServer, ATemplateComesBackAsOneTreeByEveryWay) {
  const Ref<Dictionary> sent = Rent();
  const Long id = Create(sent);
  EXPECT_EQ(sent->Value("FVoucherTempID").As<Long>(), id);
  EXPECT_EQ(sent->Value("FVersion").As<Long>(), 1);
  const Ref<Dictionary> row = Detail(id);
  EXPECT_EQ(Header(*row),
            "{FVoucherTempID: " + std::to_string(id) + ", FVersion: 1, " + kRent + "}");
  EXPECT_EQ(Lines(*row), "4000.01 1 800; 2000 0 0; ");
  const auto entries = row->Value("_Entries").As<Vector>();
  const auto first = entries->at(0).As<Dictionary>(), second = entries->at(1).As<Dictionary>();
  EXPECT_EQ(CStr(first->Value("FAccountName")), "Rent");
  EXPECT_EQ(CStr(first->Value("FCurrencyNumber")), "EUR");
  EXPECT_EQ(CStr(first->Value("_Details").As<Vector>()->at(0).As<Dictionary>()->Value("FValue")),
            "Shop");
  EXPECT_EQ(CStr(second->Value("FNote")), "kept along");
  EXPECT_EQ(second->Value("_Details").As<Vector>()->Count(), 0);

  const std::string whole = StateText(Variant(row));
  const auto by_number = [&](const Variant& group) {
    Variant period(Long{3}), number(Long{1}), key = group;
    return StateText(
        Call(kInfo, "GetDetailByNumber", props, ByRef(period), ByRef(key), ByRef(number)));
  };
  EXPECT_EQ(by_number("Payments"), whole);
  EXPECT_EQ(by_number(Long{2}), whole);
  EXPECT_EQ(by_number("Receipts"), "Nothing");
  EXPECT_EQ(by_number("unknown"), "Nothing");
  const Ref<Recordset> list = List();
  ASSERT_EQ(list->RecordCount(), 1);
  EXPECT_EQ(StateText(Variant(list->Row())), Header(*row));
  EXPECT_EQ(Detail(id + 1), nullptr);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, AnUpdateReplacesHeaderAndLinesAndCountsTheVersion) {
  const Long other = Create(Rent());
  const Long id = Create(Rent());
  const std::string others = StateText(Variant(Detail(other)));
  const Ref<Dictionary> row =
      Temp("Wages", {Line("4000.02", Currency(5), 0)}, {{"FVersion", Long{1}}});
  Save(id, row);
  EXPECT_EQ(row->Value("FVersion").As<Long>(), 2);
  const Ref<Dictionary> now = Detail(id);
  EXPECT_EQ(Header(*now), "{FVoucherTempID: " + std::to_string(id) +
                              ", FVersion: 2, FName: \"Wages\", FPeriod: 0, FPeriodRange: \"\", "
                              "FGroupID: 0, FGroup: \"\", FNumber: 1, FReference: \"\", "
                              "FAttachments: 0, FTypeID: 0, FVoucherID: 0, FSaveFlag: \"\"}");
  EXPECT_EQ(Lines(*now), "4000.02 1 5; ");
  Save(id, now);  // a row that was read is saved again
  Save(id, Temp("Bare", {}, {{"FVersion", Long{3}}}));
  EXPECT_EQ(Lines(*Detail(id)), "");
  EXPECT_EQ(StateText(Variant(Detail(other))), others);
  EXPECT_EQ(RefusalOf([&] { Save(id, Temp("Late", {}, {{"FVersion", Long{2}}})); }), "Changed");
  EXPECT_EQ(RefusalOf([&] { Save(id, Temp("Late")); }), "NoVersion");
  EXPECT_EQ(RefusalOf([&] {
              Save(id + 7, Temp("Late", {}, {{"FVersion", Long{1}}}));
            }),
            "NotFound");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, ARowOfAListLeavesTheLinesAsTheyAre) {
  const Long id = Create(Rent());
  const std::string lines = StateText(Detail(id)->Value("_Entries"));
  auto temps = Make<VoucherTempSet>();
  const Ref<VoucherTemp> listed = temps->GetCurrent();
  listed->Name("Rent of the shop");
  listed->SaveChanges();
  EXPECT_EQ(StateText(Detail(id)->Value("_Entries")), lines);
  EXPECT_EQ(listed->Entries()->Count(), 2);
  EXPECT_EQ(CStr(Detail(id)->Value("FName")), "Rent of the shop");
  EXPECT_EQ(Lines(*Detail(Create(Row({{"FName", "Bare"}})))), "");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, LinesNeedAccountsAndNoBalance) {
  const auto refusal = [&](const Ref<Dictionary>& line) {
    return SentenceOf([&] { Create(Temp("T", {Line("1000", 1, 0), line})); });
  };
  const std::string before = State();
  EXPECT_EQ(refusal(Row({{"FAmount", Currency(1)}})),
            "Voucher template 1 (T): line 2: it has no account.");
  EXPECT_EQ(refusal(Line("9999", 1, 0)),
            "Voucher template 1 (T): line 2: there is no account 9999.");
  EXPECT_EQ(refusal(Row({{"FAccountID", Long{999}}})),
            "Voucher template 1 (T): there is no account 999.");
  EXPECT_EQ(refusal(Line("1000", 1, 0, {{"FCurrencyNumber", "XXX"}})),
            "Voucher template 1 (T): line 2: there is no currency XXX.");
  EXPECT_EQ(refusal(Line("1000", 1, 0, {{"FCurrencyID", Long{99}}})),
            "Voucher template 1 (T): there is no currency 99.");
  EXPECT_EQ(refusal(Line("1000", 1, 0, {{"FDC", Long{2}}})),
            "Voucher template 1 (T): line 2: it is neither debit (1) nor credit (0).");
  EXPECT_EQ(refusal(Line("1000", 1, 0, {{"FAmount", "many"}})),
            "Voucher template 1 (T): Line 2: The value of FAmount does not fit its column.");
  EXPECT_EQ(State(), before);
  Create(Temp("Foreign", {Line("1000", 1, 0, {{"FCurrencyNumber", "usd"}})}));
  Create(Temp("Above", {Line("4000", 1, 0)}));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, ATemplateHasANameAndOnlyKeysThatAreKept) {
  EXPECT_EQ(RefusalOf([&] { Create(Temp("")); }), "Required");
  EXPECT_EQ(RefusalOf([&] { Create(Temp(std::string(256, 'x'))); }), "BadValue");
  EXPECT_EQ(SentenceOf([&] {
              Create(Temp("T", {}, {{"FChecked", true}}));
            }),
            "Voucher template: there is no column \"FChecked\".");
  EXPECT_EQ(RefusalOf([&] {
              Create(Temp("T", {}, {{"_Details", Variant(Make<Vector>())}}));
            }),
            "BadValue");
  EXPECT_EQ(RefusalOf([&] { Create(Temp("T", {}, {{"FPeriod", Long{-1}}})); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Create(Temp("T", {}, {{"FGroupID", Long{99}}})); }), "BadGroup");
  EXPECT_EQ(RefusalOf([&] { Create(Temp("T", {}, {{"FGroup", "unknown"}})); }), "BadGroup");
  const Long id = Create(Temp("T", {}, {{"FGroup", "Payments"}}));
  EXPECT_EQ(Detail(id)->Value("FGroupID").As<Long>(), 2);
  Create(Temp("T"));  // names may stand twice
}

// ---- Numbers ----

TEST_P(VoucherTempServer, ATemplateIsNumberedWithinItsPeriodAndGroup) {
  const auto temp = [&](Long period, Long group, Long number) {
    return Temp("T", {}, {{"FPeriod", period}, {"FGroupID", group}, {"FNumber", number}});
  };
  EXPECT_EQ(NumberOf(Create(temp(1, 1, 0))), 1);
  EXPECT_EQ(NumberOf(Create(temp(1, 1, 0))), 2);
  EXPECT_EQ(NumberOf(Create(temp(1, 2, 0))), 1);
  EXPECT_EQ(NumberOf(Create(temp(2, 1, 0))), 1);
  const Long given = Create(temp(1, 1, 40));
  EXPECT_EQ(NumberOf(given), 40);
  EXPECT_EQ(NumberOf(Create(temp(1, 1, 0))), 41);
  EXPECT_EQ(SentenceOf([&] { Create(temp(1, 1, 40)); }),
            "Voucher template 40 (T): template " + std::to_string(given) +
                " has that number in its period and group.");
  EXPECT_EQ(RefusalOf([&] { Create(temp(1, 1, 40)); }), "NumberTaken");
  EXPECT_EQ(RefusalOf([&] { Create(temp(1, 1, -1)); }), "BadNumber");
  EXPECT_EQ(RefusalOf([&] { Create(temp(1, 1, 1'000'000'000)); }), "BadNumber");
  // Its own number is no other's; moved, it gets another one only when it asks.
  const Ref<Dictionary> row = Detail(given);
  Save(given, row);
  row->Put("FGroupID", Long{2});
  row->Put("FNumber", Long{1});
  EXPECT_EQ(RefusalOf([&] { Save(given, row); }), "NumberTaken");
  row->Put("FNumber", Long{0});
  Save(given, row);
  EXPECT_EQ(NumberOf(given), 2);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, ExistenceIsAskedByIdOrByPeriodGroupAndNumber) {
  const Long id = Create(Rent());
  const auto exists = [&](auto... arguments) {
    return Call(kInfo, "ExistenceCheck", props, arguments...).template As<Long>();
  };
  EXPECT_EQ(exists(id), id);
  EXPECT_EQ(exists(id + 1), 0);
  const Variant three(Long{3}), one(Long{1}), group("Payments"), group_id(Long{2});
  EXPECT_EQ(exists(Named("Period", three), Named("Group", group), Named("Number", one)), id);
  EXPECT_EQ(exists(Named("Period", three), Named("Group", group_id), Named("Number", one)), id);
  EXPECT_EQ(exists(Named("Period", one), Named("Group", group), Named("Number", one)), 0);
  EXPECT_EQ(exists(Named("Period", three), Named("Group", group)), 0);
  EXPECT_EQ(exists(), 0);
}

TEST_P(VoucherTempServer, ListsAreFilteredAndSorted) {
  Create(Rent());
  Create(Temp("Wages", {}, {{"FPeriod", Long{1}}}));
  Create(Temp("Tax", {}, {{"FPeriod", Long{1}}}));
  const auto names = [&](const String& filter, const String& sort) {
    return TextOf(List(filter, sort), {"FName", "FNumber"});
  };
  EXPECT_EQ(names("", ""), "Wages 1\nTax 2\nRent 1\n");
  EXPECT_EQ(names("FPeriod = 1", "FName"), "Tax 2\nWages 1\n");
  EXPECT_EQ(names("FGroup = 'Payments'", ""), "Rent 1\n");
  EXPECT_EQ(RefusalOf([&] { List("FMissing = 1"); }), "BadFilter");
  EXPECT_EQ(RefusalOf([&] { List("", "FMissing"); }), "BadSort");
}

// ---- References ----

TEST_P(VoucherTempServer, WhatATemplateRefersToIsNotRemoved) {
  const Long id = Create(Rent());
  const Long account = Call("QDSVGLAccount.AccountInfo", "ExistenceCheck", props,
                            Named("Number", std::string("4000.01")))
                           .As<Long>();
  EXPECT_EQ(SentenceOf([&] { Call("QDSVGLAccount.AccountUpdate", "Delete", props, account); }),
            "Account 4000.01 (Rent): voucher template 1 (Rent) refers to it.");
  EXPECT_EQ(
      SentenceOf([&] { Call("QDSVGLVoucherGroup.VoucherGroupUpdate", "Delete", props, Long{2}); }),
      "Voucher group Payments: voucher template 1 (Rent) refers to it.");
  Delete(id);
  Call("QDSVGLAccount.AccountUpdate", "Delete", props, account);
  Call("QDSVGLVoucherGroup.VoucherGroupUpdate", "Delete", props, Long{2});
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, ASettlementTypeThatALineNamesIsThereAndStays) {
  const auto named = [&](Long type) {
    return Temp("Paid by " + std::to_string(type), {Line("1000", 5, 0, {{"FSettleTypeID", type}})});
  };
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Create(named(1)); }), "BadReference");
  EXPECT_EQ(State(), before);
  const Long type =
      Call("QDSVGLSettType.SettTypeUpdate", "Create", props, Row({{"FNumber", "CHQ"}})).As<Long>();
  const Long temp = Create(named(type));
  EXPECT_EQ(SentenceOf([&] { Call("QDSVGLSettType.SettTypeUpdate", "Delete", props, type); }),
            "Settlement type CHQ (): voucher template 1 (Paid by 1) refers to it.");
  Break("UPDATE t_VoucherTempEntry SET FSettleTypeID = 9");
  const std::string record = "VoucherTemp " + std::to_string(temp) + " 1 (Paid by 1)\n";
  EXPECT_EQ(Breaches(), "Reference " + record + "Record " + record);
  Break("UPDATE t_VoucherTempEntry SET FSettleTypeID = 1");
  Delete(temp);
  Call("QDSVGLSettType.SettTypeUpdate", "Delete", props, type);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, TheCheckFindsLinesOfNoAccountAndTemplatesOfNoGroup) {
  const Long id = Create(Rent());
  const std::string record = " VoucherTemp " + std::to_string(id) + " 1 (Rent)\n";
  const std::string no_reference = "Reference" + record, not_on_trail = "Record" + record;
  Break("UPDATE t_VoucherTempEntry SET FAccountID = 999 WHERE FEntryID = 2");
  EXPECT_EQ(Breaches(), no_reference + not_on_trail);
  Break("UPDATE t_VoucherTemp SET FGroupID = 888");
  EXPECT_EQ(Breaches(), no_reference + no_reference + not_on_trail);
}

// ---- Deleting, the trail, failures ----

TEST_P(VoucherTempServer, TheTrailTellsHeaderLinesAndDetailsOldAndNew) {
  const Long id = Create(Rent());
  const Ref<Dictionary> row = Detail(id);
  row->Put("FName", "Rent of the shop");
  const auto line = row->Value("_Entries").As<Vector>()->at(0).As<Dictionary>();
  line->Put("FAmount", Currency(900));
  line->Value("_Details").As<Vector>()->at(0).As<Dictionary>()->Put("FValue", "Store");
  Save(id, row);
  Delete(id);
  const std::string trail = Trail(id);
  const auto expect = [&](const std::string& part) {
    EXPECT_NE(trail.find(part), std::string::npos) << part << "\nin\n" << trail;
  };
  expect("1 1 (Rent) Create {\"new\":{\"FVersion\":1,\"FName\":\"Rent\",\"FPeriod\":3,"
         "\"FPeriodRange\":\"1-12\",\"FGroupID\":2,\"FNumber\":1,");
  expect("\"_Details\":[{\"FEntryID\":1,\"FIndex\":1,\"FItemClassID\":3,\"FValue\":\"Shop\"}]}}");
  expect("2 1 (Rent of the shop) Update {\"FVersion\":[1,2],\"FName\":[\"Rent\",\"Rent of the "
         "shop\"],\"_Entries\":{\"1\":{\"FAmount\":[\"800\",\"900\"]}},\"_Details\":{\"1\":{"
         "\"FValue\":[\"Shop\",\"Store\"]}}}");
  expect("3 1 (Rent of the shop) Delete {\"old\":{");
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotFound");
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_VoucherTempEntry"), 0);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_VoucherTempDetail"), 0);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, AFailureOfAnyStatementLeavesBooksAndRowAsTheyWere) {
  const Long id = Create(Rent());
  const Ref<Dictionary> created = Rent();
  FailEachStatement([&] { Create(created); }, [&] { return StateText(Variant(created)); });
  const Ref<Dictionary> updated = Detail(id);
  updated->Put("FName", "New");
  FailEachStatement([&] { Save(id, updated); }, [&] { return StateText(Variant(updated)); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherTempServer, PreparersSaveTemplatesAndReadersReadThem) {
  AddUser("ann", "preparer");
  AddUser("ron", "reader");
  props = Login("ann");
  const Long id = Create(Rent());
  props = Login("ron");
  EXPECT_EQ(Lines(*Detail(id)), "4000.01 1 800; 2000 0 0; ");
  EXPECT_EQ(SentenceOf([&] { Create(Rent()); }),
            "User ron (reader) may not change voucher templates.");
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotPermitted");
}

// ---- By the classes ----

TEST_P(VoucherTempServer, TheClassesSaveListFindAndRemoveTemplates) {
  auto temp = Make<VoucherTemp>();
  temp->Construct(Nothing, Nothing);
  temp->Name("Rent");
  temp->GroupID(2);
  temp->Properties()->Item("FPeriod")->Value(Long{3});
  temp->Entries()->Count(2);
  temp->Entries()->Item(1)->AccountNumber("4000.01");
  temp->Entries()->Item(1)->Debit(Currency(800));
  temp->Entries()->Item(2)->AccountNumber("2000");
  temp->SaveChanges();
  const Long id = temp->VoucherTempID();
  EXPECT_NE(id, 0);
  EXPECT_FALSE(temp->Modified());
  EXPECT_EQ(temp->Entries()->Item(1)->AccountName(), "Rent");
  temp->Entries()->Item(2)->Credit(Currency(800));
  temp->SaveChanges();

  auto temps = Make<VoucherTempSet>();
  EXPECT_EQ(temps->Item(id)->Entries()->Item(2)->Credit(), Currency(800));
  EXPECT_EQ(temps->Item(Missing, 3, "Payments", 1)->VoucherTempID(), id);
  EXPECT_EQ(temps->ExistenceCheck(Missing, 3, "Payments", 1), id);
  EXPECT_EQ(temps->Count(), 1);
  EXPECT_EQ(temps->GetCurrent()->Name(), "Rent");
  temps->Remove(Missing, 3, "Payments", 1);
  EXPECT_EQ(ErrorText([&] { temps->Remove(Missing, 3, "Payments", 1); }), "00000005: ");
  temps->Refresh();
  EXPECT_EQ(temps->Count(), 0);
}

}  // namespace
}  // namespace qdclgl::server::testing

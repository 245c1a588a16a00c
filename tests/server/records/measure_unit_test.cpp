#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/masterdata/measure_unit_group.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLUnit.MeasureUnitInfo";
constexpr const char* kUpdate = "QDSVGLUnit.MeasureUnitUpdate";

Long AddUnitGroup(RecordBooks& books, const std::string& name) {
  return books.Call(kUpdate, "CreateUnitGroup", books.props, name, "HOST", "10.0.0.1").As<Long>();
}
Long AddUnit(RecordBooks& books, Long group, const std::string& number, Double coefficient = 1) {
  const auto row = Row({{"FNumber", number}, {"FName", number}, {"FCoefficient", coefficient}});
  return books.Call(kUpdate, "CreateUnit", books.props, group, row).As<Long>();
}
Long AddAccountOf(RecordBooks& books, const std::string& number, Long group, Long unit) {
  return books
      .Call("QDSVGLAccount.AccountUpdate", "Create", books.props,
            Row({{"FNumber", number},
                 {"FName", number},
                 {"FUnitGroupID", group},
                 {"FMeasureUnitID", unit}}))
      .As<Long>();
}
// Two lines of an account, in a unit.
Ref<Dictionary> VoucherIn(RecordBooks& books, const std::string& name, Long account, Long unit) {
  auto lines = Make<Vector>();
  for (const Long side : {1, 0}) {
    lines->Append(Row({{"FAccountID", account},
                       {"FDC", side},
                       {"FAmount", qdclgl::Currency(7)},
                       {"FQuantity", 2.5},
                       {"FMeasureUnitID", unit}}));
  }
  return Row({{"FDate", DateTime::FromYmd(2024, 1, 31)},
              {"FGroupID", books.AddGroup(name)},
              {"_Entries", lines}});
}
Long GroupOf(RecordBooks& books, Long unit) {
  const auto row = books.Call(kInfo, "GetUnitDetail", books.props, unit).As<Dictionary>();
  return row->Value("FUnitGroupID").As<Long>();
}

void UseInAccount(RecordBooks& books, Long unit) {
  AddAccountOf(books, "A" + std::to_string(unit), GroupOf(books, unit), unit);
}
void UseInVoucher(RecordBooks& books, Long unit) {
  const std::string name = "V" + std::to_string(unit);
  const Long account = AddAccountOf(books, name, GroupOf(books, unit), 0);
  books.Call("QDSVGLVoucher.VoucherUpdate", "Create", books.props,
             VoucherIn(books, name, account, unit));
}

const RecordKind kUnits = {
    .noun = "Unit of measure",
    .subject = "Unit",
    .info = "QDSVGLUnit.UnitInfo",
    .update = "QDSVGLUnit.UnitUpdate",
    .table = "t_MeasureUnit",
    .id = "FMeasureUnitID",
    .columns = {{"FUnitGroupID", Long{1}, Long{1}},
                {"FNumber", "bx", "ct"},
                {"FName", "box", "carton"},
                {"FCoefficient", 1.0, 12.5},
                {"FConversation", Long{2}, Long{3}},
                {"FPrecision", Long{4}, Long{5}},
                {"FStandard", Long{6}, Long{7}},
                {"FAuxClass", "a", "b"},
                {"FDeleted", false, false},
                {"UUID", "u", "v"}},
    .absent = {{"FCoefficient", 1.0}, {"FConversation", Long{1}}},
    .longest = {{"FNumber", 255}, {"FName", 255}},
    .kept_by_server = {"FDeleted"},
    .required = {"FNumber", "FName"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FMeasureUnitID",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "UnitID",
    .text_argument = "Number",
    .mark = "FDeleted",
    .uses = {UseInAccount, UseInVoucher},
    .used_is_marked = true,
    .prepare = [](RecordBooks& books) { AddUnit(books, AddUnitGroup(books, "Pieces"), "pc"); },
    .references = {{.column = "FUnitGroupID",
                    .noun = "unit group",
                    .id = "FUnitGroupID",
                    .update = "QDSVGLUnit.UnitGroupUpdate",
                    .make =
                        [](RecordBooks& books) {
                          static int number = 0;
                          return AddUnitGroup(books, "R" + std::to_string(++number));
                        },
                    .is_required = true}},
};
QDCLGL_RECORD_KIND(Unit, kUnits);

const RecordKind kUnitGroups = {
    .noun = "Unit group",
    .subject = "UnitGroup",
    .info = "QDSVGLUnit.UnitGroupInfo",
    .update = "QDSVGLUnit.UnitGroupUpdate",
    .table = "t_UnitGroup",
    .id = "FUnitGroupID",
    .columns = {{"FName", "Pieces", "Weights"},
                {"FDefaultUnitID", Long{0}, Long{0}},
                {"FDefaultUnit", "", ""}},
    .longest = {{"FName", 255}},
    .kept_by_server = {"FDefaultUnitID"},
    .joined = {"FDefaultUnit"},
    .required = {"FName"},
    .unique = {{"FName", "NameTaken"}},
    .order = "FUnitGroupID",
    .text_key = "FName",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "UnitGroupID",
    .text_argument = "Name",
    .uses = {
        [](RecordBooks& books, Long group) {
          AddAccountOf(books, "A" + std::to_string(group), group, 0);
        },
        [](RecordBooks& books, Long group) { AddUnit(books, group, "u" + std::to_string(group)); }},
};
QDCLGL_RECORD_KIND(UnitGroup, kUnitGroups);

class MeasureUnitTest : public RecordsTest {
 protected:
  Ref<Dictionary> Unit(Long id) { return Call(kInfo, "GetUnitDetail", props, id).As<Dictionary>(); }
  Ref<Dictionary> Group(const Variant& key) {
    return Call(kInfo, "GetUnitGroupDetail", props, key).As<Dictionary>();
  }
  void Change(Long unit, std::string_view key, const Variant& value) {
    const Ref<Dictionary> row = Unit(unit);
    row->Put(key, value);
    Call(kUpdate, "UpdateUnit", props, unit, row);
  }
  void SetDefault(Long group, Long unit) {
    Call(kUpdate, "SetDefaultMeasureUnit", props, group, unit);
  }
  void Adjust(Long group, Double factor, Boolean divides = false) {
    Call(kUpdate, "AdjustCoefficient", props, group, factor, divides);
  }
  void Delete(Long unit) { Call(kUpdate, "DeleteUnit", props, unit, "HOST", "10.0.0.1"); }
  // "g 1* kg 1000": the numbers and coefficients of a group's units, a star at the default one.
  std::string Coefficients(Long group) {
    const Long base = Group(group)->Value("FDefaultUnitID").As<Long>();
    const Ref<Object> info = Component(kInfo);
    info->Let("ShowDeleted", true);
    const auto list = info->Call("GetUnitList", props, group).As<Recordset>();
    std::string text;
    for (; !list->Eof(); list->MoveNext()) {
      const Ref<Dictionary> unit = list->Row();
      text += (text.empty() ? "" : " ") + unit->Value("FNumber").As<String>() + " " +
              CStr(unit->Value("FCoefficient")) +
              (unit->Value("FMeasureUnitID").As<Long>() == base ? "*" : "");
    }
    return text;
  }
  // Group "Weights" with the default unit g, kg and t.
  Long Weights() {
    const Long group = AddUnitGroup(*this, "Weights");
    gram = AddUnit(*this, group, "g");
    kilogram = AddUnit(*this, group, "kg", 1000);
    tonne = AddUnit(*this, group, "t", 1e6);
    return group;
  }

  Long gram = 0, kilogram = 0, tonne = 0;
};

TEST_P(MeasureUnitTest, TheFirstUnitOfAGroupIsItsDefaultOneAndHasCoefficientOne) {
  const Long group = AddUnitGroup(*this, "Weights");
  EXPECT_EQ(TextOf(*Group(group)),
            "FUnitGroupID=1;FVersion=1;FName=Weights;FDefaultUnitID=0;FDefaultUnit=;");
  EXPECT_EQ(SentenceOf([&] { AddUnit(*this, group, "kg", 1000); }),
            "Unit of measure kg (kg): the default unit of a group, which is its first one unless"
            " another is made it, has coefficient 1.");
  const Long id = AddUnit(*this, group, "g");
  AddUnit(*this, group, "kg", 1000);
  EXPECT_EQ(TextOf(*Group("Weights")),
            "FUnitGroupID=1;FVersion=2;FName=Weights;FDefaultUnitID=1;FDefaultUnit=g;");
  EXPECT_EQ(RefusalOf([&] { Change(id, "FCoefficient", 2.0); }), "BadValue");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, ACoefficientIsPositiveAndSurvivesItsText) {
  const Long group = Weights();
  const std::string before = State();
  for (const double value : {0.0, -1.0, 1.0 / 3, 1e16, 1e-16}) {
    EXPECT_EQ(RefusalOf([&] { AddUnit(*this, group, "x", value); }), "BadValue") << value;
    EXPECT_EQ(RefusalOf([&] { Change(kilogram, "FCoefficient", value); }), "BadValue") << value;
  }
  EXPECT_EQ(State(), before);
}

TEST_P(MeasureUnitTest, AUnitStaysInItsGroupAndIsMadeInTheOneOfTheCall) {
  const Long weights = Weights(), pieces = AddUnitGroup(*this, "Pieces");
  EXPECT_EQ(SentenceOf([&] { Change(kilogram, "FUnitGroupID", pieces); }),
            "Unit of measure kg (kg): a unit stays in its group.");
  const auto row = Row({{"FNumber", "x"}, {"FName", "x"}, {"FUnitGroupID", weights}});
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "CreateUnit", props, pieces, row); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "CreateUnit", props, Long{0}, row); }), "BadValue");
  EXPECT_EQ(Unit(Call(kUpdate, "CreateUnit", props, weights, row).As<Long>())
                ->Value("FUnitGroupID")
                .As<Long>(),
            weights);
}

TEST_P(MeasureUnitTest, SettingTheDefaultUnitDividesAllCoefficientsByItsOwn) {
  const Long group = Weights();
  EXPECT_EQ(Coefficients(group), "g 1* kg 1000 t 1000000");
  SetDefault(group, kilogram);
  EXPECT_EQ(Coefficients(group), "g 0.001 kg 1* t 1000");
  EXPECT_EQ(Group(group)->Value("FDefaultUnit").As<String>(), "kg");
  SetDefault(group, tonne);
  SetDefault(group, gram);
  EXPECT_EQ(Coefficients(group), "g 1* kg 1000 t 1000000") << "nothing is lost on the way";
  const std::string before = State();
  SetDefault(group, gram);
  EXPECT_EQ(State(), before) << "it is the default one already";
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, OnlyAUnitOfTheGroupThatIsInUseBecomesTheDefaultOne) {
  const Long group = Weights(), pieces = AddUnitGroup(*this, "Pieces");
  const Long piece = AddUnit(*this, pieces, "pc");
  UseInAccount(*this, tonne);
  Delete(tonne);
  const std::string before = State();
  EXPECT_EQ(SentenceOf([&] { SetDefault(group, piece); }),
            "Unit group Weights: it has no unit " + std::to_string(piece) + " in use.");
  EXPECT_EQ(RefusalOf([&] { SetDefault(group, tonne); }), "BadReference");
  EXPECT_EQ(RefusalOf([&] { SetDefault(group, 0); }), "BadReference");
  EXPECT_EQ(RefusalOf([&] { SetDefault(77, gram); }), "NotFound");
  EXPECT_EQ(State(), before);
}

TEST_P(MeasureUnitTest, AUnitMarkedDeletedThatIsStillInUseStaysSo) {
  Weights();
  UseInAccount(*this, tonne);
  Delete(tonne);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Delete(tonne); }), "InUse");
  EXPECT_EQ(State(), before);
}

TEST_P(MeasureUnitTest, AFactorScalesAllUnitsOfTheGroupAndTheOneThatComesToOneIsTheDefault) {
  const Long group = Weights();
  UseInAccount(*this, tonne);
  Delete(tonne);
  Adjust(group, 1000, true);
  EXPECT_EQ(Coefficients(group), "g 0.001 kg 1* t 1000") << "the one marked deleted too";
  Adjust(group, 1000);
  EXPECT_EQ(Coefficients(group), "g 1* kg 1000 t 1000000");
  const Long dozens = AddUnitGroup(*this, "Dozens");
  AddUnit(*this, dozens, "pc");
  AddUnit(*this, dozens, "dz", 12);
  Adjust(dozens, 12, true);
  EXPECT_EQ(Coefficients(dozens), "pc 0.0833333333333333 dz 1*");
  Adjust(dozens, 1);
  EXPECT_EQ(Coefficients(dozens), "pc 0.0833333333333333 dz 1*");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, AFactorThatLeavesNoUnitAtOneOrIsNoneIsRefused) {
  const Long group = Weights();
  const std::string before = State();
  EXPECT_EQ(SentenceOf([&] { Adjust(group, 2); }),
            "Unit group Weights: then no unit of it in use would have coefficient 1.");
  for (const double factor : {0.0, -1.0, 1.0 / 3, 1e-16}) {
    EXPECT_EQ(RefusalOf([&] { Adjust(group, factor); }), "BadValue") << factor;
  }
  EXPECT_EQ(RefusalOf([&] { Adjust(77, 2); }), "NotFound");
  EXPECT_EQ(State(), before);
  AddUnit(*this, group, "tiny", 1e-13);
  AddUnit(*this, group, "k", 1000);
  const std::string with_tiny = State();
  EXPECT_EQ(RefusalOf([&] { Adjust(group, 1000, true); }), "BadValue") << "tiny would be too small";
  EXPECT_EQ(State(), with_tiny) << "all or nothing";
}

TEST_P(MeasureUnitTest, AUnitMarkedDeletedDoesNotBecomeTheDefaultOne) {
  const Long group = Weights();
  UseInAccount(*this, kilogram);
  Delete(kilogram);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Adjust(group, 1000, true); }), "BadValue");
  EXPECT_EQ(State(), before);
}

TEST_P(MeasureUnitTest, AnAdjustmentFailsAsAWholeAtEachStatement) {
  const Long group = Weights();
  FailEachStatement([&] { Adjust(group, 1000, true); });
  EXPECT_EQ(Coefficients(group), "g 0.001 kg 1* t 1000");
}

TEST_P(MeasureUnitTest, EachUnitOfAnAdjustmentStandsOnTheTrail) {
  const Long group = Weights();
  Adjust(group, 1000, true);
  EXPECT_EQ(Trail("FAction = 'Update' AND FSubject = 'Unit'"),
            "Unit g (g) Update {\"FVersion\":[1,2],\"FCoefficient\":[1,0.001]}\n"
            "Unit kg (kg) Update {\"FVersion\":[1,2],\"FCoefficient\":[1000,1]}\n"
            "Unit t (t) Update {\"FVersion\":[1,2],\"FCoefficient\":[1e+06,1000]}\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, TheDefaultUnitGoesLastAndLeavesTheGroupWithoutOne) {
  const Long group = Weights();
  EXPECT_EQ(SentenceOf([&] { Delete(gram); }),
            "Unit of measure g (g): it is the default unit of its group.");
  Delete(kilogram);
  Delete(tonne);
  Delete(gram);
  EXPECT_EQ(Coefficients(group), "");
  EXPECT_EQ(Group(group)->Value("FDefaultUnitID").As<Long>(), 0);
  AddUnit(*this, group, "lb");
  EXPECT_EQ(Coefficients(group), "lb 1*");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, ALastUnitThatSomethingUsesStays) {
  const Long group = AddUnitGroup(*this, "Weights"), only = AddUnit(*this, group, "g");
  const Long account = AddAccountOf(*this, "1000", group, only);
  const std::string before = State();
  EXPECT_EQ(SentenceOf([&] { Delete(only); }),
            "Unit of measure g (g): account 1000 (1000) refers to it.");
  EXPECT_EQ(State(), before);
  Call("QDSVGLAccount.AccountUpdate", "Delete", props, account);
  UseInVoucher(*this, only);
  EXPECT_EQ(RefusalOf([&] { Delete(only); }), "InUse");
}

TEST_P(MeasureUnitTest, ListsAreOfAGroupAndShowDeletedUnitsWhereTheComponentIsToldTo) {
  const Long group = Weights();
  AddUnit(*this, AddUnitGroup(*this, "Pieces"), "pc");
  UseInAccount(*this, kilogram);
  Delete(kilogram);
  const auto list = [&](Long of, bool deleted_too, const std::string& filter) {
    const Ref<Object> info = Component(kInfo);
    info->Let("ShowDeleted", deleted_too);
    Long by_reference = of;
    return TextOf(info->Call("GetUnitList", props, ByRef(by_reference), filter).As<Recordset>(),
                  {"FNumber"});
  };
  EXPECT_EQ(list(group, false, ""), "g\nt\n");
  EXPECT_EQ(list(group, true, ""), "g\nkg\nt\n");
  EXPECT_EQ(list(0, false, ""), "g\nt\npc\n");
  EXPECT_EQ(list(group, true, "FCoefficient > 1 OR FNumber = 'pc'"), "kg\nt\n");
  EXPECT_EQ(RefusalOf([&] { list(group, true, "FNmae = 1"); }), "BadFilter");
}

TEST_P(MeasureUnitTest, GroupsAreFoundByIdAndByNameAndListedAloneOrAll) {
  const Long weights = Weights(), pieces = AddUnitGroup(*this, "Pieces");
  const auto list = [&](Long group) {
    return TextOf(Call(kInfo, "GetUnitGroupList", props, ByRef(group)).As<Recordset>(),
                  {"FName", "FDefaultUnit"});
  };
  EXPECT_EQ(list(0), "Weights g\nPieces \n");
  EXPECT_EQ(list(pieces), "Pieces \n");
  EXPECT_EQ(Call(kInfo, "GetUnitGroupID", props, Variant("Weights")).As<Long>(), weights);
  EXPECT_EQ(Call(kInfo, "GetUnitGroupID", props, Variant("weights")).As<Long>(), 0);
  EXPECT_EQ(SentenceOf([&] { Group(77); }), "Unit group with id 77: there is none.");
  EXPECT_EQ(SentenceOf([&] { Group("x"); }), "Unit group \"x\": there is none.");
  const auto exists = [&](const char* component, Argument argument) {
    return Call(component, "UnitExistenceCheck", props, std::move(argument)).As<Long>();
  };
  EXPECT_EQ(exists(kInfo, kilogram), kilogram);
  EXPECT_EQ(exists(kInfo, Named("UnitName", Variant("kg"))), kilogram);
  EXPECT_EQ(exists(kInfo, Long{77}), 0);
  EXPECT_EQ(exists(kUpdate, kilogram), kilogram);
  EXPECT_EQ(exists(kUpdate, Long{77}), 0);
  EXPECT_EQ(Call(kInfo, "UnitExistenceCheck", props).As<Long>(), 0);
}

TEST_P(MeasureUnitTest, AGroupIsRenamedWhoeverSavedItAndItsAccountsTellTheNewName) {
  const Long group = Weights();
  const Long account = AddAccountOf(*this, "1000", 0, kilogram);
  const auto named = [&] {
    const auto row =
        Call("QDSVGLAccount.AccountInfo", "GetDetail", props, account).As<Dictionary>();
    return CStr(row->Value("FUnitGroupID")) + " " + row->Value("FUnitGroup").As<String>();
  };
  EXPECT_EQ(named(), "1 Weights") << "an account that names a unit alone is of its group";
  const auto rename = [&](const std::string& name) {
    Call(kUpdate, "RenameUnitGroup", props, group, name, "HOST", "10.0.0.1");
  };
  rename("Masses");
  rename("Mass");
  EXPECT_EQ(named(), "1 Mass");
  EXPECT_EQ(Group(group)->Value("FDefaultUnitID").As<Long>(), gram);
  EXPECT_EQ(Trail("FSubject = 'UnitGroup' AND FMachineName = 'HOST' AND FAction = 'Update'"),
            "UnitGroup Masses Update {\"FVersion\":[2,3],\"FName\":[\"Weights\",\"Masses\"]}\n"
            "UnitGroup Mass Update {\"FVersion\":[3,4],\"FName\":[\"Masses\",\"Mass\"]}\n");
  AddUnitGroup(*this, "Pieces");
  EXPECT_EQ(RefusalOf([&] { rename("Pieces"); }), "NameTaken");
  EXPECT_EQ(RefusalOf([&] { rename(""); }), "Required");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, AnAccountsUnitIsOneOfItsGroup) {
  const Long weights = Weights(), pieces = AddUnitGroup(*this, "Pieces");
  const std::string before = State();
  EXPECT_EQ(SentenceOf([&] { AddAccountOf(*this, "1000", pieces, kilogram); }),
            "Account 1000 (1000): unit of measure " + std::to_string(kilogram) +
                " is of another unit group.");
  EXPECT_EQ(State(), before);
  AddAccountOf(*this, "1000", weights, kilogram);
}

TEST_P(MeasureUnitTest, ALinesUnitIsOneOfItsAccountsGroup) {
  const Long weights = Weights(), pieces = AddUnitGroup(*this, "Pieces");
  const Long piece = AddUnit(*this, pieces, "pc");
  const Long account = AddAccountOf(*this, "1000", weights, gram), other = AddAccount("2000");
  int number = 0;
  const auto save = [&](Long of, Long unit) {
    const auto row = VoucherIn(*this, "G" + std::to_string(++number), of, unit);
    return Call("QDSVGLVoucher.VoucherUpdate", "Create", props, row).As<Long>();
  };
  const auto reason = [&](Long of, Long unit) {
    const std::string sentence = SentenceOf([&] { save(of, unit); });
    return sentence.substr(sentence.find("line "));
  };
  EXPECT_EQ(reason(account, piece),
            "line 1: unit of measure pc (pc) is not of the unit group of account 1000.");
  EXPECT_EQ(reason(other, kilogram),
            "line 1: unit of measure kg (kg) is not of the unit group of account 2000.");
  EXPECT_EQ(reason(account, 77), "line 1: there is no unit of measure 77.");
  const Long voucher = save(account, kilogram);
  const auto row = Call("QDSVGLVoucher.VoucherInfo", "GetDetail", props, voucher, false);
  const auto line = row.As<Dictionary>()->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>();
  EXPECT_EQ(
      line->Value("FMeasureUnitNumber").As<String>() + line->Value("FMeasureUnit").As<String>(),
      "kgkg");
  Delete(kilogram);
  EXPECT_EQ(reason(account, kilogram),
            "line 1: there is no unit of measure " + std::to_string(kilogram) + " in use.");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(MeasureUnitTest, TheCheckFindsWhatIsWrongWithUnits) {
  const Long group = Weights();
  const Long account = AddAccountOf(*this, "1000", group, gram);
  UseInVoucher(*this, kilogram);
  const auto breaches = [&](const std::string& sql) {
    const std::string id = std::to_string(group);
    Break(sql);
    std::string found = Breaches();
    // What the trail says of it besides.
    const std::size_t record = found.find("Record ");
    return found.substr(0, record);
  };
  EXPECT_EQ(breaches("UPDATE t_MeasureUnit SET FCoefficient = -1 WHERE FNumber = 't'"),
            "UnitCoefficient Unit 3 t (t)\n");
  Break("UPDATE t_MeasureUnit SET FCoefficient = 1000000 WHERE FNumber = 't'");
  EXPECT_EQ(breaches("UPDATE t_UnitGroup SET FDefaultUnitID = 2"),
            "DefaultUnit UnitGroup 1 Weights\n");
  Break("UPDATE t_UnitGroup SET FDefaultUnitID = 1");
  EXPECT_EQ(breaches("UPDATE t_Account SET FUnitGroup = 'x' WHERE FAccountID = " +
                     std::to_string(account)),
            "AccountUnit Account 1 1000\n");
  Break("UPDATE t_Account SET FUnitGroup = 'Weights'");
  EXPECT_EQ(breaches("UPDATE t_VoucherEntry SET FMeasureUnitID = 77 WHERE FEntryID = 2"),
            "LineUnit Voucher 1 2024/1 V2 1, line 2\n");
}

// ---- By the library's classes ----

TEST_P(MeasureUnitTest, TheClassesWorkOnTheBooks) {
  const auto groups = Make<MeasureUnitGroupSet>();
  const auto group = groups->CreateNew();
  group->Name("Weights");
  group->SaveChanges();
  const auto units = Make<MeasureUnitSet>();
  units->UnitGroupID(group->GroupID());
  units->Refresh();
  for (const auto& [number, coefficient] : {std::pair("g", 1.0), std::pair("kg", 1000.0)}) {
    Ref<MeasureUnit> unit = units->CreateNew();
    unit->Number(number);
    unit->Name(number);
    unit->Coefficient(coefficient);
    units->Append(unit);
  }
  EXPECT_EQ(units->Find("kg")->Coefficient(), 1000);
  group->Refresh();
  EXPECT_EQ(group->DefaultUnit(), "g");
  group->SetDefaultUnit(units->Find("kg")->MeasureUnitID());
  EXPECT_EQ(group->GetDefaultUnit()->Number(), "kg");
  EXPECT_EQ(units->Item(1)->Coefficient(), 1) << "until its Refresh";
  units->Item(1)->Refresh();
  EXPECT_EQ(units->Item(1)->Coefficient(), 0.001);
  EXPECT_EQ(groups->ExistenceCheck(Missing, "Weights"), group->GroupID());
  EXPECT_EQ(groups->GetCurrent()->DefaultUnit(), "kg");
  units->Remove(1);
  EXPECT_EQ(units->Count(), 1);
  EXPECT_EQ(RefusalOf([&] { groups->Remove("Weights"); }), "InUse");
  units->Remove(1);
  groups->Remove("Weights");
  EXPECT_EQ(groups->Count(), 0);
  EXPECT_EQ(Breaches(), "");
}

QDCLGL_BOOKS_TEST(MeasureUnitTest);

}  // namespace
}  // namespace qdclgl::server::testing

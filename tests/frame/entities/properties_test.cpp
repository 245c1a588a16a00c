#include "qdclgl/frame/entities/properties.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qdclgl/frame/containers/vector.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::Row;
using testing::StateText;

// A bag over a new Dictionary of its own.
Ref<Properties> Bag(std::initializer_list<std::pair<std::string_view, Variant>> cells = {}) {
  auto bag = Make<Properties>();
  bag->Attach(Row(cells), true, Nothing, 0);
  return bag;
}

// The keys and values, and the two records of change.
std::string BagText(const Ref<Properties>& bag) {
  std::string text = StateText(Variant(bag->Dictionary()));
  if (bag->Modified()) text += " dictionary modified";
  if (bag->ChangeFlag()->Modified()) text += " flag modified";
  return text;
}

std::string KeysOf(const Ref<Properties>& bag) {
  std::string text;
  for (const auto& property : *bag) text += (text.empty() ? "" : " ") + property.Name();
  return text;
}

Ref<Dictionary> DictionaryOf(Long count) {
  auto dictionary = Make<Dictionary>();
  for (Long i = 1; i <= count; ++i) dictionary->Put("K" + std::to_string(i), i);
  return dictionary;
}

// One value of each type, with what a bag makes of it.
struct Sample {
  const char* name;
  Variant value;
  const char* stored;     // as it lies in the Dictionary
  const char* read;       // by GetValue(key)
  const char* read_or_3;  // by GetValue(key, 3)
};

std::vector<Sample> Samples() {
  static const std::uint8_t kBytes[] = {0x41, 0, 0xAD, 0x4E};
  const std::string long_text(40, 'x');
  static const std::string quoted = "\"" + long_text + "\"";
  return {
      {"Empty", Variant(), "Empty", "\"\"", "3"},
      {"Null", Null, "Null", "\"\"", "3"},
      {"EmptyText", "", "\"\"", "\"\"", "3"},
      {"Text", "text", "\"text\"", "\"text\"", "\"text\""},
      {"Blank", " ", "\" \"", "\" \"", "\" \""},
      {"LongText", long_text, quoted.c_str(), quoted.c_str(), quoted.c_str()},
      {"True", true, "True", "\"True\"", "True"},
      {"False", false, "False", "\"False\"", "False"},
      {"Byte", Byte{5}, "5b", "\"5\"", "5b"},
      {"Integer", Integer{-5}, "-5%", "\"-5\"", "-5%"},
      {"Long", Long{5}, "5", "\"5\"", "5"},
      {"Zero", Long{0}, "0", "\"0\"", "0"},
      {"Single", 1.5f, "1.5!", "\"1.5\"", "1.5!"},
      {"Double", 0.1, "0.1#", "\"0.1\"", "0.1#"},
      {"Currency", Currency::FromUnits(12345), "1.2345@", "\"1.2345\"", "1.2345@"},
      {"Date", DateTime::FromYmd(2024, 1, 31), "#2024-01-31#", "\"2024-01-31\"", "#2024-01-31#"},
      {"Decimal", Decimal(0, 25, 1, false), "2.5d", "\"2.5\"", "2.5d"},
      {"Bytes", Bytes{kBytes}, "bytes(4100ad4e)", "\"A\xE4\xBA\xAD\"", "bytes(4100ad4e)"},
      {"NoBytes", Bytes{}, "bytes()", "\"\"", "3"},
      {"Object", Variant(Row({{"A", 1}})), "{A: 1}", "{A: 1}", "{A: 1}"},
      {"Nothing", Nothing, "Nothing", "Nothing", "Nothing"},
  };
}

// ---- Reading ----

TEST(Properties, GetValueWithoutADefaultGivesTextOrAnObject) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    EXPECT_EQ(StateText(Bag({{"K", sample.value}})->GetValue("K")), sample.read);
  }
}

TEST(Properties, GetValueWithADefaultKeepsTheTypeAndReplacesEmptyTexts) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    EXPECT_EQ(StateText(Bag({{"K", sample.value}})->GetValue("K", 3)), sample.read_or_3);
  }
}

TEST(Properties, AMissingKeyReadsAsEmptyTextOrTheDefault) {
  const auto bag = Bag({{"K", 1}});
  EXPECT_EQ(StateText(bag->GetValue("L")), "\"\"");
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    EXPECT_EQ(StateText(bag->GetValue("L", sample.value)), sample.stored);
  }
}

TEST(Properties, ReadingChangesNothing) {
  const auto bag = Bag({{"K", 1}});
  bag->GetValue("K");
  bag->GetValue("K", 3);
  bag->GetValue("L");
  bag->GetValue("L", 3);
  bag->Lookup("L");
  bag->Find("L");
  bag->Item("L")->Value();
  EXPECT_EQ(BagText(bag), "{K: 1}");
}

TEST(Properties, AnObjectReadsAsTheSameObject) {
  const auto object = Make<Opaque>();
  const auto bag = Bag({{"K", object}});
  EXPECT_EQ(bag->GetValue("K").As<Opaque>(), object);
  EXPECT_EQ(bag->GetValue("K", 3).As<Opaque>(), object);
  EXPECT_EQ(bag->GetValue("L", Variant(object)).As<Opaque>(), object);
}

TEST(Properties, AnArgumentThatWasLeftOutHasNoText) {
  const auto bag = Bag({{"K", Missing}});
  EXPECT_EQ(ErrorOf([&] { bag->GetValue("K"); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { bag->GetValue("K", 3); }), "error 13");
}

TEST(Properties, KeysRespectCase) {
  const auto bag = Bag({{"FName", "a"}, {"FNAME", "b"}});
  EXPECT_EQ(StateText(bag->GetValue("FName")), "\"a\"");
  EXPECT_EQ(StateText(bag->GetValue("FNAME")), "\"b\"");
  EXPECT_EQ(StateText(bag->GetValue("fname")), "\"\"");
  EXPECT_FALSE(bag->Lookup("fname"));
}

TEST(Properties, LookupTellsWhetherAKeyExistsWhateverItHolds) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    const auto bag = Bag({{"K", sample.value}});
    EXPECT_TRUE(bag->Lookup("K"));
    EXPECT_FALSE(bag->Lookup("L"));
  }
}

TEST(Properties, FindGivesTheStoredValueInPlace) {
  const auto bag = Bag({{"K", Null}});
  ASSERT_NE(bag->Find("K"), nullptr);
  EXPECT_EQ(StateText(*bag->Find("K")), "Null");
  EXPECT_EQ(bag->Find("L"), nullptr);
}

// ---- Writing ----

TEST(Properties, SetValueWithoutADefaultStoresEveryType) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    const auto bag = Bag({{"K", 1}});
    bag->SetValue("K", sample.value);
    bag->SetValue("L", sample.value);
    EXPECT_EQ(BagText(bag), "{K: " + std::string(sample.stored) + ", L: " + sample.stored +
                                "} dictionary modified flag modified");
  }
}

TEST(Properties, SetValueWithADefaultStoresWhatDiffersFromIt) {
  for (const Sample& sample : Samples()) {
    if (sample.value.IsObject() || sample.value.Is(VariantType::kByteArray)) continue;
    SCOPED_TRACE(sample.name);
    const auto bag = Bag({{"K", 1}});
    bag->SetValue("K", sample.value, "another");
    bag->SetValue("L", sample.value, 77);
    EXPECT_EQ(BagText(bag), "{K: " + std::string(sample.stored) + ", L: " + sample.stored +
                                "} dictionary modified flag modified");
  }
}

TEST(Properties, AWriteOfTheDefaultRemovesTheKey) {
  const struct {
    const char* name;
    Variant value;
    Variant default_value;
  } table[] = {
      {"SameLong", 0, 0},
      {"SameText", "a", "a"},
      {"EmptyBesideZero", Variant(), 0},
      {"EmptyBesideEmptyText", Variant(), ""},
      {"EmptyBesideFalse", Variant(), false},
      {"EmptyBesideEmpty", Variant(), Variant()},
      {"IntegerBesideLong", Integer{7}, 7},
      {"DoubleBesideLong", 7.0, 7},
      {"CurrencyBesideDouble", Currency::FromUnits(5000), 0.5},
      {"DecimalBesideByte", Decimal::FromInteger(7), Byte{7}},
      {"TrueBesideMinusOne", true, -1},
      {"FalseBesideZero", false, 0},
      {"SameDate", DateTime::FromYmd(2024, 1, 31), DateTime::FromYmd(2024, 1, 31)},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    const auto bag = Bag({{"A", 1}, {"K", "old"}, {"Z", 2}});
    bag->SetValue("K", row.value, row.default_value);
    EXPECT_EQ(BagText(bag), "{A: 1, Z: 2} dictionary modified flag modified");
    EXPECT_FALSE(bag->Lookup("K"));
  }
}

TEST(Properties, AWriteThatOnlyLooksLikeTheDefaultIsStored) {
  const struct {
    const char* name;
    Variant value;
    Variant default_value;
    const char* stored;
  } table[] = {
      {"NullBesideNull", Null, Null, "Null"}, {"NullBesideZero", Null, 0, "Null"},
      {"ZeroBesideNull", 0, Null, "0"},       {"EmptyTextBesideZero", "", 0, "\"\""},
      {"ZeroBesideEmptyText", 0, "", "0"},    {"DigitBesideNumber", "5", 5, "\"5\""},
      {"OtherCase", "a", "A", "\"a\""},       {"TrueBesideOne", true, 1, "True"},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    const auto bag = Bag();
    bag->SetValue("K", row.value, row.default_value);
    EXPECT_EQ(BagText(bag),
              "{K: " + std::string(row.stored) + "} dictionary modified flag modified");
  }
}

TEST(Properties, AWriteOfTheDefaultToAMissingKeySetsTheFlagOnly) {
  const auto bag = Bag({{"A", 1}});
  bag->SetValue("K", 0, 0);
  EXPECT_EQ(BagText(bag), "{A: 1} flag modified");
}

TEST(Properties, AWriteOfTheSameValueSetsBothRecords) {
  const auto bag = Bag({{"K", 1}});
  bag->SetValue("K", 1);
  EXPECT_EQ(BagText(bag), "{K: 1} dictionary modified flag modified");
}

TEST(Properties, AWriteKeepsTheOrderOfTheKeys) {
  const auto bag = Bag({{"A", 1}, {"B", 2}, {"C", 3}});
  bag->SetValue("A", "x");
  bag->SetValue("B", 0, 0);
  bag->SetValue("B", 4, 0);
  EXPECT_EQ(BagText(bag), "{A: \"x\", C: 3, B: 4} dictionary modified flag modified");
}

TEST(Properties, AComparisonWithTheDefaultThatFailsChangesNothing) {
  const std::vector<Variant> incomparable = {Nothing, Missing, Bytes{}};
  for (const Variant& value : incomparable) {
    SCOPED_TRACE(StateText(value));
    const auto bag = Bag({{"K", 1}});
    EXPECT_EQ(ErrorOf([&] { bag->SetValue("K", value, 0); }), "error 13");
    EXPECT_EQ(ErrorOf([&] { bag->SetValue("K", 0, value); }), "error 13");
    EXPECT_EQ(BagText(bag), "{K: 1}");
  }
}

TEST(Properties, ClearValueRemovesTheKeyAndSetsTheFlag) {
  const auto bag = Bag({{"A", 1}, {"K", 2}});
  bag->ClearValue("K");
  EXPECT_EQ(BagText(bag), "{A: 1} dictionary modified flag modified");
}

TEST(Properties, ClearValueOfAMissingKeySetsTheFlagOnly) {
  const auto bag = Bag({{"A", 1}});
  bag->ClearValue("K");
  EXPECT_EQ(BagText(bag), "{A: 1} flag modified");
}

TEST(Properties, SetObjectStoresTheObjectItself) {
  const auto rows = Make<Vector>();
  const auto bag = Bag({{"_Entries", 1}});
  bag->SetObject("_Entries", rows);
  EXPECT_EQ(BagText(bag), "{_Entries: []} dictionary modified flag modified");
  rows->Append(5);
  EXPECT_EQ(BagText(bag), "{_Entries: [5]} dictionary modified flag modified");
}

TEST(Properties, SetObjectOfNothingRemovesTheKey) {
  const auto bag = Bag({{"A", 1}, {"_Entries", Make<Vector>()}});
  bag->SetObject("_Entries", Nothing);
  EXPECT_EQ(BagText(bag), "{A: 1} dictionary modified flag modified");
  EXPECT_FALSE(bag->Lookup("_Entries"));
}

TEST(Properties, SetObjectOfNothingToAMissingKeySetsTheFlagOnly) {
  const auto bag = Bag({{"A", 1}});
  bag->SetObject("_Entries", Nothing);
  EXPECT_EQ(BagText(bag), "{A: 1} flag modified");
}

TEST(Properties, AReplacedObjectIsReleased) {
  const auto object = Make<Opaque>();
  const auto bag = Bag();
  bag->SetObject("K", object);
  EXPECT_EQ(object->holders(), 2);
  bag->SetValue("K", 1);
  EXPECT_EQ(object->holders(), 1);
  bag->SetObject("K", object);
  bag->SetObject("K", Nothing);
  EXPECT_EQ(object->holders(), 1);
}

// ---- The two records of change ----

TEST(Properties, AWriteIntoTheLiveDictionarySetsTheDictionaryAlone) {
  const auto bag = Bag({{"K", 1}});
  bag->Dictionary()->Value("K", 2);
  EXPECT_EQ(BagText(bag), "{K: 2} dictionary modified");
  EXPECT_EQ(StateText(bag->GetValue("K")), "\"2\"");
}

TEST(Properties, ARemovalInTheLiveDictionarySetsTheDictionaryAlone) {
  const auto bag = Bag({{"K", 1}});
  bag->Dictionary()->Remove("K");
  EXPECT_EQ(BagText(bag), "{} dictionary modified");
  EXPECT_EQ(bag->Count(), 0);
}

TEST(Properties, TheRecordsAreClearedOneByOne) {
  const auto bag = Bag();
  bag->SetValue("K", 1);
  bag->Dictionary()->ResetModified();
  EXPECT_EQ(BagText(bag), "{K: 1} flag modified");
  bag->SetValue("K", 2);
  bag->ChangeFlag()->Reset();
  EXPECT_EQ(BagText(bag), "{K: 2} dictionary modified");
}

TEST(Properties, AWriteSetsTheBagsOwnFlagAndThroughItThoseAbove) {
  const auto root = Make<ChangeFlag>();
  const auto bag = Make<Properties>();
  bag->Attach(Nothing, true, root->Item("_Entries")->Item(2), 0);
  bag->SetValue("K", 1);
  EXPECT_TRUE(root->Modified());
  EXPECT_FALSE(root->PrivateModified());
  EXPECT_FALSE(root->Item("_Entries")->PrivateModified());
  EXPECT_FALSE(root->Item("_Entries")->Item(1)->Modified());
  EXPECT_TRUE(root->Item("_Entries")->Item(2)->PrivateModified());
}

// ---- Attach ----

TEST(Properties, AttachToNothingMakesANewDictionaryAndANewFlag) {
  for (const bool share : {false, true}) {
    const auto bag = Make<Properties>();
    bag->Attach(Nothing, share, Nothing, 0);
    ASSERT_NE(bag->Dictionary(), nullptr);
    ASSERT_NE(bag->ChangeFlag(), nullptr);
    EXPECT_EQ(BagText(bag), "{}");
    bag->SetValue("K", 1);
    EXPECT_EQ(BagText(bag), "{K: 1} dictionary modified flag modified");
  }
}

TEST(Properties, AttachWithShareTakesTheDictionaryItself) {
  const auto row = Row({{"K", 1}});
  const auto bag = Make<Properties>();
  bag->Attach(row, true, Nothing, 0);
  EXPECT_EQ(bag->Dictionary(), row);
  bag->SetValue("K", 2);
  EXPECT_EQ(StateText(Variant(row)), "{K: 2}");
  row->Put("L", 3);
  EXPECT_EQ(StateText(bag->GetValue("L")), "\"3\"");
}

TEST(Properties, AttachWithoutShareTakesADeepCopy) {
  const auto line = Row({{"FDebit", 1}});
  const auto lines = Make<Vector>();
  lines->Append(line);
  const auto row = Row({{"K", 1}, {"_Entries", lines}});
  const auto bag = Make<Properties>();
  bag->Attach(row, false, Nothing, 0);
  EXPECT_NE(bag->Dictionary(), row);
  bag->SetValue("K", 2);
  bag->GetValue("_Entries").As<Vector>()->Item(1).As<Dictionary>()->Put("FDebit", 9);
  bag->GetValue("_Entries").As<Vector>()->Append(Nothing);
  EXPECT_EQ(StateText(Variant(bag->Dictionary())), "{K: 2, _Entries: [{FDebit: 9}, Nothing]}");
  EXPECT_EQ(StateText(Variant(row)), "{K: 1, _Entries: [{FDebit: 1}]}");
  EXPECT_FALSE(row->Modified());
}

TEST(Properties, AttachTakesAGivenFlagWithItsState) {
  const auto flag = Make<ChangeFlag>();
  flag->Modified(true);
  for (const bool share : {false, true}) {
    const auto bag = Make<Properties>();
    bag->Attach(Row({{"K", 1}}), share, flag, 0);
    EXPECT_EQ(bag->ChangeFlag(), flag);
    EXPECT_EQ(BagText(bag), "{K: 1} flag modified");
  }
}

TEST(Properties, AttachWithoutAFlagDropsTheOldTreeAndLeavesItAsItIs) {
  const auto bag = Bag({{"K", 1}});
  const Ref<ChangeFlag> former = bag->ChangeFlag();
  bag->SetValue("K", 2);
  former->Item("_Entries")->Modified(true);
  bag->Attach(bag->Dictionary(), false, Nothing, 0);
  EXPECT_NE(bag->ChangeFlag(), former);
  EXPECT_EQ(BagText(bag), "{K: 2}");
  EXPECT_TRUE(former->PrivateModified());
  EXPECT_TRUE(former->Item("_Entries")->Modified());
}

TEST(Properties, AttachLeavesTheDictionaryUnmodifiedInBothTrackStates) {
  for (const Long track_state : {0, 1}) {
    for (const bool share : {false, true}) {
      const auto row = Row({{"K", 1}});
      row->Put("K", 2);
      const auto bag = Make<Properties>();
      bag->Attach(row, share, Nothing, track_state);
      EXPECT_EQ(BagText(bag), "{K: 2}");
      EXPECT_EQ(row->Modified(), !share);
      bag->SetValue("K", 3);
      EXPECT_EQ(BagText(bag), "{K: 3} dictionary modified flag modified");
    }
  }
}

TEST(Properties, TheTrackStateDecidesWhetherEditsOfNestedRowsCount) {
  for (const Long track_state : {0, 1}) {
    const auto lines = Make<Vector>();
    lines->Append(Row({{"FDebit", 1}}));
    const auto bag = Make<Properties>();
    bag->Attach(Row({{"_Entries", lines}}), false, Nothing, track_state);
    EXPECT_FALSE(bag->Modified());
    bag->GetValue("_Entries").As<Vector>()->Item(1).As<Dictionary>()->Put("FDebit", 2);
    EXPECT_EQ(bag->Modified(), track_state == 1);
  }
}

TEST(Properties, ABagOverANestedRowDoesNotMakeTheOwnerForgetAnEdit) {
  const auto owner = Make<Properties>();
  owner->Attach(Row({{"_Line", Row({{"FDebit", 1}})}}), false, Nothing, 1);
  const Ref<Dictionary> line = owner->GetValue("_Line").As<Dictionary>();
  const auto attach_child = [&] {
    auto child = Make<Properties>();
    child->Attach(line, true, owner->ChangeFlag()->Item("_Line"), 0);
    return child;
  };
  const auto child = attach_child();
  EXPECT_EQ(BagText(owner), "{_Line: {FDebit: 1}}");
  child->SetValue("FDebit", 2);
  const auto another = attach_child();
  EXPECT_EQ(BagText(another), "{FDebit: 2} flag modified");
  EXPECT_EQ(BagText(owner), "{_Line: {FDebit: 2}} dictionary modified flag modified");
  owner->Dictionary()->ResetModified();
  EXPECT_EQ(BagText(owner), "{_Line: {FDebit: 2}} flag modified");
}

TEST(Properties, AttachToACopyOfTheBagsOwnDictionaryKeepsItsValues) {
  const auto bag = Bag({{"K", 1}});
  const Ref<Dictionary> former = bag->Dictionary();
  bag->Attach(bag->Dictionary(), false, bag->ChangeFlag(), 0);
  EXPECT_NE(bag->Dictionary(), former);
  EXPECT_EQ(BagText(bag), "{K: 1}");
}

TEST(Properties, AFailedCopyLeavesTheBagAsItWas) {
  const auto bag = Bag({{"K", 1}});
  bag->SetValue("K", 2);
  const auto row = Row({{"K", 3}, {"Held", Make<Opaque>()}});
  EXPECT_EQ(ErrorOf([&] { bag->Attach(row, false, Nothing, 0); }),
            "error 438 (Opaque): No member Clone.");
  EXPECT_EQ(BagText(bag), "{K: 2} dictionary modified flag modified");
}

// ---- Without a bag ----

TEST(Properties, APropertyMadeWithoutItsBagRaisesObjectNotSet) {
  const auto property = Make<Property>();
  EXPECT_EQ(property->Name(), "");
  EXPECT_EQ(ErrorOf([&] { property->Value(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { property->Value(Variant(1)); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { CStr(Variant(property)); }), "error 91");
  const auto walker = Make<WalkProperty>();
  Variant item;
  Boolean done = false;
  EXPECT_EQ(ErrorOf([&] { walker->Next(item, done); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { walker->Skip(done); }), "error 91");
}

TEST(Properties, AValueThatEndsMayReleaseTheBag) {
  auto bag = Make<Properties>();
  for (const bool write : {true, false}) {
    bag = Make<Properties>();
    bag->Attach(Nothing, true, Nothing, 0);
    bag->SetValue("K", Variant(Make<testing::AtEnd>([&] { bag = nullptr; })));
    if (write) {
      bag->SetValue("K", 1);
    } else {
      bag->ClearValue("K");
    }
    EXPECT_EQ(bag, nullptr);
  }
}

// ---- Item and Property ----

TEST(Properties, ItemByPositionGivesTheKeysInOrder) {
  const auto bag = Bag({{"A", 1}, {"B", 2}, {"C", 3}});
  EXPECT_EQ(bag->Item(1)->Name(), "A");
  EXPECT_EQ(bag->Item(2)->Name(), "B");
  EXPECT_EQ(bag->Item(bag->Count())->Name(), "C");
}

TEST(Properties, ItemOutsideThePositionsIsAnInvalidCall) {
  const auto bag = Bag({{"A", 1}, {"B", 2}});
  EXPECT_EQ(ErrorOf([&] { bag->Item(0); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { bag->Item(-1); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { bag->Item(3); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { Bag()->Item(1); }), "error 5");
}

TEST(Properties, ItemTakesAPositionOfEveryNumberType) {
  const auto bag = Bag({{"A", 1}, {"B", 2}, {"C", 3}});
  const std::vector<Variant> positions = {Byte{2}, Integer{2}, Long{2}, 2.0f,
                                          2.0,     2.5,        1.5,     Decimal::FromInteger(2)};
  for (const Variant& position : positions) {
    SCOPED_TRACE(StateText(position));
    EXPECT_EQ(bag->Item(position)->Name(), "B");
  }
}

TEST(Properties, ItemAtAPositionThatNoLongHoldsOverflows) {
  EXPECT_EQ(ErrorOf([&] { Bag()->Item(1e10); }), "error 6");
}

TEST(Properties, ItemWithAKeyThatIsNeitherNumberNorTextIsAnInvalidCall) {
  const auto bag = Bag({{"A", 1}});
  const std::vector<Variant> keys = {
      DateTime(1), Currency(1),          true, Variant(), Null, Missing, Nothing, Variant(Row({})),
      Bytes{},     Variant(bag->Item(1))};
  for (const Variant& key : keys) {
    SCOPED_TRACE(StateText(key));
    EXPECT_EQ(ErrorOf([&] { bag->Item(key); }), "error 5");
  }
}

TEST(Properties, ItemByNameDoesNotLookTheKeyUp) {
  const auto bag = Bag({{"A", 1}});
  const Ref<Property> absent = bag->Item("B");
  EXPECT_EQ(absent->Name(), "B");
  EXPECT_EQ(StateText(absent->Value()), "\"\"");
  EXPECT_EQ(BagText(bag), "{A: 1}");
  EXPECT_EQ(bag->Item("")->Name(), "");
}

TEST(Properties, ADigitAsTextIsAName) {
  const auto bag = Bag({{"A", 1}, {"1", "one"}});
  EXPECT_EQ(bag->Item("1")->Name(), "1");
  EXPECT_EQ(StateText(bag->Item("1")->Value()), "\"one\"");
}

TEST(Properties, ItemMakesANewPropertyEachTime) {
  const auto bag = Bag({{"A", 1}});
  EXPECT_NE(bag->Item(1), bag->Item(1));
}

TEST(Property, ValueOfANumberReadsAsText) {
  EXPECT_EQ(StateText(Bag({{"K", 5}})->Item("K")->Value()), "\"5\"");
}

TEST(Property, ValueOfEveryTypeReadsAsTextOrAsTheObject) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    EXPECT_EQ(StateText(Bag({{"K", sample.value}})->Item("K")->Value()), sample.read);
  }
}

TEST(Property, AWriteStoresTheValueWithItsType) {
  for (const Sample& sample : Samples()) {
    SCOPED_TRACE(sample.name);
    const auto bag = Bag();
    bag->Item("K")->Value(sample.value);
    EXPECT_EQ(BagText(bag),
              "{K: " + std::string(sample.stored) + "} dictionary modified flag modified");
  }
}

TEST(Property, AWriteToAnAbsentKeyAddsIt) {
  const auto bag = Bag({{"A", 1}});
  const Ref<Property> property = bag->Item("B");
  property->Value("new");
  EXPECT_EQ(BagText(bag), "{A: 1, B: \"new\"} dictionary modified flag modified");
}

TEST(Property, AnObjectCanBePutEitherWay) {
  const auto object = Make<Opaque>();
  const auto bag = Bag();
  bag->Item("A")->Let("Value", Variant(object));
  bag->Item("B")->Set("Value", Variant(object));
  bag->Item("C")->Set("Value", Nothing);
  EXPECT_EQ(BagText(bag),
            "{A: <Opaque>, B: <Opaque>, C: Nothing} dictionary modified flag modified");
}

TEST(Property, AHeldPropertySeesTheDictionaryAttachedLater) {
  const auto original = Row({{"K", "old"}});
  const auto bag = Make<Properties>();
  bag->Attach(original, false, Nothing, 0);
  const Ref<Property> property = bag->Item("K");
  property->Value("edited");
  ASSERT_EQ(BagText(bag), "{K: \"edited\"} dictionary modified flag modified");

  bag->Attach(original, false, Nothing, 1);
  EXPECT_EQ(StateText(property->Value()), "\"old\"");
  EXPECT_EQ(BagText(bag), "{K: \"old\"}");
  property->Value("again");
  EXPECT_EQ(BagText(bag), "{K: \"again\"} dictionary modified flag modified");
  EXPECT_EQ(StateText(Variant(original)), "{K: \"old\"}");
}

TEST(Property, AHeldPropertyKeepsItsNameWhenKeysMove) {
  const auto bag = Bag({{"A", 1}, {"B", 2}});
  const Ref<Property> property = bag->Item(2);
  bag->SetValue("A", 0, 0);
  EXPECT_EQ(property->Name(), "B");
  EXPECT_EQ(StateText(property->Value()), "\"2\"");
  bag->Dictionary()->Remove("B");
  EXPECT_EQ(StateText(property->Value()), "\"\"");
}

TEST(Property, AHeldPropertyKeepsItsBagAlive) {
  const auto object = Make<Opaque>();
  auto bag = Bag({{"K", object}});
  Ref<Property> property = bag->Item("K");
  bag = nullptr;
  EXPECT_EQ(property->Value().As<Opaque>(), object);
  property = nullptr;
  EXPECT_EQ(object->holders(), 1);
}

// ---- Late-bound access ----

TEST(Properties, MembersAreReachedByName) {
  const auto bag = Bag({{"A", 5}, {"B", Null}});
  EXPECT_EQ(StateText(bag->Get("Count")), "2");
  EXPECT_EQ(StateText(bag->Call("Lookup", "A")), "True");
  EXPECT_EQ(StateText(bag->Call("lookup", "C")), "False");
  EXPECT_EQ(bag->Get("Dictionary").As<Dictionary>(), bag->Dictionary());
  EXPECT_EQ(StateText(bag->Get("Item", 1).As<Property>()->Get("Name")), "\"A\"");
  EXPECT_EQ(StateText(bag->Get("item", Named("index", "A")).As<Property>()->Get("Value")), "\"5\"");
  EXPECT_EQ(ErrorOf([&] { bag->Get("Item", DateTime(1)); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { bag->Get("Item"); }), "error 449");
}

TEST(Properties, OperationsOfTheLibraryAreNotReachedByName) {
  const auto bag = Bag({{"A", 5}});
  for (const char* name :
       {"Attach", "GetValue", "SetValue", "SetObject", "ClearValue", "ChangeFlag", "Modified"}) {
    EXPECT_EQ(ErrorOf([&] { bag->Get(name); }),
              "error 438 (Properties): No member " + std::string(name) + ".");
  }
  EXPECT_EQ(ErrorOf([&] { bag->Item(1)->Call("Init", "K", Variant(bag)); }),
            "error 438 (Property): No member Init.");
}

TEST(Properties, ReadOnlyMembersRefuseAWrite) {
  const auto bag = Bag({{"A", 5}});
  EXPECT_EQ(ErrorOf([&] { bag->Let("Count", 7); }),
            "error 438 (Properties): The member Count can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { bag->Set("Dictionary", Variant(Row({}))); }),
            "error 438 (Properties): The member Dictionary can't be used this way.");
  EXPECT_EQ(ErrorOf([&] { bag->Item(1)->Let("Name", "B"); }),
            "error 438 (Property): The member Name can't be used this way.");
  EXPECT_EQ(BagText(bag), "{A: 5}");
}

TEST(Properties, APropertyStandsForItsValueWhereAPlainValueIsNeeded) {
  const auto bag = Bag({{"A", 5}, {"B", "text"}});
  const Variant number = bag->Get("Item", "A");
  const Variant text = bag->Get("Item", "B");
  EXPECT_EQ(CLng(number), 5);
  EXPECT_EQ(CStr(text), "text");
  EXPECT_TRUE(Equals(text, "text"));
  EXPECT_EQ(StateText(bag->Item("A")->PlainValue()), "\"5\"");
  const auto other = Bag();
  other->SetValue("C", text);
  EXPECT_EQ(CStr(other->Item("C")->Value()), "text");
}

TEST(Properties, AChainOfDefaultMembersEndsAtThePlainValue) {
  const auto inner = Bag({{"Number", 7}});
  const auto outer = Bag({{"Held", inner->Item("Number")}});
  EXPECT_EQ(CLng(outer->Get("Item", "Held")), 7);
  const auto outermost = Bag({{"Held", outer->Item("Held")}});
  EXPECT_EQ(CLng(outermost->Get("Item", "Held")), 7);
}

TEST(Properties, ABagHasNoValueOfItsOwn) {
  EXPECT_EQ(ErrorOf([] {
              Bag({{"A", 5}})->PlainValue();
            }),
            "error 438 (Properties): The object has no default value.");
}

// ---- Enumeration ----

TEST(Properties, ALoopRunsThroughTheKeysInOrder) {
  const auto bag = Bag({{"C", 1}, {"A", Null}, {"B", Make<Vector>()}});
  EXPECT_EQ(KeysOf(bag), "C A B");
}

TEST(Properties, ABagWithoutKeysEnumeratesNothing) {
  const auto bag = Bag();
  EXPECT_EQ(KeysOf(bag), "");
  Variant item = "untouched";
  EXPECT_FALSE(bag->NewEnum()->Next(item));
  EXPECT_EQ(StateText(item), "\"untouched\"");
  EXPECT_FALSE(bag->NewEnum()->Skip(1));
}

TEST(Properties, ALoopReadsAndWritesThroughItsProperties) {
  const auto bag = Bag({{"A", 1}, {"B", 2}});
  for (auto& property : *bag) property.Value(CStr(property.Value()) + "!");
  EXPECT_EQ(BagText(bag), "{A: \"1!\", B: \"2!\"} dictionary modified flag modified");
}

TEST(Properties, ALoopMeetsKeysThatAreAddedOnTheWay) {
  const auto bag = Bag({{"A", 1}, {"B", 2}});
  std::string met;
  for (const auto& property : *bag) {
    met += property.Name();
    if (property.Name() == "A") bag->SetValue("C", 3);
  }
  EXPECT_EQ(met, "ABC");
}

TEST(Properties, ALoopPassesByPositionWhenKeysAreRemovedOnTheWay) {
  const auto bag = Bag({{"A", 1}, {"B", 2}, {"C", 3}});
  std::string met;
  for (const auto& property : *bag) {
    met += property.Name();
    if (property.Name() == "A") bag->ClearValue("A");
  }
  EXPECT_EQ(met, "AC");
}

TEST(Properties, AnEnumeratorKeepsTheBagAlive) {
  auto bag = Bag({{"A", 1}});
  const Ref<Enumerator> enumerator = bag->NewEnum();
  bag = nullptr;
  Variant item;
  ASSERT_TRUE(enumerator->Next(item));
  EXPECT_EQ(StateText(item.As<Property>()->Value()), "\"1\"");
}

TEST(Properties, TwoEnumeratorsDoNotDisturbEachOther) {
  const auto bag = Bag({{"A", 1}, {"B", 2}});
  std::string met;
  for (const auto& outer : *bag) {
    for (const auto& inner : *bag) met += outer.Name() + inner.Name() + " ";
  }
  EXPECT_EQ(met, "AA AB BA BB ");
}

TEST(WalkProperty, NextAtTheEndLeavesBothArgumentsAlone) {
  const auto walker = Make<WalkProperty>();
  walker->Init(Bag({{"A", 1}}));
  Variant item;
  Boolean done = false;
  walker->Next(item, done);
  EXPECT_TRUE(done);
  EXPECT_EQ(item.As<Property>()->Name(), "A");

  item = "untouched";
  done = true;
  walker->Next(item, done);
  EXPECT_TRUE(done);
  done = false;
  walker->Next(item, done);
  EXPECT_FALSE(done);
  EXPECT_EQ(StateText(item), "\"untouched\"");
}

TEST(WalkProperty, SkipPassesOneKeyAndLeavesItsArgumentAloneAtTheEnd) {
  const auto walker = Make<WalkProperty>();
  walker->Init(Bag({{"A", 1}, {"B", 2}}));
  Boolean done = false;
  walker->Skip(done);
  EXPECT_TRUE(done);
  Variant item;
  walker->Next(item, done);
  EXPECT_EQ(item.As<Property>()->Name(), "B");
  done = false;
  walker->Skip(done);
  EXPECT_FALSE(done);
}

TEST(WalkProperty, ResetBeginsAgain) {
  const auto walker = Make<WalkProperty>();
  walker->Init(Bag({{"A", 1}, {"B", 2}}));
  Boolean done = false;
  walker->Skip(done);
  walker->Skip(done);
  walker->Reset();
  Variant item;
  walker->Next(item, done);
  EXPECT_EQ(item.As<Property>()->Name(), "A");
}

TEST(WalkProperty, InitBeginsAgainOverTheNewBag) {
  const auto walker = Make<WalkProperty>();
  walker->Init(Bag({{"A", 1}, {"B", 2}}));
  Boolean done = false;
  walker->Skip(done);
  walker->Init(Bag({{"C", 1}, {"D", 2}}));
  Variant item;
  walker->Next(item, done);
  EXPECT_EQ(item.As<Property>()->Name(), "C");
}

TEST(WalkProperty, SkipOfMoreKeysThanThereAreTellsSo) {
  const Ref<Enumerator> enumerator = Bag({{"A", 1}, {"B", 2}, {"C", 3}})->NewEnum();
  EXPECT_TRUE(enumerator->Skip(0));
  EXPECT_TRUE(enumerator->Skip(2));
  EXPECT_FALSE(enumerator->Skip(2));
  enumerator->Reset();
  EXPECT_TRUE(enumerator->Skip(3));
}

TEST(WalkProperty, ABagOfTheGreatestSizeIsWalkedToItsEnd) {
  const auto bag = Make<Properties>();
  bag->Attach(DictionaryOf(32767), true, Nothing, 0);
  Long walked = 0;
  std::string last;
  for (const auto& property : *bag) {
    ++walked;
    last = property.Name();
  }
  EXPECT_EQ(walked, 32767);
  EXPECT_EQ(last, "K32767");
}

TEST(WalkProperty, OneKeyMoreOverflowsThePosition) {
  const auto bag = Make<Properties>();
  bag->Attach(DictionaryOf(32768), true, Nothing, 0);
  const Ref<Enumerator> enumerator = bag->NewEnum();
  Variant item = "untouched";
  ASSERT_TRUE(enumerator->Skip(32767));
  EXPECT_EQ(ErrorOf([&] { enumerator->Next(item); }), "error 6");
  EXPECT_EQ(ErrorOf([&] { enumerator->Skip(1); }), "error 6");
  EXPECT_EQ(StateText(item), "\"untouched\"");
  EXPECT_EQ(bag->Item(32768)->Name(), "K32768");
}

}  // namespace
}  // namespace qdclgl

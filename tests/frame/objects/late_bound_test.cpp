#include "qdclgl/frame/objects/late_bound.h"

#include <gtest/gtest.h>

#include <string>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/objects/class_table.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::StateText;

// Members of every kind, which tell what reaches them.
class Desk final : public Object {
  QD_MEMBERS(Desk, Object, Creatable, "A desk.")

 public:
  QD_METHOD(String, Show,
            (Boolean Truth, Integer Small, Long Large, Single Real, Double Wide, Currency Amount,
             DateTime Day, std::string_view Words, Variant Any, Ref<Object> Thing),
            "Tells its arguments.")
  QD_METHOD(String, ShowReferences,
            (const Long& Large, const String& Words, const Variant& Any, const Ref<Object>& Thing),
            "Tells its arguments.")
  QD_METHOD(String, ShowDefaults,
            (Boolean Truth = true, Integer Small = -3, Long Large = 70000, Single Real = 1.5f,
             Double Wide = -2.5, Currency Amount = 5, std::string_view Words = "some words",
             Variant Any = Missing),
            "Tells its arguments.")
  QD_METHOD(String, ShowThree, (Long First, Variant Second = Missing, Long Third = 3),
            "Tells its arguments.")
  QD_METHOD(void, ChangeBoolean, (Boolean & Value), "Turns a truth value around.")
  QD_METHOD(void, ChangeInteger, (Integer & Value), "Adds 1.")
  QD_METHOD(void, ChangeLong, (Long & Value), "Adds 1.")
  QD_METHOD(void, ChangeSingle, (Single & Value), "Adds 1.")
  QD_METHOD(void, ChangeDouble, (Double & Value), "Adds 1.")
  QD_METHOD(void, ChangeCurrency, (Currency & Value), "Adds 1.")
  QD_METHOD(void, ChangeDate, (DateTime & Value), "Adds a day.")
  QD_METHOD(void, ChangeString, (String & Value), "Adds a mark.")
  QD_METHOD(void, ChangeVariant, (Variant & Value), "Puts its text in its place, with a mark.")
  QD_METHOD(void, ChangeObject, (Ref<Object> & Value), "Puts a new row in its place.")
  QD_METHOD(void, ChangeRow, (Ref<Dictionary> & Value), "Puts a new row in its place.")
  QD_METHOD(void, PutVariant, (Variant & Place, const Variant& Value), "Puts a value in its place.")
  QD_METHOD(Long, ChangeAndFail, (Long & Value), "Adds 1 and raises an error.")
  QD_METHOD(void, Fail, (), "Raises an error.")
  QD_PROPERTY(GetLet, Long, Size, "A number.", DefaultMember)
  QD_PROPERTY(Get, String, Title, "A text that can't be put.")
  QD_PROPERTY(Let, Long, Secret, "A number that can't be read.")
  QD_PROPERTY(GetSet, Ref<Object>, Owner, "An object.")
  QD_PROPERTY(GetLetSet, Variant, Content, "Anything.")
  QD_INDEXED(GetLet, String, Cell, (Long Row, Long Column), "A text in its place.")
  QD_INDEXED(GetSet, Ref<Object>, Drawer, (Long Index), "An object in its place.")
  QD_PROPERTY(Set, Ref<Object>, Guest, "An object that can't be read.")
  QD_INDEXED(Set, Ref<Object>, Shelf, (Long Index), "An object in its place, likewise.")
  QD_PROPERTY(GetLetVariant, Ref<Object>, Lamp, "An object that is written as a Variant.")
  QD_VARIABLE(String, Note, "none", "A text.")

 private:
  Long size_ = 0;
  Ref<Object> owner_;
  Variant content_;
  String cells_;
};

QD_DEFINE_MEMBERS(Desk)

template <class... T>
String Told(const T&... values) {
  String text;
  ((text += (text.empty() ? "" : ", ") + StateText(Variant(values))), ...);
  return text;
}

String Desk::Show(Boolean Truth, Integer Small, Long Large, Single Real, Double Wide,
                  Currency Amount, DateTime Day, std::string_view Words, Variant Any,
                  Ref<Object> Thing) {
  return Told(Truth, Small, Large, Real, Wide, Amount, Day, Words, Any, Thing);
}
String Desk::ShowReferences(const Long& Large, const String& Words, const Variant& Any,
                            const Ref<Object>& Thing) {
  return Told(Large, Words, Any, Thing);
}
String Desk::ShowDefaults(Boolean Truth, Integer Small, Long Large, Single Real, Double Wide,
                          Currency Amount, std::string_view Words, Variant Any) {
  return Told(Truth, Small, Large, Real, Wide, Amount, Words, Any);
}
String Desk::ShowThree(Long First, Variant Second, Long Third) {
  return Told(First, Second, Third);
}
void Desk::ChangeBoolean(Boolean& Value) { Value = !Value; }
void Desk::ChangeInteger(Integer& Value) { Value = static_cast<Integer>(Value + 1); }
void Desk::ChangeLong(Long& Value) { ++Value; }
void Desk::ChangeSingle(Single& Value) { Value += 1; }
void Desk::ChangeDouble(Double& Value) { Value += 1; }
void Desk::ChangeCurrency(Currency& Value) { Value += Currency(Long{1}); }
void Desk::ChangeDate(DateTime& Value) { Value.days += 1; }
void Desk::ChangeString(String& Value) { Value += "!"; }
void Desk::ChangeVariant(Variant& Value) { Value = CStr(Value) + "!"; }
void Desk::ChangeObject(Ref<Object>& Value) { Value = Make<Dictionary>(); }
void Desk::ChangeRow(Ref<Dictionary>& Value) { Value = Make<Dictionary>(); }
void Desk::PutVariant(Variant& Place, const Variant& Value) { Place = Value; }
Long Desk::ChangeAndFail(Long& Value) {
  ++Value;
  throw Error(1234, "Desk", "words");
}
void Desk::Fail() { throw Error(-2147220991, "a source", "some words"); }
Long Desk::Size() const { return size_; }
void Desk::Size(Long value) { size_ = value; }
String Desk::Title() const { return "title"; }
void Desk::Secret(Long value) { size_ = -value; }
void Desk::Guest(Ref<Object> value) { owner_ = std::move(value); }
void Desk::Shelf(Long Index, Ref<Object> value) {
  size_ = Index;
  owner_ = std::move(value);
}
Ref<Object> Desk::Lamp() const { return owner_; }
void Desk::Lamp(Variant value) { owner_ = value.As<Object>(); }
Ref<Object> Desk::Owner() const { return owner_; }
void Desk::Owner(Ref<Object> value) { owner_ = std::move(value); }
Variant Desk::Content() const { return content_; }
void Desk::Content(Variant value) { content_ = std::move(value); }
String Desk::Cell(Long Row, Long Column) const {
  return cells_ + "@" + std::to_string(Row) + "," + std::to_string(Column);
}
void Desk::Cell(Long Row, Long Column, String value) {
  cells_ += std::to_string(Row) + "," + std::to_string(Column) + "=" + value + ";";
}
Ref<Object> Desk::Drawer(Long) const { return owner_; }
void Desk::Drawer(Long Index, Ref<Object> value) {
  size_ = Index;
  owner_ = std::move(value);
}

class LateBoundTest : public ::testing::Test {
 protected:
  // What the call answers, or the error that it raises.
  template <class... Args>
  std::string Answer(std::string_view name, Args... args) {
    try {
      return StateText(desk->Call(name, args...));
    } catch (const Error& error) {
      return error.what();
    }
  }

  Ref<Desk> desk = Make<Desk>();
};

// ---- Arguments by value ----

TEST_F(LateBoundTest, ArgumentsByValueReachTheMember) {
  EXPECT_EQ(desk->Call("Show", true, Integer{-1}, Long{2}, 2.5f, -2.5, Currency(1.5),
                       DateTime(45322), "words", Null, Make<Opaque>())
                .As<String>(),
            "True, -1%, 2, 2.5!, -2.5#, 1.5@, #2024-01-31#, \"words\", Null, <Opaque>");
}

TEST_F(LateBoundTest, ArgumentsAreConvertedToTheTypesOfTheParameters) {
  EXPECT_EQ(desk->Call("Show", "True", 2.5, " 7 ", Long{1}, "1E3", "1.23455", "2024-01-31", Long{5},
                       Decimal::FromText("1.5"), Nothing)
                .As<String>(),
            "True, 2%, 7, 1!, 1000#, 1.2346@, #2024-01-31#, \"5\", 1.5d, Nothing");
  EXPECT_EQ(desk->Call("ShowReferences", "7", Long{5}, Nothing, Nothing).As<String>(),
            "7, \"5\", Nothing, Nothing");
}

TEST_F(LateBoundTest, AnArgumentOfTheWrongTypeRaisesTypeMismatch) {
  EXPECT_EQ(Answer("ShowThree", "seven"), "error 13");
  EXPECT_EQ(Answer("ShowThree", Null), "error 13");
  EXPECT_EQ(Answer("ShowThree", Long{1}, Long{2}, Nothing), "error 13");
  EXPECT_EQ(Answer("ShowThree", 1e10), "error 6");
  EXPECT_EQ(Answer("ShowReferences", Long{1}, "a", Long{2}, "no object"), "error 13");
  Ref<Object> opaque = Make<Opaque>();
  EXPECT_EQ(Answer("ChangeRow", ByRef(opaque)), "error 13");
}

TEST_F(LateBoundTest, AnObjectStandsForItsDefaultMember) {
  const auto seven = Make<Desk>();
  seven->Size(7);
  EXPECT_EQ(Answer("ShowThree", seven), "\"7, Missing, 3\"");
  EXPECT_EQ(seven->PlainValue().As<Long>(), 7);
  EXPECT_EQ(ErrorOf([] { Make<Opaque>()->PlainValue(); }),
            "error 438 (Opaque): The object has no default value.");
  EXPECT_EQ(ErrorOf([] { Make<Dictionary>()->PlainValue(); }),
            "error 438 (Dictionary): The object has no default value.");
}

// ---- Arguments by reference ----

template <class T>
T Changed(const Ref<Desk>& desk, std::string_view method, T value) {
  desk->Call(method, ByRef(value));
  return value;
}

TEST_F(LateBoundTest, WhatIsWrittenComesBackIntoAVariableOfTheSameType) {
  EXPECT_EQ(Changed(desk, "ChangeBoolean", false), true);
  EXPECT_EQ(Changed(desk, "ChangeInteger", Integer{6}), 7);
  EXPECT_EQ(Changed(desk, "ChangeLong", Long{6}), 7);
  EXPECT_EQ(Changed(desk, "ChangeSingle", 6.5f), 7.5f);
  EXPECT_EQ(Changed(desk, "ChangeDouble", 6.5), 7.5);
  EXPECT_EQ(Changed(desk, "ChangeCurrency", Currency(6.5)), Currency(7.5));
  EXPECT_EQ(Changed(desk, "ChangeDate", DateTime(6.5)), DateTime(7.5));
  EXPECT_EQ(Changed(desk, "ChangeString", String("six")), "six!");
  EXPECT_EQ(StateText(Changed(desk, "ChangeVariant", Variant("six"))), "\"six!\"");
  EXPECT_EQ(StateText(Variant(Changed(desk, "ChangeObject", Ref<Object>()))), "{}");
  EXPECT_EQ(StateText(Variant(Changed(desk, "ChangeRow", Ref<Dictionary>()))), "{}");
}

TEST_F(LateBoundTest, WhatIsWrittenComesBackIntoAVariableOfAnyOtherType) {
  EXPECT_EQ(Changed(desk, "ChangeLong", Byte{6}), 7);
  EXPECT_EQ(Changed(desk, "ChangeLong", Integer{6}), 7);
  EXPECT_EQ(Changed(desk, "ChangeLong", 6.0f), 7.0f);
  EXPECT_EQ(Changed(desk, "ChangeLong", 6.5), 7.0);
  EXPECT_EQ(Changed(desk, "ChangeLong", Currency(6.5)), Currency(7.0));
  EXPECT_EQ(Changed(desk, "ChangeLong", Decimal::FromText("6.5")), Decimal::FromInteger(7));
  EXPECT_EQ(Changed(desk, "ChangeLong", DateTime(6)), DateTime(7));
  EXPECT_EQ(Changed(desk, "ChangeLong", true), false);
  EXPECT_EQ(Changed(desk, "ChangeLong", String("6")), "7");
}

TEST_F(LateBoundTest, AVariantByReferenceTakesTheMembersType) {
  EXPECT_EQ(StateText(Changed(desk, "ChangeLong", Variant("6"))), "7");
  EXPECT_EQ(StateText(Changed(desk, "ChangeLong", Variant())), "1");
  EXPECT_EQ(StateText(Changed(desk, "ChangeString", Variant(Long{6}))), "\"6!\"");
  EXPECT_EQ(StateText(Changed(desk, "ChangeCurrency", Variant(Long{6}))), "7@");
  EXPECT_EQ(StateText(Changed(desk, "ChangeObject", Variant(Nothing))), "{}");
}

TEST_F(LateBoundTest, AVariantParameterTakesAVariableOfAnyType) {
  EXPECT_EQ(Changed(desk, "ChangeVariant", String("six")), "six!");
  Long number = 6;
  desk->Call("PutVariant", ByRef(number), "7");
  EXPECT_EQ(number, 7);
  Variant place = Long{1};
  desk->Call("PutVariant", ByRef(place), Null);
  EXPECT_EQ(StateText(place), "Null");
}

TEST_F(LateBoundTest, WhatDoesNotFitTheCallersVariableRaisesAnErrorAndLeavesIt) {
  Long number = 6;
  EXPECT_EQ(Answer("ChangeVariant", ByRef(number)), "error 13");
  EXPECT_EQ(number, 6);
  Byte byte = 255;
  EXPECT_EQ(Answer("ChangeLong", ByRef(byte)), "error 6");
  EXPECT_EQ(byte, 255);
}

TEST_F(LateBoundTest, AnArgumentByValueIsNotWrittenBack) {
  const Long number = 6;
  EXPECT_EQ(Answer("ChangeLong", number), "Empty");
  EXPECT_EQ(number, 6);
}

TEST_F(LateBoundTest, AParameterByValueLeavesTheCallersVariable) {
  String words = "7";
  EXPECT_EQ(Answer("ShowThree", ByRef(words)), "\"7, Missing, 3\"");
  EXPECT_EQ(words, "7");
}

TEST_F(LateBoundTest, AMemberThatFailsHasWrittenThroughAReferenceOfItsOwnType) {
  Long number = 6;
  EXPECT_EQ(Answer("ChangeAndFail", ByRef(number)), "error 1234 (Desk): words");
  EXPECT_EQ(number, 7);
}

// ---- Named arguments, holes and defaults ----

TEST_F(LateBoundTest, NamedArgumentsGoInAnyOrder) {
  const char* expected = "\"1, 2, 5\"";
  EXPECT_EQ(Answer("ShowThree", Long{1}, Long{2}, Long{5}), expected);
  EXPECT_EQ(Answer("ShowThree", Named("Third", Long{5}), Named("First", Long{1}),
                   Named("Second", Long{2})),
            expected);
  EXPECT_EQ(Answer("ShowThree", Long{1}, Named("third", Long{5}), Named("SECOND", Long{2})),
            expected);
  EXPECT_EQ(Answer("ShowThree", Named("Third", Long{5}), Named("First", Long{1})),
            "\"1, Missing, 5\"");
}

TEST_F(LateBoundTest, ANamedArgumentMayGoByReference) {
  Long number = 6;
  desk->Call("ChangeLong", Named("Value", ByRef(number)));
  EXPECT_EQ(number, 7);
  String words = "six";
  desk->Call("PutVariant", Named("Value", "seven"), Named("Place", ByRef(words)));
  EXPECT_EQ(words, "seven");
}

TEST_F(LateBoundTest, WhatIsLeftOutTakesItsDefault) {
  const char* defaults = "True, -3%, 70000, 1.5!, -2.5#, 5@, \"some words\", Missing";
  EXPECT_EQ(desk->Call("ShowDefaults").As<String>(), defaults);
  EXPECT_EQ(desk->ShowDefaults(), defaults);
  EXPECT_EQ(Answer("ShowThree", Long{1}), "\"1, Missing, 3\"");
  EXPECT_EQ(Answer("ShowThree", Long{1}, Missing, Long{5}), "\"1, Missing, 5\"");
  EXPECT_EQ(Answer("ShowThree", Long{1}, Long{2}, Missing), "\"1, 2, 3\"");
  EXPECT_EQ(Answer("ShowThree", Long{1}, Missing, Missing), "\"1, Missing, 3\"");
}

TEST_F(LateBoundTest, AHoleBetweenDefaultsIsFilled) {
  EXPECT_EQ(
      desk->Call("ShowDefaults", Missing, Integer{4}, Missing, 0.5f, Missing, Missing, "x", Null)
          .As<String>(),
      "True, 4%, 70000, 0.5!, -2.5#, 5@, \"x\", Null");
}

TEST_F(LateBoundTest, AMissingVariableByReferenceIsAHoleToo) {
  Variant hole = Missing;
  EXPECT_EQ(Answer("ShowThree", Long{1}, Long{2}, ByRef(hole)), "\"1, 2, 3\"");
  EXPECT_EQ(Answer("ShowThree", ByRef(hole)), "error 449");
}

TEST_F(LateBoundTest, ANeededArgumentThatIsLeftOutRaisesError449) {
  EXPECT_EQ(Answer("ShowThree"), "error 449");
  EXPECT_EQ(Answer("ShowThree", Missing, Long{2}), "error 449");
  EXPECT_EQ(Answer("ShowThree", Named("Third", Long{5})), "error 449");
  EXPECT_EQ(Answer("ChangeLong"), "error 449");
  EXPECT_EQ(ErrorOf([&] { desk->Get("Cell"); }), "error 449");
}

TEST_F(LateBoundTest, AWrongCountRaisesError450) {
  EXPECT_EQ(Answer("ShowThree", Long{1}, Long{2}, Long{3}, Long{4}), "error 450");
  EXPECT_EQ(Answer("Fail", Long{1}), "error 450");
  EXPECT_EQ(ErrorOf([&] { desk->Get("Size", Long{1}); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { desk->Let("Size"); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { desk->Let("Size", Long{1}, Long{2}); }), "error 450");
  EXPECT_EQ(ErrorOf([&] { desk->Let("Cell", Long{1}, Long{2}, Long{3}, "x"); }), "error 450");
}

TEST_F(LateBoundTest, AnArgumentGivenTwiceRaisesError450) {
  EXPECT_EQ(Answer("ShowThree", Long{1}, Named("First", Long{1})), "error 450");
  EXPECT_EQ(Answer("ShowThree", Named("First", Long{1}), Named("first", Long{1})), "error 450");
}

TEST_F(LateBoundTest, AnUnknownNamedArgumentRaisesError448) {
  EXPECT_EQ(Answer("ShowThree", Long{1}, Named("Fourth", Long{4})), "error 448");
  EXPECT_EQ(Answer("Fail", Named("Any", Long{4})), "error 448");
}

// ---- Properties ----

TEST_F(LateBoundTest, PropertiesAreReadAndPut) {
  desk->Let("Size", Long{5});
  EXPECT_EQ(StateText(desk->Get("Size")), "5");
  desk->Let("Size", "6");
  EXPECT_EQ(desk->Size(), 6);
  EXPECT_EQ(StateText(desk->Get("Note")), "\"none\"");
  desk->Let("Note", Long{7});
  EXPECT_EQ(desk->Note(), "7");
  EXPECT_EQ(StateText(desk->Get("Title")), "\"title\"");
  desk->Let("Secret", Long{5});
  EXPECT_EQ(desk->Size(), -5);
}

TEST_F(LateBoundTest, PropertiesWithArgumentsTakeTheValueBehindThem) {
  desk->Let("Cell", Long{1}, Long{2}, "a");
  desk->Let("Cell", Long{3}, "b", Named("Column", Long{1}));
  desk->Let("Cell", "c", Named("Column", Long{5}), Named("Row", Long{4}));
  EXPECT_EQ(StateText(desk->Get("Cell", Long{8}, Long{9})), "\"1,2=a;3,1=b;4,5=c;@8,9\"");
  EXPECT_EQ(ErrorOf([&] { desk->Let("Cell", Long{3}, "b"); }), "error 449");
}

TEST_F(LateBoundTest, AValueOfTheWrongTypeIsRefused) {
  EXPECT_EQ(ErrorOf([&] { desk->Let("Size", "five"); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { desk->Let("Size", 1e10); }), "error 6");
  EXPECT_EQ(ErrorOf([&] { desk->Set("Owner", Long{5}); }), "error 13");
  EXPECT_EQ(desk->Size(), 0);
}

TEST_F(LateBoundTest, ObjectsArePutEitherWay) {
  const auto opaque = Make<Opaque>();
  desk->Set("Owner", opaque);
  EXPECT_EQ(desk->Owner().get(), opaque.get());
  desk->Let("Owner", Nothing);
  EXPECT_EQ(desk->Owner(), nullptr);
  desk->Let("Owner", opaque);
  EXPECT_EQ(desk->Owner().get(), opaque.get());
  desk->Let("Content", opaque);
  EXPECT_EQ(StateText(desk->Get("Content")), "<Opaque>");
  desk->Let("Content", Long{5});
  EXPECT_EQ(StateText(desk->Get("Content")), "5");
  desk->Set("Content", opaque);
  EXPECT_EQ(StateText(desk->Get("Content")), "<Opaque>");
  desk->Set("Size", Make<Desk>());
  EXPECT_EQ(desk->Size(), 0);
}

TEST_F(LateBoundTest, AnObjectIsLetIntoASetOnlyPropertyWithArguments) {
  const auto opaque = Make<Opaque>();
  desk->Let("Drawer", Long{3}, opaque);
  EXPECT_EQ(desk->Size(), 3);
  EXPECT_EQ(desk->Owner().get(), opaque.get());
  desk->Let("Drawer", Nothing, Named("Index", Long{4}));
  EXPECT_EQ(desk->Size(), 4);
  EXPECT_EQ(desk->Owner(), nullptr);
}

TEST_F(LateBoundTest, APlainValueIsNotLetIntoASetOnlyProperty) {
  const std::string refused = "error 438 (Desk): The member Owner can't be used this way.";
  EXPECT_EQ(ErrorOf([&] { desk->Let("Owner", Long{5}); }), refused);
}

TEST_F(LateBoundTest, AMemberThatIsOnlySetTakesObjectsAndIsNotRead) {
  const auto opaque = Make<Opaque>();
  desk->Set("Guest", opaque);
  EXPECT_EQ(desk->Owner().get(), opaque.get());
  desk->Let("Guest", Nothing);
  EXPECT_EQ(desk->Owner(), nullptr);
  desk->Set("Shelf", Long{6}, opaque);
  EXPECT_EQ(desk->Size(), 6);
  EXPECT_EQ(desk->Owner().get(), opaque.get());
  for (const char* member : {"Guest", "Shelf"}) {
    const std::string refused =
        "error 438 (Desk): The member " + std::string(member) + " can't be used this way.";
    EXPECT_EQ(ErrorOf([&] { desk->Get(member); }), refused);
    EXPECT_EQ(ErrorOf([&] { desk->Let(member, Long{5}); }), refused);
    const MemberRow& row = Desk::Table().Find(member)->row;
    EXPECT_TRUE(row.set != nullptr && row.get == nullptr && row.let == nullptr) << member;
  }
}

TEST_F(LateBoundTest, AMemberMayBeWrittenAsAVariantWhateverItReadsAs) {
  const auto opaque = Make<Opaque>();
  desk->Lamp(Variant(opaque));
  EXPECT_EQ(desk->Lamp().get(), opaque.get());
  desk->Let("Lamp", Nothing);
  EXPECT_EQ(desk->Owner(), nullptr);
  const MemberRow& row = Desk::Table().Find("Lamp")->row;
  EXPECT_EQ(std::string(row.type) + " " + std::string(row.PutType()), "Object Variant");
  const MemberRow& owner = Desk::Table().Find("Owner")->row;
  EXPECT_EQ(std::string(owner.type) + " " + std::string(owner.PutType()), "Object Object");
}

TEST_F(LateBoundTest, AMemberUsedTheWrongWayRaisesError438) {
  const auto refused = [](const std::string& name) {
    return "error 438 (Desk): The member " + name + " can't be used this way.";
  };
  EXPECT_EQ(ErrorOf([&] { desk->Let("Title", "x"); }), refused("Title"));
  EXPECT_EQ(ErrorOf([&] { desk->Set("Title", Nothing); }), refused("Title"));
  EXPECT_EQ(ErrorOf([&] { desk->Get("Secret"); }), refused("Secret"));
  EXPECT_EQ(ErrorOf([&] { desk->Let("Fail", Long{1}); }), refused("Fail"));
  EXPECT_EQ(ErrorOf([&] { desk->Get("Fail"); }), refused("Fail"));
  EXPECT_EQ(ErrorOf([&] { desk->Call("Size"); }), refused("Size"));
}

TEST_F(LateBoundTest, ACallerThatCanNotTellAsksForMethodAndPropertyAtOnce) {
  const CallKind either = CallKind::kMethod | CallKind::kGet;
  EXPECT_EQ(StateText(desk->Invoke("Title", either, {})), "\"title\"");
  Argument arguments[] = {Long{1}};
  EXPECT_EQ(StateText(desk->Invoke("ShowThree", either, arguments)), "\"1, Missing, 3\"");
}

// ---- Names ----

TEST_F(LateBoundTest, NamesIgnoreCase) {
  for (const char* name : {"ShowThree", "showthree", "SHOWTHREE", "sHOWtHREE"}) {
    EXPECT_EQ(Answer(name, Long{1}), "\"1, Missing, 3\"") << name;
  }
  desk->Let("sIZE", Long{5});
  EXPECT_EQ(StateText(desk->Get("SIZE")), "5");
}

TEST_F(LateBoundTest, AnUnknownMemberRaisesError438) {
  EXPECT_EQ(Answer("Nowhere"), "error 438 (Desk): No member Nowhere.");
  EXPECT_EQ(Answer(""), "error 438 (Desk): No member .");
  EXPECT_EQ(Answer("Siz"), "error 438 (Desk): No member Siz.");
  EXPECT_EQ(Answer("Size "), "error 438 (Desk): No member Size .");
  EXPECT_EQ(ErrorOf([] { Make<Opaque>()->Call("Any"); }), "error 438 (Opaque): No member Any.");
}

TEST_F(LateBoundTest, WhatAMemberRaisesPassesUnchanged) {
  EXPECT_EQ(Answer("Fail"), "error 0x80040201 (a source): some words");
}

// ---- The class table ----

TEST_F(LateBoundTest, TheTableHasTheRowsInOrder) {
  const ClassTable& table = Desk::Table();
  EXPECT_EQ(table.name(), "Desk");
  EXPECT_EQ(table.help(), "A desk.");
  EXPECT_EQ(table.members().size(), 29u);
  EXPECT_EQ(table.members().front().row.name, "Show");
  EXPECT_EQ(table.members().back().row.name, "Note");
  EXPECT_EQ(table.members()[3].ordinal, 4);
  ASSERT_NE(table.default_member(), nullptr);
  EXPECT_EQ(table.default_member()->row.name, "Size");
  EXPECT_EQ(table.Find("Nowhere"), nullptr);
}

TEST_F(LateBoundTest, TheTableKnowsTheParameters) {
  std::string text;
  for (const MemberParameter& p : Desk::Table().Find("ShowThree")->parameters) {
    text += p.name + ":" + std::string(p.type) + (p.by_ref ? " ref" : "") +
            (p.optional ? " = " + StateText(p.default_value) : "") + ";";
  }
  for (const MemberParameter& p : Desk::Table().Find("PutVariant")->parameters) {
    text += p.name + ":" + std::string(p.type) + (p.by_ref ? " ref" : "") + ";";
  }
  EXPECT_EQ(text,
            "First:Long;Second:Variant = Missing;Third:Long = 3;Place:Variant ref;Value:Variant "
            "ref;");
}

TEST_F(LateBoundTest, ACreatableClassMakesItsObjects) {
  EXPECT_TRUE(Desk::Table().creatable());
  EXPECT_EQ(Desk::Table().Create()->ClassName(), "Desk");
}

// ---- Arguments ----

TEST(Argument, TellsWhatItIs) {
  Long number = 5;
  Variant any = "x";
  EXPECT_EQ(StateText(Argument()), "Missing");
  EXPECT_EQ(StateText(Argument(Long{5})), "5");
  EXPECT_EQ(StateText(Argument(ByRef(number))), "ref 5");
  EXPECT_EQ(StateText(Argument(ByRef(any))), "ref Variant \"x\"");
  EXPECT_EQ(StateText(Argument(Named("Name", Long{5}))), "Name:=5");
  EXPECT_EQ(StateText(Argument(Named("Name", ByRef(number)))), "Name:=ref 5");
  EXPECT_TRUE(Argument().IsMissing());
  EXPECT_FALSE(Argument(ByRef(any)).IsMissing());
  any = Missing;
  EXPECT_TRUE(Argument(ByRef(any)).IsMissing());
}

TEST(Argument, PutConvertsToTheTypeOfTheVariable) {
  Long number = 5;
  Argument(ByRef(number)).Put("7");
  EXPECT_EQ(number, 7);
  EXPECT_EQ(ErrorOf([&] { Argument(ByRef(number)).Put("seven"); }), "error 13");
  EXPECT_EQ(number, 7);
  Argument(Long{5}).Put("x");
}

TEST(Reference, KnowsTheTypeOfItsVariable) {
  Boolean boolean = false;
  Byte byte = 0;
  Integer integer = 0;
  Long number = 0;
  Single single = 0;
  Double real = 0;
  Currency currency;
  DateTime date;
  Decimal decimal;
  String text;
  Variant any;
  Ref<Dictionary> row;
  EXPECT_EQ(Reference(&boolean).type(), VariantType::kBoolean);
  EXPECT_EQ(Reference(&byte).type(), VariantType::kByte);
  EXPECT_EQ(Reference(&integer).type(), VariantType::kInteger);
  EXPECT_EQ(Reference(&number).type(), VariantType::kLong);
  EXPECT_EQ(Reference(&single).type(), VariantType::kSingle);
  EXPECT_EQ(Reference(&real).type(), VariantType::kDouble);
  EXPECT_EQ(Reference(&currency).type(), VariantType::kCurrency);
  EXPECT_EQ(Reference(&date).type(), VariantType::kDate);
  EXPECT_EQ(Reference(&decimal).type(), VariantType::kDecimal);
  EXPECT_EQ(Reference(&text).type(), VariantType::kString);
  EXPECT_EQ(Reference(&row).type(), VariantType::kObject);
  EXPECT_FALSE(Reference(&number).IsVariant());
  EXPECT_TRUE(Reference(&any).IsVariant());
  EXPECT_EQ(Reference(&number).VariableOf<Long>(), &number);
  EXPECT_EQ(Reference(&number).VariableOf<Integer>(), nullptr);
}

TEST_F(LateBoundTest, ACallIsBoundBeforeItIsMade) {
  const ClassTable& table = Desk::Table();
  const ClassMember& show = *table.Find("ShowThree");
  Argument arguments[] = {Argument(Named("Third", Long{9})), Argument(Named("First", Long{7}))};
  BoundCall call = table.Bind(show, CallKind::kMethod, arguments);
  ASSERT_EQ(call.arguments().size(), 3u);
  EXPECT_EQ(StateText(call.arguments()[0].Value()), "7");
  EXPECT_TRUE(call.arguments()[1].IsMissing());
  EXPECT_EQ(StateText(call.arguments()[2].Value()), "9");
  EXPECT_EQ(StateText(call.Invoke(*Make<Desk>())), "\"7, Missing, 9\"");
}

TEST_F(LateBoundTest, WhatDoesNotFitIsToldWhenItIsBound) {
  const ClassTable& table = Desk::Table();
  Argument one[] = {Argument(Long{1})};
  const auto bind = [&](const char* name, CallKind kind, std::span<Argument> arguments) {
    return ErrorOf([&] { table.Bind(*table.Find(name), kind, arguments); });
  };
  EXPECT_EQ(bind("Title", CallKind::kLet, one),
            "error 438 (Desk): The member Title can't be used this way.");
  EXPECT_EQ(bind("ShowThree", CallKind::kMethod, {}), "error 449");
  EXPECT_EQ(bind("Fail", CallKind::kMethod, one), "error 450");
  EXPECT_EQ(bind("Fail", CallKind::kMethod, {}), "no error");  // it was not called
}

}  // namespace
}  // namespace qdclgl

#include "tests/support/set_suite.h"

#include <ostream>

#include "qdclgl/frame/objects/class_table.h"
#include "tests/support/family.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl::testing {

SetUse SetUseByName() {
  return {
      .name = "by_name",
      .create_new = [](EntityListBase& set) { return set.Call("CreateNew").As<Object>(); },
      .existence_check =
          [](EntityListBase& set, const Variant& id, const Variant& text) {
            return set.Call("ExistenceCheck", id, text).As<Long>();
          },
      .get_current = [](EntityListBase& set) { return set.Call("GetCurrent").As<Object>(); },
      .get_next = [](EntityListBase& set) { return set.Call("GetNext").As<Object>(); },
      .new_enum = [](EntityListBase& set) { return set.Call("NewEnum").As<Enumerator>(); },
      .walk =
          [](EntityListBase& set, const std::function<void(Object&)>& visit) {
            const Ref<Object> enumerator = set.Call("NewEnum").As<Object>();
            Variant element;
            while (enumerator->Call("Next", ByRef(element)).As<Boolean>()) {
              visit(*element.As<Object>());
            }
          },
      .refresh = [](EntityListBase& set) { set.Call("Refresh"); },
      .remove = [](EntityListBase& set, const Variant& key) { set.Call("Remove", key); },
      .count = [](EntityListBase& set) { return set.Get("Count").As<Long>(); },
      .item = [](EntityListBase& set,
                 const Variant& key) { return set.Get("Item", key).As<Object>(); },
      .record_set = [](EntityListBase& set) { return set.Get("RecordSet").As<Recordset>(); },
      .put_record_set = [](EntityListBase& set,
                           const Ref<Recordset>& list) { set.Set("RecordSet", list); },
      .put_fields =
          [](EntityListBase& set, Long options, const String& filter, const String& sort) {
            set.Let("ListOptions", CStr(Variant(options)));
            set.Let("Filter", filter);
            set.Let("Sort", sort);
          },
      .fields =
          [](EntityListBase& set) {
            return StateText(set.Get("ListOptions")) + " " + StateText(set.Get("Filter")) + " " +
                   StateText(set.Get("Sort"));
          },
  };
}

void PrintTo(const SetParam& param, std::ostream* out) {
  *out << param.set.class_name << " " << param.use.name;
}

SetSuite::SetSuite() {
  AnswerRows();
  for (const std::string& call : {it().get_detail, it().get_detail_by_text}) {
    server.AnswerWith(entity().info_component, MethodOf(call), [this](std::span<Argument>) {
      return Variant(Row({{entity().id_key, Long{5}}, {entity().text_key, "Stored"}}));
    });
  }
  AnswerExistence(Variant(Long{7}));
  if (it().prepare) it().prepare(server);
}

Ref<Recordset> SetSuite::NoRows() const {
  return Recordset::Create({entity().id_key, entity().text_key});
}

Ref<Recordset> SetSuite::ThreeRows() const {
  auto list = NoRows();
  list->AddRow({Long{1}, "First"});
  list->AddRow({Long{2}, "Second"});
  list->AddRow({Long{3}, Null});
  return list;
}

std::string SetSuite::ThreeRowsText() const { return StateText(Variant(ThreeRows())); }

std::string SetSuite::RowText(Long id, const Variant& text) const {
  return "{" + entity().id_key + ": " + std::to_string(id) + ", " + entity().text_key + ": " +
         StateText(text) + "}";
}

void SetSuite::AnswerRows() {
  server.AnswerWith(entity().info_component, MethodOf(it().get_list),
                    [this](std::span<Argument>) { return Variant(ThreeRows()); });
}

void SetSuite::AnswerList(const Variant& answer) {
  server.Answer(entity().info_component, MethodOf(it().get_list), answer);
}

void SetSuite::AnswerDetail(const Variant& answer) {
  server.Answer(entity().info_component, MethodOf(it().get_detail), answer);
  server.Answer(entity().info_component, MethodOf(it().get_detail_by_text), answer);
}

void SetSuite::AnswerExistence(const Variant& answer) {
  server.Answer(entity().info_component, MethodOf(it().exists_by_id), answer);
}

Ref<EntityListBase> SetSuite::Fetched() {
  Ref<EntityListBase> set = it().make();
  AnswerRows();
  use().refresh(*set);
  server.TakeLog();
  return set;
}

void SetSuite::MoveOn(EntityListBase& set) {
  if (it().get_next == "no error") {
    use().get_next(set);
  } else {
    use().record_set(set)->MoveNext();
  }
}

std::string SetSuite::EntityState(const Ref<Object>& given) const {
  auto* made = dynamic_cast<Entity*>(given.get());
  if (made == nullptr || made->ClassName() != entity().class_name)
    return "no " + entity().class_name;
  return testing::EntityState(GetParam().entity_use, *made);
}

std::string SetSuite::State(EntityListBase& set) const {
  const Ref<Recordset> list = set.RecordSet();  // of the base, which fetches nothing
  std::string cursor;
  if (list && list->RecordCount() > 0) {
    cursor = list->Eof() ? " at the end" : " at " + StateText(list->FieldValue(0));
  }
  return StateText(Variant(list)) + cursor + " by " + use().fields(set);
}

std::string SetSuite::WalkedState(Object& element) const {
  if (it().walked_class.empty()) return EntityState(Ref<Object>(&element));
  const Ref<Properties> bag = element.Get("Properties").As<Properties>();
  return std::string(element.ClassName()) + " " + StateText(Variant(bag->Dictionary()));
}

std::string SetSuite::WalkedStateOf(Long id, const Variant& text) const {
  const std::string head =
      it().walked_class.empty() ? "id " + std::to_string(id) : it().walked_class;
  return head + " " + RowText(id, text) + "\n";
}

std::string SetSuite::IdsOfWalk(EntityListBase& set) const {
  std::string ids;
  use().walk(set, [&](Object& element) { ids += (ids.empty() ? "" : " ") + IdIn(element); });
  return ids;
}

std::string SetSuite::IdsOf(Enumerator& enumerator) const {
  std::string ids;
  Variant element;
  while (enumerator.Next(element)) {
    ids += (ids.empty() ? "" : " ") + IdIn(*element.As<Object>());
  }
  return ids;
}

std::string SetSuite::IdIn(Object& element) const {
  const Ref<Properties> bag = element.Get("Properties").As<Properties>();
  return CStr(bag->Dictionary()->Value(entity().id_key));
}

std::string SetSuite::GetList(Long options, const std::string& filter,
                              const std::string& sort) const {
  return "call " + Filled(it().get_list, {{"<options>", std::to_string(options)},
                                          {"<filter>", "\"" + filter + "\""},
                                          {"<sort>", "\"" + sort + "\""}});
}

std::string SetSuite::FetchLog(const std::string& answer, const std::string& call) const {
  return CreateInfo() + "\n" + (call.empty() ? GetList() : call) + " -> " + answer + "\n";
}

std::string SetSuite::Call(const std::string& call, const std::string& id_or_key) const {
  return "call " + Filled(call, {{"<id>", id_or_key}, {"<key>", id_or_key}});
}

std::vector<Event> SetSuite::ItemEvents(const std::string& call, Long id,
                                        const std::string& state) const {
  std::vector<Event> events = {{CreateInfo(), "", state},
                               {call, " -> " + RowText(id, "Stored"), state}};
  for (const Event& event : it().behind_get_detail) {
    events.push_back({Filled(event.line, {{"<id>", std::to_string(id)}}), event.answer, state});
  }
  return events;
}

// ---- The list and its fields ----

TEST_P(SetSuite, IsUnfetchedAtFirstWithEmptyFields) {
  const auto set = it().make();
  EXPECT_EQ(State(*set), "Nothing by 0 \"\" \"\"");
  EXPECT_EQ(server.TakeLog(), "");
  const ClassMember* default_member = set->Members()->default_member();
  EXPECT_EQ(default_member != nullptr && default_member->row.name == "Item", it().item_is_default);
}

TEST_P(SetSuite, RefreshPassesTheFieldsByReferenceAndKeepsWhatTheServerWritesBack) {
  const auto set = it().make();
  use().put_fields(*set, 4, "a filter", "an order");
  const bool sends_options = it().get_list.find("<options>") != std::string::npos;
  const Long options_back = sends_options ? 9 : 4;
  server.AnswerWith(entity().info_component, MethodOf(it().get_list),
                    [&](std::span<Argument> arguments) {
                      if (sends_options) arguments[1].Put(Variant(options_back));
                      const std::span<Argument> texts = arguments.subspan(sends_options ? 2 : 1);
                      texts[0].Put(Variant("filter back"));
                      texts[1].Put(Variant("sort back"));
                      return Variant(ThreeRows());
                    });
  use().refresh(*set);
  EXPECT_EQ(State(*set), ThreeRowsText() + " at 1 by " + std::to_string(options_back) +
                             " \"filter back\" \"sort back\"");
  use().refresh(*set);
  EXPECT_EQ(server.TakeLog(),
            FetchLog(ThreeRowsText(), GetList(4, "a filter", "an order")) +
                FetchLog(ThreeRowsText(), GetList(options_back, "filter back", "sort back")));
}

TEST_P(SetSuite, ChangedFieldsKeepTheOldRowsUntilRefresh) {
  const auto set = Fetched();
  AnswerList(Variant(NoRows()));
  use().put_fields(*set, 1, "f", "s");
  EXPECT_EQ(use().count(*set), 3);
  EXPECT_EQ(EntityState(use().get_current(*set)), "id 1 " + RowText(1, "First"));
  EXPECT_EQ(State(*set), ThreeRowsText() + " at 1 by 1 \"f\" \"s\"");
  EXPECT_EQ(server.TakeLog(), "");
  use().refresh(*set);
  EXPECT_EQ(use().count(*set), 0);
  const std::string empty = StateText(Variant(NoRows()));
  EXPECT_EQ(server.TakeLog(), FetchLog(empty, GetList(1, "f", "s")));
  EXPECT_EQ(State(*set), empty + " by 1 \"f\" \"s\"");
}

TEST_P(SetSuite, CountFetchesTheListOnce) {
  const auto set = it().make();
  EXPECT_EQ(use().count(*set), 3);
  EXPECT_EQ(use().count(*set), 3);
  EXPECT_EQ(server.TakeLog(), FetchLog(ThreeRowsText()));
}

TEST_P(SetSuite, EveryUseOfTheListFetchesItAndPassesAFailureAtEachEvent) {
  const std::string fetched = ThreeRowsText() + " at 1 by 0 \"\" \"\"";
  const std::string moved = ThreeRowsText() + " at 2 by 0 \"\" \"\"";
  const std::string none = "Nothing by 0 \"\" \"\"";
  const std::vector<Event> events = {{CreateInfo(), "", none},
                                     {GetList(), " -> " + ThreeRowsText(), none}};
  const auto expect = [&](const char* what, const std::string& behind,
                          const std::function<void(EntityListBase&)>& operate) {
    SCOPED_TRACE(what);
    ExpectEvents(
        server, [&] { return it().make(); }, operate, events, behind,
        [&](EntityListBase& set) { return State(set); });
  };
  expect("Refresh", fetched, use().refresh);
  expect("Count", fetched, [&](EntityListBase& set) { use().count(set); });
  expect("GetCurrent", fetched, [&](EntityListBase& set) { use().get_current(set); });
  if (it().get_next == "no error") {
    expect("GetNext", moved, [&](EntityListBase& set) { use().get_next(set); });
  }
  expect("NewEnum", fetched, [&](EntityListBase& set) { use().new_enum(set); });
  expect("a walk", fetched, [&](EntityListBase& set) { use().walk(set, [](Object&) {}); });
}

TEST_P(SetSuite, RefreshDropsTheListFirstSoThatAFailureLeavesNoneAndTheNextUseTriesAgain) {
  const std::string none = "Nothing by 0 \"\" \"\"";
  ExpectEvents(
      server,
      [&] {
        auto set = Fetched();
        AnswerList(Variant(NoRows()));
        return set;
      },
      use().refresh,
      {{CreateInfo(), "", none}, {GetList(), " -> " + StateText(Variant(NoRows())), none}},
      StateText(Variant(NoRows())) + " by 0 \"\" \"\"",
      [&](EntityListBase& set) { return State(set); });

  const auto set = Fetched();
  server.missing_components = {entity().info_component};
  EXPECT_EQ(ErrorOf([&] { use().refresh(*set); }), "error 429");
  EXPECT_EQ(State(*set), none);
  server.missing_components = {};
  server.TakeLog();
  EXPECT_EQ(use().count(*set), 3);
  EXPECT_EQ(server.TakeLog(), FetchLog(ThreeRowsText()));
}

TEST_P(SetSuite, AUseOfTheListWithinItsRefreshFetchesItTooAndTheOuterOneHasTheLastWord) {
  const auto set = Fetched();
  std::string seen;
  int depth = 0;
  server.AnswerWith(entity().info_component, MethodOf(it().get_list), [&](std::span<Argument>) {
    const bool outer = ++depth == 1;
    if (outer) {
      seen = State(*set);
      use().count(*set);
      seen += ", " + State(*set);
    }
    server.TakeLog();
    return Variant(outer ? ThreeRows() : NoRows());
  });
  use().refresh(*set);
  EXPECT_EQ(depth, 2);
  EXPECT_EQ(seen, "Nothing by 0 \"\" \"\", " + StateText(Variant(NoRows())) + " by 0 \"\" \"\"");
  EXPECT_EQ(State(*set), ThreeRowsText() + " at 1 by 0 \"\" \"\"");
}

TEST_P(SetSuite, AnAnswerThatIsNoRecordsetIsRefused) {
  const auto set = Fetched();
  for (const Variant& answer : {Variant(Row({})), Variant("text"), Variant()}) {
    AnswerList(answer);
    EXPECT_EQ(ErrorOf([&] { use().refresh(*set); }), "error 13") << StateText(answer);
    EXPECT_EQ(State(*set), "Nothing by 0 \"\" \"\"");
  }
  AnswerList(Nothing);
  use().refresh(*set);
  EXPECT_EQ(State(*set), "Nothing by 0 \"\" \"\"");
  EXPECT_EQ(ErrorOf([&] { use().count(*set); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { use().get_current(*set); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { use().new_enum(*set); }), "error 91");
}

TEST_P(SetSuite, RecordSetIsTheListAsItStandsAndFetchesNothingUnlessTheClassSays) {
  const auto set = it().make();
  // One that is asked for while there is none.
  const auto unfetched = [&] {
    const Ref<Recordset> list = use().record_set(*set);
    EXPECT_EQ(StateText(Variant(list)), it().record_set_fetches ? ThreeRowsText() : "Nothing");
    EXPECT_EQ(list, set->RecordSet());
    EXPECT_EQ(server.TakeLog(), it().record_set_fetches ? FetchLog(ThreeRowsText()) : "");
    set->RecordSet(Nothing);
  };
  unfetched();
  const auto list = ThreeRows();
  AnswerList(Variant(list));
  use().refresh(*set);
  EXPECT_EQ(use().record_set(*set), list);
  server.TakeLog();
  const auto other = NoRows();
  use().put_record_set(*set, other);
  EXPECT_EQ(use().record_set(*set), it().takes_record_set ? other : list);
  EXPECT_EQ(use().count(*set), it().takes_record_set ? 0 : 3);
  use().put_record_set(*set, Nothing);
  EXPECT_EQ(server.TakeLog(), "");
  AnswerRows();
  if (it().takes_record_set) unfetched();
  else EXPECT_EQ(use().record_set(*set), list);
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(use().count(*set), 3);
  EXPECT_EQ(server.TakeLog(), it().takes_record_set ? FetchLog(ThreeRowsText()) : "");
}

// ---- The cursor ----

TEST_P(SetSuite, GetCurrentMakesTheEntityOfTheRowAndLeavesTheCursor) {
  const auto set = Fetched();
  const auto first = use().get_current(*set);
  EXPECT_EQ(EntityState(first), "id 1 " + RowText(1, "First"));
  const auto again = use().get_current(*set);
  EXPECT_EQ(EntityState(again), "id 1 " + RowText(1, "First"));
  EXPECT_NE(first, again);
  EXPECT_EQ(State(*set), ThreeRowsText() + " at 1 by 0 \"\" \"\"");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(SetSuite, GetNextMovesTheCursorUnlessItFailsAndBehindTheLastRowBothRaiseFive) {
  const auto set = Fetched();
  const auto expect_next = [&](Long id, const Variant& text) {
    Ref<Object> next;
    EXPECT_EQ(ErrorOf([&] { next = use().get_next(*set); }), it().get_next);
    if (next) {
      EXPECT_EQ(EntityState(next), "id " + std::to_string(id) + " " + RowText(id, text));
    } else {
      EXPECT_EQ(State(*set), ThreeRowsText() + " at " + std::to_string(id) + " by 0 \"\" \"\"");
      MoveOn(*set);
    }
  };
  expect_next(1, "First");
  EXPECT_EQ(EntityState(use().get_current(*set)), "id 2 " + RowText(2, "Second"));
  expect_next(2, "Second");
  expect_next(3, Null);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(ErrorOf([&] { use().get_next(*set); }), "error 5");
    EXPECT_EQ(ErrorOf([&] { use().get_current(*set); }), "error 5");
  }
  EXPECT_EQ(State(*set), ThreeRowsText() + " at the end by 0 \"\" \"\"");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(SetSuite, AnEmptyListHasNoCurrentRowAndNothingToWalk) {
  const auto set = it().make();
  AnswerList(Variant(NoRows()));
  EXPECT_EQ(ErrorOf([&] { use().get_current(*set); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { use().get_next(*set); }), "error 5");
  EXPECT_EQ(IdsOfWalk(*set), "");
  EXPECT_EQ(server.TakeLog(), FetchLog(StateText(Variant(NoRows()))));
}

TEST_P(SetSuite, AnEditOfAnEntityStaysOutOfTheList) {
  const auto set = Fetched();
  const auto edit = [&](Object& given) {
    given.Get("Properties").As<Properties>()->Item(entity().text_key)->Value("edited");
  };
  edit(*use().get_current(*set));
  use().walk(*set, edit);
  EXPECT_EQ(State(*set), ThreeRowsText() + " at 1 by 0 \"\" \"\"");
}

// ---- The walk ----

TEST_P(SetSuite, AWalkMakesAnEntityOfEachRowAndFetchesTheListOnce) {
  const auto set = it().make();
  const std::string all =
      WalkedStateOf(1, "First") + WalkedStateOf(2, "Second") + WalkedStateOf(3, Null);
  for (int i = 0; i < 2; ++i) {
    std::string seen;
    use().walk(*set, [&](Object& element) { seen += WalkedState(element) + "\n"; });
    EXPECT_EQ(seen, all);
  }
  EXPECT_EQ(server.TakeLog(), FetchLog(ThreeRowsText()));
}

TEST_P(SetSuite, AWalkBeginsAtTheFirstRowAndLeavesTheCursorWhereItStands) {
  const auto set = Fetched();
  for (const char* cursor : {"1", "2", "3", "the end"}) {
    EXPECT_EQ(IdsOfWalk(*set), "1 2 3");
    const auto enumerator = use().new_enum(*set);
    EXPECT_TRUE(enumerator->Skip(2));
    EXPECT_EQ(State(*set), ThreeRowsText() + " at " + cursor + " by 0 \"\" \"\"");
    if (cursor != std::string("the end")) MoveOn(*set);
    EXPECT_EQ(IdsOf(*enumerator), "3");
  }
}

TEST_P(SetSuite, WalksWithinAWalkDoNotDisturbEachOther) {
  const auto set = Fetched();
  std::string met;
  use().walk(*set, [&](Object& outer) { met += IdIn(outer) + ": " + IdsOfWalk(*set) + "; "; });
  EXPECT_EQ(met, "1: 1 2 3; 2: 1 2 3; 3: 1 2 3; ");
}

TEST_P(SetSuite, AnEnumeratorSkipsEndsAndBeginsAgain) {
  const auto set = Fetched();
  const auto enumerator = use().new_enum(*set);
  Variant element = "untouched";
  EXPECT_TRUE(enumerator->Skip(1));
  EXPECT_EQ(IdsOf(*enumerator), "2 3");
  EXPECT_FALSE(enumerator->Next(element));
  EXPECT_FALSE(enumerator->Skip(1));
  EXPECT_EQ(StateText(element), "\"untouched\"");
  enumerator->Reset();
  EXPECT_EQ(IdsOf(*enumerator), "1 2 3");
}

TEST_P(SetSuite, AWalkGoesOnOverTheListItBeganWithThoughTheSetIsRefreshedOrGone) {
  auto set = Fetched();
  const auto enumerator = use().new_enum(*set);
  EXPECT_TRUE(enumerator->Skip(1));
  AnswerList(Variant(NoRows()));
  use().refresh(*set);
  EXPECT_EQ(IdsOfWalk(*set), "");
  set = nullptr;
  EXPECT_EQ(IdsOf(*enumerator), "2 3");
}

// ---- Item ----

TEST_P(SetSuite, ItemOfANumberReadsTheRowByItsIdByValueAndNeedsNoList) {
  for (const auto& [key, id] : NumericKeys()) {
    SCOPED_TRACE(StateText(key));
    const auto set = it().make();
    Ref<Object> item;
    ExpectEvents(
        server,
        [&] {
          use().put_fields(*set, 4, "f", "s");
          return set;
        },
        [&, &key = key](EntityListBase& of) { item = use().item(of, key); },
        ItemEvents(Filled(Call(it().get_detail, std::to_string(id)), {{"<filter>", "\"f\""}}), 5,
                   "Nothing by 4 \"f\" \"s\""),
        "Nothing by 4 \"f\" \"s\"", [&](EntityListBase& of) { return State(of); });
    ASSERT_NE(item, nullptr);
    std::string row = RowText(5, "Stored");
    row.insert(row.size() - 1, it().item_adds);
    EXPECT_EQ(EntityState(item), "id 5 " + row);
  }
}

TEST_P(SetSuite, ItemOfATextReadsTheRowByItsTextAndSearchesNoList) {
  if (!FindsByText()) {
    const auto set = it().make();
    EXPECT_EQ(ErrorOf([&] { use().item(*set, Variant("First")); }), "error 5");
    EXPECT_EQ(server.TakeLog(), "");
    return;
  }
  const std::string held = ThreeRowsText() + " at 1 by 0 \"\" \"\"";
  for (const std::string key : {"First", "12", " 1a", ""}) {
    SCOPED_TRACE(key);
    Ref<Object> item;
    ExpectEvents(
        server, [&] { return Fetched(); },
        [&](EntityListBase& set) { item = use().item(set, Variant(key)); },
        ItemEvents(Call(it().get_detail_by_text, "\"" + key + "\""), 5, held), held,
        [&](EntityListBase& set) { return State(set); });
    std::string row = RowText(5, "Stored");
    row.insert(row.size() - 1, it().item_adds);
    EXPECT_EQ(EntityState(item), "id 5 " + row);
  }
}

TEST_P(SetSuite, ItemOfAnyOtherKeyIsATextOrRaisesFiveAsTheClassSays) {
  const auto set = it().make();
  for (const Variant& key : OtherKeys()) {
    SCOPED_TRACE(StateText(key));
    const std::string outcome = ErrorOf([&] { use().item(*set, key); });
    if (it().item_key == OtherKey::kAny) {
      EXPECT_EQ(outcome, "no error");
      EXPECT_EQ(server.TakeLog(),
                LogOf(ItemEvents(Call(it().get_detail_by_text, StateText(key)), 5, "")));
    } else {
      EXPECT_EQ(outcome, "error 5");
      EXPECT_EQ(server.TakeLog(), it().item_makes_component_first ? CreateInfo() + "\n" : "");
    }
  }
  EXPECT_EQ(State(*set), "Nothing by 0 \"\" \"\"");
}

TEST_P(SetSuite, AKeyThatIsLeftOutIsOneOfAnotherKindOrMissedByLateBoundCallers) {
  const auto set = it().make();
  const auto refused = [&](const char* member) {
    const bool optional = set->Members()->Find(member)->parameters.at(0).optional;
    return use().name == "by_name" && !optional ? "error 449" : "error 5";
  };
  const std::string item = ErrorOf([&] { use().item(*set, Missing); });
  EXPECT_EQ(item, it().item_key == OtherKey::kAny ? "no error" : refused("Item"));
  EXPECT_EQ(ErrorOf([&] { use().remove(*set, Missing); }), refused("Remove"));
}

TEST_P(SetSuite, ItemOfANumberTooLargeRaisesOverflow) {
  const auto set = it().make();
  EXPECT_EQ(ErrorOf([&] { use().item(*set, Variant(3e9)); }), "error 6");
  EXPECT_EQ(server.TakeLog(), CreateInfo() + "\n");
}

TEST_P(SetSuite, ItemThatTheServerDoesNotKnowIsAnEmptyOneUnlessTheClassNeedsTheRow) {
  AnswerDetail(Nothing);
  for (const Variant& key : {Variant(Long{99}), Variant("unknown")}) {
    if (key.IsString() && !FindsByText()) continue;
    const auto set = it().make();
    std::string outcome;
    const std::string error = ErrorOf([&] { outcome = EntityState(use().item(*set, key)); });
    EXPECT_EQ(error == "no error" ? outcome : error, it().item_of_nothing);
  }
}

TEST_P(SetSuite, ItemRefusesAnAnswerThatIsNoDictionary) {
  const auto set = it().make();
  for (const Variant& answer : {Variant("text"), Variant(Long{1}), Variant(NoRows())}) {
    AnswerDetail(answer);
    EXPECT_EQ(ErrorOf([&] { use().item(*set, Variant(Long{5})); }), "error 13");
    if (FindsByText()) EXPECT_EQ(ErrorOf([&] { use().item(*set, Variant("x")); }), "error 13");
  }
}

TEST_P(SetSuite, ItemLeavesTheCallersKeyWhateverTheServerWrites) {
  const auto set = it().make();
  for (const std::string& call : {it().get_detail, it().get_detail_by_text}) {
    server.AnswerWith(entity().info_component, MethodOf(call), [&](std::span<Argument> arguments) {
      arguments[1].Put(Variant(Long{99}));
      return Variant(Row({{entity().id_key, Long{5}}}));
    });
  }
  Variant id(Long{5});
  Variant text("First");
  set->Get("Item", ByRef(id));
  if (FindsByText()) set->Get("Item", ByRef(text));
  EXPECT_EQ(StateText(id) + " " + StateText(text), "5 \"First\"");
}

// ---- ExistenceCheck ----

TEST_P(SetSuite, ExistenceCheckAsksByTheIdOrByTheTextAndByTheIdWhenBothAreGiven) {
  const std::string state = "Nothing by 0 \"\" \"\"";
  const auto expect = [&](const Variant& id, const Variant& text, const std::string& call) {
    SCOPED_TRACE(call);
    Long found = 0;
    ExpectEvents(
        server, [&] { return it().make(); },
        [&](EntityListBase& set) { found = use().existence_check(set, id, text); },
        {{CreateInfo(), "", state}, {call, " -> 7", state}}, state,
        [&](EntityListBase& set) { return State(set); });
    EXPECT_EQ(found, 7);
  };
  expect(Long{5}, Missing, Call(it().exists_by_id, "5"));
  expect("5", Missing, Call(it().exists_by_id, "\"5\""));
  expect(Variant(), Missing, Call(it().exists_by_id, "Empty"));
  expect(Long{5}, "First", Call(it().exists_by_id, "5"));
  if (it().exists_by_text.empty()) return;  // ids alone can be asked for
  expect(Missing, "First", Call(it().exists_by_text, "\"First\""));
  expect(Missing, Long{12}, Call(it().exists_by_text, "12"));
}

TEST_P(SetSuite, ExistenceCheckWithoutArgumentsMakesTheComponentAndEndsAsTheClassSays) {
  const auto set = it().make();
  Long found = -1;
  const std::string error = ErrorOf([&] { found = use().existence_check(*set, Missing, Missing); });
  EXPECT_EQ(error == "no error" ? std::to_string(found) : error, it().exists_of_nothing);
  const std::string& call = it().exists_by_nothing;
  EXPECT_EQ(server.TakeLog(),
            CreateInfo() + "\n" + (call.empty() ? "" : "call " + call + " -> 7\n"));
}

TEST_P(SetSuite, TheAnswerOfExistenceCheckIsConvertedToLong) {
  const auto set = it().make();
  const auto outcome = [&](bool by_id, const Variant& answer) {
    AnswerExistence(answer);
    Long found = -1;
    const std::string error = ErrorOf([&] {
      found = use().existence_check(*set, by_id ? Variant(Long{5}) : Missing,
                                    by_id ? Missing : Variant("First"));
    });
    return error == "no error" ? std::to_string(found) : error;
  };
  for (const bool by_id : {true, false}) {
    if (!by_id && it().exists_by_text.empty()) continue;
    EXPECT_EQ(outcome(by_id, "7"), "7");
    EXPECT_EQ(outcome(by_id, 6.5), "6");
    EXPECT_EQ(outcome(by_id, Variant()), "0");
    EXPECT_EQ(outcome(by_id, "none"), "error 13");
    EXPECT_EQ(outcome(by_id, Null), "error 13");
  }
}

// ---- Remove ----

TEST_P(SetSuite, RemoveOfANumberDeletesByTheIdAndKeepsTheRowInTheList) {
  const std::string held = ThreeRowsText() + " at 1 by 0 \"\" \"\"";
  for (const auto& [key, id] : NumericKeys()) {
    SCOPED_TRACE(StateText(key));
    ExpectEvents(
        server, [&] { return Fetched(); },
        [&, &key = key](EntityListBase& set) { use().remove(set, key); },
        {{CreateUpdate(), "", held}, {Call(it().remove, std::to_string(id)), "", held}}, held,
        [&](EntityListBase& set) { return State(set); });
  }
}

TEST_P(SetSuite, RemoveOfATextLooksItUpFirstOrRaisesFiveAsTheClassSays) {
  const std::string held = ThreeRowsText() + " at 1 by 0 \"\" \"\"";
  if (it().remove_key == OtherKey::kNone) {
    const auto set = Fetched();
    EXPECT_EQ(ErrorOf([&] { use().remove(*set, Variant("First")); }), "error 5");
    EXPECT_EQ(server.TakeLog(), "");
    EXPECT_EQ(State(*set), held);
    return;
  }
  ExpectEvents(
      server, [&] { return Fetched(); },
      [&](EntityListBase& set) { use().remove(set, Variant("First")); },
      {{CreateInfo(), "", held},
       {Call(it().exists_by_text, "\"First\""), " -> 7", held},
       {CreateUpdate(), "", held},
       {Call(it().remove, "7"), "", held}},
      held, [&](EntityListBase& set) { return State(set); });
  AnswerExistence(Long{0});
  const auto set = Fetched();
  EXPECT_EQ(ErrorOf([&] { use().remove(*set, Variant("nobody")); }), "error 5");
  EXPECT_EQ(server.TakeLog(),
            CreateInfo() + "\n" + Call(it().exists_by_text, "\"nobody\"") + " -> 0\n");
}

TEST_P(SetSuite, RemoveOfAnyOtherKeyIsATextOrRaisesFiveAsTheClassSays) {
  const auto set = it().make();
  for (const Variant& key : OtherKeys()) {
    SCOPED_TRACE(StateText(key));
    const std::string outcome = ErrorOf([&] { use().remove(*set, key); });
    if (it().remove_key == OtherKey::kAny) {
      EXPECT_EQ(outcome, "no error");
      EXPECT_EQ(server.TakeLog(), CreateInfo() + "\n" + Call(it().exists_by_text, StateText(key)) +
                                      " -> 7\n" + CreateUpdate() + "\n" + Call(it().remove, "7") +
                                      "\n");
    } else {
      EXPECT_EQ(outcome, "error 5");
      EXPECT_EQ(server.TakeLog(), "");
    }
  }
}

TEST_P(SetSuite, RemoveOfTheIdZeroRaisesFiveWithoutACall) {
  const auto set = it().make();
  for (const Variant& key : {Variant(Long{0}), Variant(0.4)}) {
    EXPECT_EQ(ErrorOf([&] { use().remove(*set, key); }), "error 5");
  }
  EXPECT_EQ(ErrorOf([&] { use().remove(*set, Variant(3e9)); }), "error 6");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(SetSuite, RemoveStampsEmptyTextsWhenTheMachineGivesNone) {
  server.platform().fail_computer_name = true;
  server.platform().fail_address_text = true;
  const auto set = it().make();
  use().remove(*set, Variant(Long{5}));
  EXPECT_EQ(server.TakeLog(),
            CreateUpdate() + "\n" +
                Filled(Call(it().remove, "5"), {{"\"HOST\"", "\"\""}, {"\"10.0.0.1\"", "\"\""}}) +
                "\n");
}

// ---- CreateNew, the session, the transaction context ----

TEST_P(SetSuite, CreateNewMakesAnUnsavedEntityWithoutACall) {
  const auto set = Fetched();
  Ref<Object> created;
  const std::string error = ErrorOf([&] { created = use().create_new(*set); });
  if (!it().created_error.empty()) {
    EXPECT_EQ(error, it().created_error);
  } else {
    EXPECT_EQ(error, "no error");
    EXPECT_EQ(EntityState(created), it().created_row);
    EXPECT_NE(created, use().create_new(*set));
  }
  EXPECT_EQ(State(*set), ThreeRowsText() + " at 1 by 0 \"\" \"\"");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(SetSuite, WhatCreateNewFillsInIsSavedAtOnce) {
  const auto set = it().make();
  const auto& parameters = set->Members()->Find("CreateNew")->parameters;
  std::vector<Argument> values(parameters.size(), Argument(Variant("1")));
  Ref<Object> created;
  const std::string error =
      ErrorOf([&] { created = set->Invoke("CreateNew", CallKind::kMethod, values).As<Object>(); });
  EXPECT_EQ(error, it().created_error.empty() ? "no error" : it().created_error);
  if (!created) return;
  created->Call("SaveChanges");
  EXPECT_EQ(server.TakeLog().find("call Create(") != std::string::npos, !parameters.empty());
}

TEST_P(SetSuite, TheConnectionTextIsAskedForBehindTheComponentAndAfreshForEachCall) {
  const auto set = it().make();
  const std::function<void()> operations[] = {
      [&] { use().refresh(*set); },
      [&] { use().item(*set, Variant(Long{5})); },
      [&] {
        if (FindsByText()) use().item(*set, Variant("First"));
      },
      [&] { use().existence_check(*set, Long{5}, Missing); },
      [&] {
        if (!it().exists_by_text.empty()) use().existence_check(*set, Missing, "First");
      },
      [&] { use().remove(*set, Variant(Long{5})); },
  };
  for (const auto& operation : operations) {
    server.LogSession(false);
    operation();
    const std::string log = server.TakeLog();
    server.LogSession();
    operation();
    EXPECT_EQ(server.TakeLog(), WithSession(log));
  }
}

TEST_P(SetSuite, WithoutASessionTheServerIsHandedAnEmptyConnectionText) {
  server.outer_login = Variant(Long{2});
  const auto set = it().make();
  use().refresh(*set);
  EXPECT_EQ(server.TakeLog(),
            FetchLog(ThreeRowsText(), Filled(GetList(), {{"\"props\"", "\"\""}})));
}

TEST_P(SetSuite, TheTransactionContextIsHandedToEveryEntityReplacedAndReleased) {
  const auto context = Make<Opaque>();
  const auto other = Make<Opaque>();
  auto set = Fetched();
  set->SetTransactionContext(context);
  EXPECT_EQ(context->holders(), 2);  // this variable and the set
  {
    Ref<Object> created;
    const std::string error = ErrorOf([&] { created = use().create_new(*set); });
    // One that makes nothing has one holder less, which its place takes here.
    const Ref<Object> in_its_place = error == "no error" ? nullptr : Ref<Object>(context);
    EXPECT_EQ(context->holders(), 3);
    const auto current = use().get_current(*set);
    EXPECT_EQ(context->holders(), 4);
    const auto next = it().get_next == "no error" ? use().get_next(*set) : use().get_current(*set);
    EXPECT_EQ(context->holders(), 5);
    const auto by_id = use().item(*set, Variant(Long{5}));
    EXPECT_EQ(context->holders(), 6);
    const auto by_text = use().item(*set, FindsByText() ? Variant("First") : Variant(Long{5}));
    EXPECT_EQ(context->holders(), 7);
    const auto enumerator = use().new_enum(*set);
    EXPECT_EQ(context->holders(), 8);  // the walker
    Variant element;
    ASSERT_TRUE(enumerator->Next(element));
    EXPECT_EQ(context->holders(), 9);
    set->SetTransactionContext(other);
    EXPECT_EQ(context->holders(), 8) << "what was made before keeps the former one";
    EXPECT_EQ(other->holders(), 2);
  }
  EXPECT_EQ(context->holders(), 1);
  use().refresh(*set);
  use().remove(*set, Variant(Long{5}));
  EXPECT_EQ(other->holders(), 2);
  set = nullptr;
  EXPECT_EQ(other->holders(), 1);
}

}  // namespace qdclgl::testing

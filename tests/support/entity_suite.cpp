#include "tests/support/entity_suite.h"

#include <ostream>

#include "qdclgl/frame/containers/vector.h"
#include "tests/support/family.h"
#include "tests/support/view_state.h"

namespace qdclgl::testing {

EntityUse EntityUseByName(const EntityCase& declared) {
  return {
      .name = "by_name",
      .construct =
          [](Entity& entity, const Ref<Dictionary>& row, const Ref<Object>& xa) {
            entity.Call("Construct", Named("xa", xa), Named("dict", row));
          },
      .cancel_changes = [](Entity& entity) { entity.Call("CancelChanges"); },
      .refresh = [](Entity& entity) { entity.Call("Refresh"); },
      .save_changes = [](Entity& entity) { entity.Call("SaveChanges"); },
      .id = [id = declared.id_member](Entity& entity) { return entity.Get(id).As<Long>(); },
      .edit = [member = declared.text_member](Entity& entity,
                                              const String& text) { entity.Let(member, text); },
  };
}

void PrintTo(const EntityParam& param, std::ostream* out) {
  *out << param.entity.class_name << " " << param.use.name;
}

std::string EntityState(const EntityUse& use, Entity& entity) {
  return "id " + std::to_string(use.id(entity)) + " " +
         testing::State(static_cast<const RowView&>(entity));
}

namespace {

constexpr const char* kStamps = ", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"";

// `row` with keys added at its end that are not there yet.
std::string With(const std::string& row, const std::string& added) {
  return row.ends_with(added) || row.find(added + ",") != std::string::npos ? row : row + added;
}

Ref<Dictionary> WorkingRow(const Entity& entity) { return entity.Properties()->Dictionary(); }

// A row with a list of one row, and the number in it.
constexpr std::string_view kNested = "_Own";
Variant NestedList(Long number) {
  auto list = Make<Vector>();
  list->Append(Variant(Row({{"FItemID", number}})));
  return Variant(list);
}
void SetNested(Dictionary& row, Long number) {
  if (!row.Contains(kNested)) return;  // the state will tell of it
  row.Value(kNested).As<Vector>()->Item(1).As<Dictionary>()->Value("FItemID", number);
}
std::string NestedText(Long number) {
  return ", " + std::string(kNested) + ": [{FItemID: " + std::to_string(number) + "}]";
}

}  // namespace

EntitySuite::EntitySuite() {
  AnswerDetailWith([this](std::span<Argument> arguments) {
    return Variant(RowWith(arguments[1].As<Long>(), "Stored"));
  });
  server.Answer(it().update_component, MethodOf(it().create), Long{8});
}

Ref<Dictionary> EntitySuite::RowWith(const Variant& id, const Variant& text) const {
  return Row({{it().id_key, id}, {it().text_key, text}});
}

std::string EntitySuite::RowText(const Variant& id, const Variant& text) const {
  return it().id_key + ": " + StateText(id) + ", " + it().text_key + ": " + StateText(text);
}

std::string EntitySuite::TextAlone(const std::string& text) const {
  return it().text_key + ": \"" + text + "\"";
}

Ref<Entity> EntitySuite::EntityOf(const Ref<Dictionary>& row) const {
  Ref<Entity> entity = it().make();
  use().construct(*entity, row, Nothing);
  return entity;
}

Ref<Entity> EntitySuite::Edited(const Ref<Dictionary>& row) const {
  Ref<Entity> entity = EntityOf(row);
  use().edit(*entity, "New");
  return entity;
}

std::string EntitySuite::WholeState(Entity& entity) const {
  const std::string state = State(entity);
  use().cancel_changes(entity);
  return state + " from " + State(entity);
}

std::string EntitySuite::GetDetail(Long id) const {
  return "call " + Filled(it().get_detail, {{"<id>", std::to_string(id)}});
}

void EntitySuite::AnswerDetail(const Variant& answer) {
  AnswerDetailWith([answer](std::span<Argument>) { return answer; });
}

void EntitySuite::AnswerDetailWith(RecordingServer::Handler handler) {
  server.AnswerWith(it().info_component, MethodOf(it().get_detail), std::move(handler));
}

std::string EntitySuite::Stamped(const std::string& row) const {
  return it().stamps ? With(row, kStamps) : row;
}

std::string EntitySuite::StampedEarly(const std::string& row) const {
  return it().stamps_first || it().stamps_before_component ? Stamped(row) : row;
}

std::string EntitySuite::Sent(const std::string& row) const {
  return With(Stamped(row), it().save_adds);
}

EntitySuite::Save EntitySuite::SaveOf(Long id, const std::string& row,
                                      const std::string& baseline) const {
  const auto state = [](Long at, const std::string& text) {
    return "id " + std::to_string(at) + " {" + text + "}";
  };
  const auto edited = [&](Long at, const std::string& text) {
    return state(at, text) + " modified flagged from " + state(at, baseline);
  };
  const auto clean = [&](Long at, const std::string& text) {
    return state(at, text) + " from " + state(at, text);
  };
  const std::string sent = Sent(row);
  const auto write = [&](const std::string& call) {
    return "call " + Filled(call, {{"<id>", std::to_string(id)}, {"<row>", "{" + sent + "}"}});
  };

  Save save;
  save.events.push_back({CreateUpdate(), "", edited(id, StampedEarly(row))});
  const Long saved = id != 0 ? id : 8;
  if (id == 0) {
    save.events.push_back({write(it().create), " -> 8", edited(0, sent)});
  } else {
    for (const std::string& line : it().before_update) {
      const std::string filled = Filled(line, {{"<id>", std::to_string(id)}});
      save.events.push_back({filled, "", edited(id, sent)});
    }
    save.events.push_back({write(it().update), "", edited(id, sent)});
    if (!it().reads_back_update) {
      // What was sent becomes the row, and the id is the one in it.
      const bool knows_id = sent.starts_with(it().id_key);
      save.state_behind = clean(knows_id ? id : 0, sent);
      return save;
    }
  }
  const std::string stored = RowText(saved, "Stored");
  save.events.push_back({CreateInfo(), "", edited(saved, sent)});
  save.events.push_back({GetDetail(saved), " -> {" + stored + "}", edited(saved, sent)});
  save.state_behind = clean(saved, stored);
  return save;
}

void EntitySuite::ExpectSave(const std::function<Ref<Entity>()>& make, const Save& save) {
  ExpectEvents(server, make, use().save_changes, save.events, save.state_behind,
               [&](Entity& entity) { return WholeState(entity); });
}

// ---- Construct ----

TEST_P(EntitySuite, ConstructTakesTheIdAndACopyOfTheRowAndIsUnmodified) {
  const auto row = RowWith("17", "Old");
  row->Put(kNested, NestedList(1));
  const std::string as_it_came = RowText("17", "Old") + NestedText(1);
  const auto entity = EntityOf(row);
  EXPECT_EQ(State(*entity), "id 17 {" + as_it_came + "}");
  use().edit(*entity, "New");
  SetNested(*WorkingRow(*entity), 2);
  EXPECT_EQ(State(*entity),
            "id 17 {" + RowText("17", "New") + NestedText(2) + "} modified flagged");
  EXPECT_EQ(StateText(Variant(row)), "{" + as_it_came + "}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(EntitySuite, TheRowItselfOrACopyOfItIsWhatCancelChangesGoesBackToAsTheClassSays) {
  const auto row = RowWith(Long{5}, "Old");
  row->Put(kNested, NestedList(1));
  const auto entity = EntityOf(row);
  row->Value(it().text_key, "Behind");
  SetNested(*row, 2);
  const std::string own = RowText(Long{5}, "Old") + NestedText(1);
  const std::string shared = RowText(Long{5}, "Behind") + NestedText(2);
  EXPECT_EQ(WholeState(*entity),
            "id 5 {" + own + "} from id 5 {" + (it().copies_baseline ? own : shared) + "}");
}

TEST_P(EntitySuite, ConstructOfNothingKeepsTheIdAndEmptiesTheRow) {
  EXPECT_EQ(WholeState(*EntityOf(Nothing)), "id 0 {} from id 0 {}");
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  use().construct(*entity, Nothing, Nothing);
  EXPECT_EQ(WholeState(*entity), "id 5 {} from id 5 {}");
}

TEST_P(EntitySuite, ConstructForgetsEditsAndTheFormerRow) {
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  use().construct(*entity, RowWith(Long{6}, "Other"), Nothing);
  const std::string state = "id 6 {" + RowText(Long{6}, "Other") + "}";
  EXPECT_EQ(WholeState(*entity), state + " from " + state);
}

TEST_P(EntitySuite, ConstructLeavesABagTakenBeforeOnTheOldRow) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  const auto bag = entity->Properties();
  use().construct(*entity, RowWith(Long{6}, "Other"), Nothing);
  bag->Item(it().text_key)->Value("behind");
  EXPECT_EQ(State(*entity), "id 6 {" + RowText(Long{6}, "Other") + "}");
  EXPECT_NE(entity->Properties(), bag);
}

TEST_P(EntitySuite, ConstructOfARowWithoutTheIdGivesZeroOrLeavesItAsTheClassSays) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  use().construct(*entity, Row({{it().text_key, "Other"}}), Nothing);
  const std::string id = it().keeps_id_without_key ? "id 5" : "id 0";
  EXPECT_EQ(State(*entity), id + " {" + TextAlone("Other") + "}");
  use().construct(*entity, RowWith(Long{0}, "Zero"), Nothing);
  EXPECT_EQ(State(*entity), "id 0 {" + RowText(Long{0}, "Zero") + "}");
}

TEST_P(EntitySuite, ConstructOfAnIdThatIsNoNumberRaisesTypeMismatchBehindTakingTheRow) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  EXPECT_EQ(ErrorOf([&] { use().construct(*entity, RowWith("seven", "Other"), Nothing); }),
            "error 13");
  EXPECT_EQ(State(*entity), "id 5 {" + RowText("seven", "Other") + "}");
}

TEST_P(EntitySuite, ARowThatCannotBeCopiedLeavesTheObjectAsItWas) {
  const auto uncopied = RowWith(Long{6}, "Other");
  uncopied->Put("Held", Variant(Make<Opaque>()));
  const std::string error = "error 438 (Opaque): No member Clone.";
  const auto xa = Make<Opaque>();

  const auto entity = Edited(RowWith(Long{5}, "Old"));
  const Ref<Properties> bag = entity->Properties();
  const auto again = Edited(RowWith(Long{5}, "Old"));
  EXPECT_EQ(ErrorOf([&] { use().construct(*again, uncopied, xa); }), error);
  EXPECT_EQ(WholeState(*again), "id 5 {" + RowText(Long{5}, "New") +
                                    "} modified flagged from id 5 {" + RowText(Long{5}, "Old") +
                                    "}");
  EXPECT_EQ(xa->holders(), 1) << "the context stays too";

  AnswerDetail(Variant(uncopied));
  EXPECT_EQ(ErrorOf([&] { use().refresh(*entity); }), error);
  EXPECT_EQ(entity->Properties(), bag);
  EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "New") + "} modified flagged");
  use().cancel_changes(*entity);
  EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "Old") + "}");

  const auto empty = it().make();
  EXPECT_EQ(ErrorOf([&] { use().construct(*empty, uncopied, xa); }), error);
  EXPECT_EQ(ErrorOf([&] { use().edit(*empty, "New"); }), "error 91");
}

TEST_P(EntitySuite, ABaselineThatCannotBeCopiedAnyMoreLeavesTheEdits) {
  const auto row = RowWith(Long{5}, "Old");
  const auto entity = Edited(row);
  const Ref<Dictionary> baseline =
      it().copies_baseline ? entity->Get("DictOrig").As<Dictionary>() : row;
  baseline->Put("Held", Variant(Make<Opaque>()));
  EXPECT_EQ(ErrorOf([&] { use().cancel_changes(*entity); }),
            "error 438 (Opaque): No member Clone.");
  EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "New") + "} modified flagged");
  baseline->Erase("Held");
  use().cancel_changes(*entity);
  EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "Old") + "}");
}

TEST_P(EntitySuite, OneThatWasNeverConstructedRaisesObjectNotSetAndHasNothingToRefresh) {
  const auto entity = it().make();
  EXPECT_EQ(ErrorOf([&] { use().edit(*entity, "New"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { use().save_changes(*entity); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { use().cancel_changes(*entity); }), "error 91");
  EXPECT_EQ(entity->Properties(), nullptr);
  use().refresh(*entity);
  EXPECT_EQ(use().id(*entity), 0);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(EntitySuite, TheBagIsReadByNameAndCannotBePut) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  EXPECT_EQ(entity->Get("Properties").As<Properties>(), entity->Properties());
  const std::string refusal =
      "error 438 (" + it().class_name + "): The member Properties can't be used this way.";
  EXPECT_EQ(ErrorOf([&] { entity->Let("Properties", Long{1}); }), refusal);
  EXPECT_EQ(ErrorOf([&] { entity->Set("Properties", Variant(Row({}))); }), refusal);
  EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "Old") + "}");
}

// ---- Refresh ----

TEST_P(EntitySuite, RefreshWithoutAnIdDoesNothing) {
  const auto entity = Edited(Nothing);
  use().refresh(*entity);
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(WholeState(*entity), "id 0 {" + TextAlone("New") + "} modified flagged from id 0 {}");
}

TEST_P(EntitySuite, RefreshReadsTheRowByItsIdAndAFailureLeavesTheEditsAndTheRowTheyCameFrom) {
  const std::string edited = "id 5 {" + RowText(Long{5}, "New") + "} modified flagged from id 5 {" +
                             RowText(Long{5}, "Old") + "}";
  const std::string stored = "{" + RowText(Long{5}, "Stored") + "}";
  ExpectEvents(
      server, [&] { return Edited(RowWith(Long{5}, "Old")); }, use().refresh,
      {{CreateInfo(), "", edited}, {GetDetail(5), " -> " + stored, edited}},
      "id 5 " + stored + " from id 5 " + stored,
      [&](Entity& entity) { return WholeState(entity); });
}

TEST_P(EntitySuite, RefreshTakesACopyOfTheAnswerToWorkOnAndTheAnswerOrAnotherCopyToGoBackTo) {
  const auto answer = RowWith(Long{5}, "Stored");
  answer->Put(kNested, NestedList(1));
  AnswerDetail(Variant(answer));
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  use().refresh(*entity);
  SetNested(*answer, 2);
  const std::string row = RowText(Long{5}, "Stored");
  EXPECT_EQ(WholeState(*entity), "id 5 {" + row + NestedText(1) + "} from id 5 {" + row +
                                     NestedText(it().copies_baseline ? 1 : 2) + "}");
}

TEST_P(EntitySuite, RefreshKeepsTheIdOrTakesThatOfTheAnswerAsTheClassSays) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  AnswerDetail(Variant(RowWith(Long{6}, "Stored")));
  use().refresh(*entity);
  const std::string id = it().refresh_takes_id ? "id 6" : "id 5";
  EXPECT_EQ(State(*entity), id + " {" + RowText(Long{6}, "Stored") + "}");
}

TEST_P(EntitySuite, RefreshToNothingLeavesTheIdAndAnEmptyRow) {
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  AnswerDetail(Nothing);
  use().refresh(*entity);
  EXPECT_EQ(server.TakeLog(), CreateInfo() + "\n" + GetDetail(5) + " -> Nothing\n");
  EXPECT_EQ(WholeState(*entity), "id 5 {} from id 5 {}");
}

TEST_P(EntitySuite, RefreshRefusesAnAnswerThatIsNoDictionaryAndChangesNothing) {
  for (const Variant& answer :
       {Variant("text"), Variant(Long{1}), Variant(Make<Vector>()), Variant()}) {
    const auto entity = Edited(RowWith(Long{5}, "Old"));
    AnswerDetail(answer);
    EXPECT_EQ(ErrorOf([&] { use().refresh(*entity); }), "error 13") << StateText(answer);
    EXPECT_EQ(WholeState(*entity), "id 5 {" + RowText(Long{5}, "New") +
                                       "} modified flagged from id 5 {" + RowText(Long{5}, "Old") +
                                       "}");
  }
}

TEST_P(EntitySuite, TheServerMayWriteTheIdBackThroughTheReferenceOfARefresh) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  AnswerDetailWith([&](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{6}));
    return Variant(RowWith(Long{6}, "Stored"));
  });
  use().refresh(*entity);
  EXPECT_EQ(State(*entity), "id 6 {" + RowText(Long{6}, "Stored") + "}");
}

TEST_P(EntitySuite, ARefreshWithinARefreshIsDoneAndTheOuterOneHasTheLastWord) {
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  std::string seen;
  int depth = 0;
  AnswerDetailWith([&](std::span<Argument>) {
    const bool outer = ++depth == 1;
    if (outer) {
      use().refresh(*entity);
      seen = State(*entity);
      use().edit(*entity, "Between");
    }
    server.TakeLog();
    return Variant(RowWith(Long{5}, outer ? "Outer" : "Inner"));
  });
  use().refresh(*entity);
  EXPECT_EQ(depth, 2);
  EXPECT_EQ(seen, "id 5 {" + RowText(Long{5}, "Inner") + "}");
  const std::string outer = "id 5 {" + RowText(Long{5}, "Outer") + "}";
  EXPECT_EQ(WholeState(*entity), outer + " from " + outer);
}

// ---- CancelChanges ----

TEST_P(EntitySuite, CancelChangesGoesBackToTheLastRowWithoutACallAndCanBeRepeated) {
  const auto row = RowWith(Long{5}, "Old");
  row->Put(kNested, NestedList(1));
  const auto entity = EntityOf(row);
  const std::string first = "id 5 {" + RowText(Long{5}, "Old") + NestedText(1) + "}";
  for (const char* text : {"one", "two"}) {
    use().edit(*entity, text);
    SetNested(*WorkingRow(*entity), 2);
    use().cancel_changes(*entity);
    EXPECT_EQ(State(*entity), first);
  }
  use().refresh(*entity);
  server.TakeLog();
  for (const char* text : {"one", "two"}) {
    use().edit(*entity, text);
    use().cancel_changes(*entity);
    EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "Stored") + "}");
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(EntitySuite, CancelChangesOfANewOneEmptiesTheRow) {
  const auto entity = Edited(Nothing);
  use().cancel_changes(*entity);
  EXPECT_EQ(WholeState(*entity), "id 0 {} from id 0 {}");
}

TEST_P(EntitySuite, ABagAndAPropertyHeldAcrossCancelChangesSeeTheRestoredValue) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  const auto bag = entity->Properties();
  const Ref<Property> text = bag->Item(it().text_key);
  use().edit(*entity, "New");
  EXPECT_EQ(StateText(text->Value()), "\"New\"");
  use().cancel_changes(*entity);
  EXPECT_EQ(StateText(text->Value()), "\"Old\"");
  EXPECT_EQ(entity->Properties(), bag);
}

// ---- The records of change ----

TEST_P(EntitySuite, TheRowTellsOfEditsInNestedRowsAsItsTrackStateSays) {
  const auto nested = [&] {
    auto row = RowWith(Long{5}, "Old");
    row->Put(kNested, NestedList(1));
    return row;
  };
  AnswerDetail(Variant(nested()));
  const std::string row = "id 5 {" + RowText(Long{5}, "Old") + NestedText(2) + "}";
  const auto expected = [&](Long track_state) {
    return row + (track_state == 1 ? " modified" : "");
  };
  const auto entity = EntityOf(nested());
  SetNested(*WorkingRow(*entity), 2);
  EXPECT_EQ(State(*entity), expected(it().track_state.construct)) << "Construct";
  use().cancel_changes(*entity);
  SetNested(*WorkingRow(*entity), 2);
  EXPECT_EQ(State(*entity), expected(it().track_state.cancel_changes)) << "CancelChanges";
  use().refresh(*entity);
  SetNested(*WorkingRow(*entity), 2);
  EXPECT_EQ(State(*entity), expected(it().track_state.refresh)) << "Refresh";
}

TEST_P(EntitySuite, AnEditSetsBothRecordsBehindEveryWayOfMakingTheRow) {
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  const std::string edited = "id 5 {" + RowText(Long{5}, "New") + "} modified flagged";
  use().edit(*entity, "New");
  EXPECT_EQ(State(*entity), edited);
  use().cancel_changes(*entity);
  use().edit(*entity, "New");
  EXPECT_EQ(State(*entity), edited);
  use().refresh(*entity);
  use().edit(*entity, "New");
  EXPECT_EQ(State(*entity), edited);
}

TEST_P(EntitySuite, AWriteStraightIntoTheRowIsSavedWhereTheRowItselfDecides) {
  const auto direct = [&] {
    auto entity = EntityOf(RowWith(Long{5}, "Old"));
    WorkingRow(*entity)->Value(it().text_key, "New");
    return entity;
  };
  const auto entity = direct();
  EXPECT_EQ(State(*entity), "id 5 {" + RowText(Long{5}, "New") + "} modified");
  const Save save = SaveOf(5, RowText(Long{5}, "New"), RowText(Long{5}, "Old"));
  use().save_changes(*entity);
  if (it().saved_by == ChangeRecord::kDictionary) {
    EXPECT_EQ(server.TakeLog(), LogOf(save.events));
    EXPECT_EQ(WholeState(*entity), save.state_behind);

    const auto unsaved = direct();
    server.FailAt(2, Error(70));
    EXPECT_EQ(ErrorOf([&] { use().save_changes(*unsaved); }), "error 70");
    EXPECT_EQ(State(*unsaved), "id 5 {" + Sent(RowText(Long{5}, "New")) + "} modified")
        << "the stamps set no flag";
  } else {
    EXPECT_EQ(server.TakeLog(), "");
    const std::string row = RowText(Long{5}, "New");
    EXPECT_EQ(State(*entity), "id 5 {" + (it().stamps_first ? Stamped(row) : row) + "} modified");
  }
}

TEST_P(EntitySuite, AFlagWithoutAnEditOfTheRowIsSavedWhereTheFlagDecides) {
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  WorkingRow(*entity)->ResetModified();
  const std::string flagged = "id 5 {" + RowText(Long{5}, "New") + "} flagged";
  EXPECT_EQ(State(*entity), flagged);
  const Save save = SaveOf(5, RowText(Long{5}, "New"), RowText(Long{5}, "Old"));
  use().save_changes(*entity);
  if (it().saved_by == ChangeRecord::kFlag) {
    EXPECT_EQ(server.TakeLog(), LogOf(save.events));
    EXPECT_EQ(WholeState(*entity), save.state_behind);
  } else {
    EXPECT_EQ(server.TakeLog(), "");
    EXPECT_EQ(State(*entity), flagged);
  }
}

TEST_P(EntitySuite, AFailedSaveWithoutItsFlagIsNotTriedAgainWhereTheFlagDecides) {
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { use().save_changes(*entity); }), "error 70");
  entity->Properties()->ChangeFlag()->Reset();
  server.TakeLog();
  use().save_changes(*entity);
  const std::string row = Sent(RowText(Long{5}, "New"));
  EXPECT_EQ(server.TakeLog(), it().saved_by == ChangeRecord::kFlag
                                  ? ""
                                  : LogOf(SaveOf(5, row, RowText(Long{5}, "Old")).events));
}

// ---- SaveChanges ----

TEST_P(EntitySuite, SaveChangesWithoutAChangeMakesNoCall) {
  const std::string stamped = Stamped(RowText(Long{5}, "Old"));
  const auto saved = EntityOf(RowWith(Long{5}, "Old"));
  use().save_changes(*saved);
  EXPECT_EQ(State(*saved), it().stamps_first ? "id 5 {" + stamped + "} modified"
                                             : "id 5 {" + RowText(Long{5}, "Old") + "}");
  const auto fresh = EntityOf(Nothing);
  use().save_changes(*fresh);
  EXPECT_EQ(State(*fresh),
            it().stamps_first ? "id 0 {" + Stamped("").substr(2) + "} modified" : "id 0 {}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_P(EntitySuite, SaveChangesOfANewOneCreatesItAndReadsItByItsNewId) {
  ExpectSave([&] { return Edited(Nothing); }, SaveOf(0, TextAlone("New"), ""));
}

TEST_P(EntitySuite, SaveChangesOfAnExistingOneUpdatesItByItsId) {
  ExpectSave([&] { return Edited(RowWith(Long{5}, "Old")); },
             SaveOf(5, RowText(Long{5}, "New"), RowText(Long{5}, "Old")));
}

TEST_P(EntitySuite, ASecondSaveWithoutAnEditMakesNoCall) {
  for (const Ref<Dictionary>& row : {Ref<Dictionary>(), RowWith(Long{5}, "Old")}) {
    const auto entity = Edited(row);
    use().save_changes(*entity);
    EXPECT_NE(server.TakeLog(), "");
    use().save_changes(*entity);
    EXPECT_EQ(server.TakeLog(), "");
  }
}

TEST_P(EntitySuite, ASaveThatFailedAtAnyEventIsTriedAgainAsWhatIsLeftToDo) {
  const std::string fresh = TextAlone("New");
  const std::string sent = Sent(fresh);
  const auto events = SaveOf(0, fresh, "").events.size();
  for (std::size_t failing = 1; failing <= events; ++failing) {
    SCOPED_TRACE(failing);
    const auto entity = Edited(Nothing);
    server.FailAt(static_cast<int>(failing), Error(70));
    EXPECT_EQ(ErrorOf([&] { use().save_changes(*entity); }), "error 70");
    server.TakeLog();
    use().save_changes(*entity);
    const bool created = failing > 2;
    const Save again = SaveOf(created ? 8 : 0, failing == 1 ? fresh : sent, "");
    EXPECT_EQ(server.TakeLog(), LogOf(again.events));
    EXPECT_EQ(WholeState(*entity), again.state_behind);
  }
}

TEST_P(EntitySuite, TheStampsAreTheMachinesNameInUpperCaseAndEmptyWhereItGivesNone) {
  const auto stamps = [&] {
    const auto entity = Edited(RowWith(Long{5}, "Old"));
    server.FailAt(2, Error(70));
    EXPECT_EQ(ErrorOf([&] { use().save_changes(*entity); }), "error 70");
    const Ref<Dictionary> row = WorkingRow(*entity);
    return StateText(row->Value("MachineName")) + " " + StateText(row->Value("IPAddress"));
  };
  server.platform().computer_name = "Office-7";
  EXPECT_EQ(stamps(), it().stamps ? "\"OFFICE-7\" \"10.0.0.1\"" : "Empty Empty");
  server.platform().fail_computer_name = true;
  EXPECT_EQ(stamps(), it().stamps ? "\"\" \"10.0.0.1\"" : "Empty Empty");
  server.platform().fail_address_text = true;
  EXPECT_EQ(stamps(), it().stamps ? "\"\" \"\"" : "Empty Empty");
}

TEST_P(EntitySuite, TheIdThatCreateAnswersIsConvertedAndOneThatIsNoneEndsTheSave) {
  const auto outcome = [&](const Variant& answer) {
    server.Answer(it().update_component, MethodOf(it().create), answer);
    const auto entity = Edited(Nothing);
    const std::string error = ErrorOf([&] { use().save_changes(*entity); });
    const bool read_back =
        server.TakeLog().find("create " + it().info_component) != std::string::npos;
    return error + ", id " + std::to_string(use().id(*entity)) + (read_back ? ", read" : "");
  };
  EXPECT_EQ(outcome("8"), "no error, id 8, read");
  EXPECT_EQ(outcome(Integer{8}), "no error, id 8, read");
  EXPECT_EQ(outcome(Variant()), "no error, id 0");
  EXPECT_EQ(outcome("new"), "error 13, id 0");
  EXPECT_EQ(outcome(Null), "error 13, id 0");
  EXPECT_EQ(outcome(3e9), "error 6, id 0");
}

TEST_P(EntitySuite, TheServerMayWriteTheIdBackThroughTheReferenceOfAnUpdate) {
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  server.AnswerWith(it().update_component, MethodOf(it().update),
                    [](std::span<Argument> arguments) {
                      arguments[1].Put(Variant(Long{6}));
                      return Variant();
                    });
  use().save_changes(*entity);
  EXPECT_EQ(State(*entity), it().reads_back_update
                                ? "id 6 {" + RowText(Long{6}, "Stored") + "}"
                                : "id 5 {" + Sent(RowText(Long{5}, "New")) + "}");
}

TEST_P(EntitySuite, TheServerIsHandedTheWorkingRowItselfAndMayWriteIntoIt) {
  for (const std::string& call : {it().create, it().update}) {
    server.AnswerWith(it().update_component, MethodOf(call), [&](std::span<Argument> arguments) {
      for (const Argument& argument : arguments) {
        const Variant value = argument.Value();
        if (value.IsObject()) value.As<Dictionary>()->Put("FVersion", Variant(Long{2}));
      }
      return Variant(Long{8});
    });
  }
  server.missing_components = {it().info_component};
  const auto fresh = Edited(Nothing);
  EXPECT_EQ(ErrorOf([&] { use().save_changes(*fresh); }), "error 429");
  EXPECT_EQ(StateText(WorkingRow(*fresh)->Value("FVersion")), "2");
  server.missing_components = {};
  AnswerDetail(Variant("no row"));
  const auto existing = Edited(RowWith(Long{5}, "Old"));
  const Ref<Dictionary> row = WorkingRow(*existing);
  EXPECT_EQ(ErrorOf([&] { use().save_changes(*existing); }),
            it().reads_back_update ? "error 13" : "no error");
  EXPECT_EQ(StateText(row->Value("FVersion")), "2");
  EXPECT_EQ(StateText(WorkingRow(*existing)->Value("FVersion")), "2");
}

TEST_P(EntitySuite, AComponentThatCannotBeMadeEndsTheOperationAndLeavesTheEdits) {
  server.missing_components = {it().info_component, it().update_component};
  const std::string row = RowText(Long{5}, "New");
  const auto entity = Edited(RowWith(Long{5}, "Old"));
  EXPECT_EQ(ErrorOf([&] { use().refresh(*entity); }), "error 429");
  EXPECT_EQ(State(*entity), "id 5 {" + row + "} modified flagged");
  EXPECT_EQ(ErrorOf([&] { use().save_changes(*entity); }), "error 429");
  EXPECT_EQ(server.TakeLog(),
            CreateInfo() + " -> error 429\n" + CreateUpdate() + " -> error 429\n");
  EXPECT_EQ(WholeState(*entity), "id 5 {" + StampedEarly(row) + "} modified flagged from id 5 {" +
                                     RowText(Long{5}, "Old") + "}");
}

// ---- The session and the transaction context ----

TEST_P(EntitySuite, TheConnectionTextIsAskedForBehindTheComponentAndAfreshForEachCall) {
  const auto fresh = Edited(Nothing);
  const auto existing = Edited(RowWith(Long{5}, "Old"));
  server.LogSession();
  use().save_changes(*fresh);
  EXPECT_EQ(server.TakeLog(), WithSession(LogOf(SaveOf(0, TextAlone("New"), "").events)));
  use().save_changes(*existing);
  EXPECT_EQ(server.TakeLog(), WithSession(LogOf(SaveOf(5, RowText(Long{5}, "New"), "").events)));
}

TEST_P(EntitySuite, WithoutASessionTheServerIsHandedAnEmptyConnectionText) {
  server.outer_login = Variant(Long{2});
  AnswerDetail(Nothing);
  const auto entity = EntityOf(RowWith(Long{5}, "Old"));
  use().refresh(*entity);
  EXPECT_EQ(server.TakeLog(),
            CreateInfo() + "\n" + Filled(GetDetail(5), {{"\"props\"", "\"\""}}) + " -> Nothing\n");
}

TEST_P(EntitySuite, TheTransactionContextIsKeptThroughEveryReloadReplacedAndReleased) {
  const auto context = Make<Opaque>();
  const auto other = Make<Opaque>();
  {
    const auto entity = it().make();
    use().construct(*entity, RowWith(Long{5}, "Old"), context);
    EXPECT_EQ(context->holders(), 2);  // this variable and the entity
    use().cancel_changes(*entity);
    use().refresh(*entity);
    use().edit(*entity, "New");
    use().save_changes(*entity);
    EXPECT_EQ(context->holders(), 2);
    entity->SetTransactionContext(other);
    EXPECT_EQ(context->holders(), 1);
    EXPECT_EQ(other->holders(), 2);
    use().refresh(*entity);
    EXPECT_EQ(other->holders(), 2);
    use().construct(*entity, Nothing, Nothing);
    EXPECT_EQ(other->holders(), 1);
    use().construct(*entity, Nothing, context);
  }
  EXPECT_EQ(context->holders(), 1);
}

}  // namespace qdclgl::testing

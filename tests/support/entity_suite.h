// The behaviours that all entities share, proved once and run over every class, through its C++
// members and by name. A class takes part by a declaration in its own test file:
//
//   EntityCase VoucherGroupCase() {
//     return EntityCaseOf(&VoucherGroup::VoucherGroupID, &VoucherGroup::Name,
//                         {.info_component = "QDSVGLVoucherGroup.VoucherGroupInfo",
//                          .update_component = "QDSVGLVoucherGroup.VoucherGroupUpdate",
//                          .id_member = "VoucherGroupID",
//                          .id_key = "FGroupID",
//                          .text_member = "Name",
//                          .text_key = "FName"});
//   }
//   INSTANTIATE_TEST_SUITE_P(VoucherGroup, EntitySuite, TypedAndByName(VoucherGroupCase()),
//                            NameOfUse());
//
// The instance bears the name of the class.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "qdclgl/frame/entities/entity.h"
#include "tests/support/failing_events.h"
#include "tests/support/recording_server.h"

namespace qdclgl::testing {

// One way of using an entity.
struct EntityUse {
  std::string name;
  std::function<void(Entity&, const Ref<Dictionary>& row, const Ref<Object>& xa)> construct;
  std::function<void(Entity&)> cancel_changes;
  std::function<void(Entity&)> refresh;
  std::function<void(Entity&)> save_changes;
  std::function<Long(Entity&)> id;
  std::function<void(Entity&, const String& text)> edit;
};

// Which of the two records of change tells that there is something to save.
enum class ChangeRecord { kDictionary, kFlag };

// How the working row tracks changes behind each way of making it (Dictionary::SetTrackState).
struct TrackStates {
  Long construct = 0;
  Long cancel_changes = 1;
  Long refresh = 1;
};

struct EntityCase {
  // ---- What every class says ----

  std::string info_component;    // reads
  std::string update_component;  // writes
  std::string id_member;
  std::string id_key;
  std::string text_member;  // a member of type String whose let stores the text under `text_key`
  std::string text_key;

  // ---- Where a class departs from the others ----

  // Calls as the log has them; <id> and <row> stand for what differs.
  std::string get_detail = "GetDetail(\"props\", ref <id>)";
  std::string create = "Create(\"props\", <row>)";
  std::string update = "Update(\"props\", ref <id>, <row>)";
  TrackStates track_state = {};
  bool copies_baseline = false;       // CancelChanges goes back to a copy of the row, nobody else's
  bool keeps_id_without_key = false;  // Construct of a row without the id leaves the object's id
  bool refresh_takes_id = false;      // Refresh takes the id of the row that it reads
  bool cancel_constructs = false;     // CancelChanges constructs the object of its row anew
  bool refresh_shows_failures = false;  // Refresh shows a failure to the user and raises nothing
  ChangeRecord saved_by = ChangeRecord::kDictionary;
  bool stamps = true;         // a save writes the machine's name and address into the row
  bool stamps_first = false;  // it does so before it looks for changes
  bool stamps_before_component = false;  // or of a changed row, before it makes the component
  std::string save_adds = {};            // what else it writes into the row, ", FKey: value"
  std::vector<std::string> before_update = {};  // lines of the log between component and Update
  bool reads_back_update = true;  // an updated row is read again; otherwise what was sent is kept

  // ---- What EntityCaseOf fills in ----

  std::string class_name = {};
  Ref<Entity> (*make)() = nullptr;
  EntityUse typed = {};
  EntityUse by_name = {};
};

// The ways of using an entity by name, from the names in `declared`.
EntityUse EntityUseByName(const EntityCase& declared);

// The declaration of the class T with its id and its text member, which a base class may hold, as
// typed callers use them.
template <class T, class Base>
EntityCase EntityCaseOf(Long (T::*id)() const, void (Base::*edit)(String), EntityCase declared) {
  declared.class_name = T::kClassName;
  declared.make = [] { return Ref<Entity>(Make<T>()); };
  const auto typed = [](Entity& entity) -> T& { return static_cast<T&>(entity); };
  declared.typed = {
      .name = "typed",
      .construct = [=](Entity& entity, const Ref<Dictionary>& row,
                       const Ref<Object>& xa) { typed(entity).Construct(row, xa); },
      .cancel_changes = [=](Entity& entity) { typed(entity).CancelChanges(); },
      .refresh = [=](Entity& entity) { typed(entity).Refresh(); },
      .save_changes = [=](Entity& entity) { typed(entity).SaveChanges(); },
      .id = [=](Entity& entity) { return (typed(entity).*id)(); },
      .edit = [=](Entity& entity, const String& text) { (typed(entity).*edit)(text); },
  };
  declared.by_name = EntityUseByName(declared);
  return declared;
}

struct EntityParam {
  EntityCase entity;
  EntityUse use;
};
void PrintTo(const EntityParam& param, std::ostream* out);

inline auto TypedAndByName(const EntityCase& entity) {
  return ::testing::Values(EntityParam{entity, entity.typed}, EntityParam{entity, entity.by_name});
}

// Names the two instances of a behaviour "typed" and "by_name".
struct NameOfUse {
  template <class Param>
  std::string operator()(const ::testing::TestParamInfo<Param>& info) const {
    return info.param.use.name;
  }
};

// "id 5 {FName: \"x\"} modified flagged"
std::string EntityState(const EntityUse& use, Entity& entity);

class EntitySuite : public ::testing::TestWithParam<EntityParam> {
 protected:
  // A save as the log and the entity tell of it.
  struct Save {
    std::vector<Event> events;
    std::string state_behind;
  };

  EntitySuite();

  const EntityCase& it() const { return GetParam().entity; }
  const EntityUse& use() const { return GetParam().use; }

  // A row of the class, and the same as text without its braces.
  Ref<Dictionary> RowWith(const Variant& id, const Variant& text) const;
  std::string RowText(const Variant& id, const Variant& text) const;
  std::string TextAlone(const std::string& text) const;  // a row that has no id yet

  Ref<Entity> EntityOf(const Ref<Dictionary>& row) const;
  Ref<Entity> Edited(const Ref<Dictionary>& row) const;  // with the text "New"
  std::string State(Entity& entity) const { return EntityState(use(), entity); }
  // The state, and the one that CancelChanges goes back to.
  std::string WholeState(Entity& entity) const;

  // What an operation raises, or "shown: words" for what it shows to the user instead.
  std::string FailureOf(const std::function<void()>& operation);
  // The end of a Refresh that fails with `error`.
  std::string RefreshEnd(const std::string& error) const;

  std::string CreateInfo() const { return "create " + it().info_component; }
  std::string CreateUpdate() const { return "create " + it().update_component; }
  std::string GetDetail(Long id) const;  // "call GetDetail(...)"
  void AnswerDetail(const Variant& answer);
  void AnswerDetailWith(RecordingServer::Handler handler);

  // A row's text with the stamps, and as a save sends it.
  std::string Stamped(const std::string& row) const;
  std::string StampedEarly(const std::string& row) const;  // where it is, before the component
  std::string Sent(const std::string& row) const;
  // The save of an edited entity of this id and row (as text without its braces), which
  // CancelChanges would bring back to the row `baseline`.
  Save SaveOf(Long id, const std::string& row, const std::string& baseline) const;
  void ExpectSave(const std::function<Ref<Entity>()>& make, const Save& save);

  RecordingServer server;
};

}  // namespace qdclgl::testing

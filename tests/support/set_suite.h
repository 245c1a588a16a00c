// The behaviours that all sets share, proved once and run over every class, through its C++ members
// and by name. A class takes part by a declaration in its own test file, beside that of its entity:
//
//   INSTANTIATE_TEST_SUITE_P(VoucherGroupSet, SetSuite,
//                            TypedAndByName(SetCaseOf<VoucherGroupSet>(VoucherGroupCase(), {...})),
//                            NameOfUse());
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "qdclgl/frame/entities/entity_set.h"
#include "tests/support/entity_suite.h"

namespace qdclgl::testing {

// One way of using a set.
struct SetUse {
  std::string name;
  std::function<Ref<Object>(EntityListBase&)> create_new = {};
  // The id and the text that are asked for, Missing for what is left out.
  std::function<Long(EntityListBase&, const Variant& id, const Variant& text)> existence_check = {};
  std::function<Ref<Object>(EntityListBase&)> get_current;
  std::function<Ref<Object>(EntityListBase&)> get_next;
  std::function<Ref<Enumerator>(EntityListBase&)> new_enum;
  // Visits all elements: by a C++ loop, or by what the enumerator gives.
  std::function<void(EntityListBase&, const std::function<void(Object&)>& visit)> walk;
  std::function<void(EntityListBase&)> refresh;
  std::function<void(EntityListBase&, const Variant& key)> remove = {};
  std::function<Long(EntityListBase&)> count;
  std::function<Ref<Object>(EntityListBase&, const Variant& key)> item = {};
  std::function<Ref<Recordset>(EntityListBase&)> record_set;
  std::function<void(EntityListBase&, const Ref<Recordset>&)> put_record_set;
  std::function<void(EntityListBase&, Long options, const String& filter, const String& sort)>
      put_fields;
  std::function<std::string(EntityListBase&)> fields;  // "4 \"filter\" \"sort\""
};

// What a set does with a key that is no number.
enum class OtherKey {
  kTextOnly,  // a text is looked up, anything else raises error 5
  kAny,       // anything is looked up as a text is
  kNone,      // anything raises error 5
};

struct SetCase {
  // ---- Where a class departs from the others ----

  // Calls as the log has them; <id>, <key> and the three fields stand for what differs.
  std::string get_list = "GetList(\"props\", ref <options>, ref <filter>, ref <sort>)";
  std::string get_detail = "GetDetail(\"props\", <id>)";
  std::string get_detail_by_text = "GetDetailByNumber(\"props\", ref Variant <key>)";
  std::string exists_by_id = "ExistenceCheck(\"props\", ref Variant <key>)";
  std::string exists_by_text = "ExistenceCheck(\"props\", Number:=ref Variant <key>)";
  // What ExistenceCheck without arguments calls, if anything, and how it ends.
  std::string exists_by_nothing = {};
  std::string exists_of_nothing = "0";
  std::string remove = "Delete(\"props\", ref <id>, \"HOST\", \"10.0.0.1\")";
  OtherKey item_key = OtherKey::kTextOnly;
  OtherKey remove_key = OtherKey::kTextOnly;
  // How GetNext ends at a row that it doesn't give; the cursor then stays.
  std::string get_next = "no error";
  bool item_makes_component_first = false;    // even for a key that it then refuses
  std::vector<Event> behind_get_detail = {};  // what Item does to complete the row
  std::string item_adds = {};                 // and what stands in the row behind it
  std::string item_of_nothing = "id 0 {}";    // what Item makes of a row that the server hasn't got
  std::string created_row = "id 0 {}";        // what CreateNew makes when it is given nothing
  std::string created_error = {};             // how CreateNew ends, where it makes nothing
  std::string walked_class = {};              // what a walk makes, where it isn't the set's entity
  bool record_set_fetches = false;            // RecordSet is the list, fetched on first use
  bool takes_record_set = true;               // a recordset put in takes the list's place
  bool item_is_default = true;
  std::function<void(RecordingServer&)> prepare = {};  // answers that only this class needs

  // ---- What SetCaseOf fills in ----

  EntityCase entity = {};
  std::string class_name = {};
  Ref<EntityListBase> (*make)() = nullptr;
  SetUse typed = {};
  SetUse by_name = {};
};

SetUse SetUseByName();

// The declaration of the class Set over the entities of `entity`. An operation whose arguments are
// the class's own is left to the declaration: it puts a function in `typed` and in `by_name`.
template <class Set>
SetCase SetCaseOf(EntityCase entity, SetCase declared) {
  declared.entity = std::move(entity);
  declared.class_name = Set::kClassName;
  declared.make = [] { return Ref<EntityListBase>(Make<Set>()); };
  const auto typed = [](EntityListBase& set) -> Set& { return static_cast<Set&>(set); };
  declared.typed = {
      .name = "typed",
      .get_current = [=](EntityListBase& set) { return Ref<Object>(typed(set).GetCurrent()); },
      .get_next = [=](EntityListBase& set) { return Ref<Object>(typed(set).GetNext()); },
      .new_enum = [=](EntityListBase& set) { return typed(set).NewEnum(); },
      .walk =
          [=](EntityListBase& set, const std::function<void(Object&)>& visit) {
            for (auto& element : typed(set)) visit(element);
          },
      .refresh = [=](EntityListBase& set) { typed(set).Refresh(); },
      .count = [=](EntityListBase& set) { return typed(set).Count(); },
      .record_set = [=](EntityListBase& set) { return typed(set).RecordSet(); },
      .put_record_set = [=](EntityListBase& set,
                            const Ref<Recordset>& list) { typed(set).RecordSet(list); },
      .put_fields =
          [=](EntityListBase& set, Long options, const String& filter, const String& sort) {
            typed(set).ListOptions(options);
            typed(set).Filter(filter);
            typed(set).Sort(sort);
          },
      .fields =
          [=](EntityListBase& set) {
            return std::to_string(typed(set).ListOptions()) + " \"" + typed(set).Filter() +
                   "\" \"" + typed(set).Sort() + "\"";
          },
  };
  if constexpr (requires(Set & set) { set.CreateNew(); }) {
    declared.typed.create_new = [=](EntityListBase& set) {
      return Ref<Object>(typed(set).CreateNew());
    };
  }
  if constexpr (requires(Set & set, const Variant& key) { set.ExistenceCheck(key, key); }) {
    declared.typed.existence_check = [=](EntityListBase& set, const Variant& id,
                                         const Variant& text) {
      return typed(set).ExistenceCheck(id, text);
    };
  }
  if constexpr (requires(Set & set, const Variant& key) { set.Remove(key); }) {
    declared.typed.remove = [=](EntityListBase& set, const Variant& key) {
      typed(set).Remove(key);
    };
  }
  if constexpr (requires(Set & set, const Variant& key) { set.Item(key); }) {
    declared.typed.item = [=](EntityListBase& set, const Variant& key) {
      return Ref<Object>(typed(set).Item(key));
    };
  }
  declared.by_name = SetUseByName();
  return declared;
}

struct SetParam {
  SetCase set;
  SetUse use;
  EntityUse entity_use;
};
void PrintTo(const SetParam& param, std::ostream* out);

inline auto TypedAndByName(const SetCase& set) {
  return ::testing::Values(SetParam{set, set.typed, set.entity.typed},
                           SetParam{set, set.by_name, set.entity.by_name});
}

class SetSuite : public ::testing::TestWithParam<SetParam> {
 protected:
  SetSuite();

  const SetCase& it() const { return GetParam().set; }
  const EntityCase& entity() const { return GetParam().set.entity; }
  const SetUse& use() const { return GetParam().use; }

  // A list of the rows 1 "First", 2 "Second" and 3 Null, one of no rows, and the former as text.
  Ref<Recordset> ThreeRows() const;
  Ref<Recordset> NoRows() const;
  std::string ThreeRowsText() const;
  std::string RowText(Long id, const Variant& text) const;  // "{FGroupID: 1, FName: \"First\"}"

  // What the server answers; to both ways of reading one row.
  void AnswerRows();  // the three rows, anew each time
  void AnswerList(const Variant& answer);
  void AnswerDetail(const Variant& answer);
  void AnswerExistence(const Variant& answer);

  // Whether Item finds a row by its text.
  bool FindsByText() const { return it().item_key != OtherKey::kNone; }
  // Moves the cursor on.
  void MoveOn(EntityListBase& set);

  // A set that fetched the three rows.
  Ref<EntityListBase> Fetched();
  // The id and the row of what a set gave.
  std::string EntityState(const Ref<Object>& given) const;
  // The list, where its cursor stands, and the fields.
  std::string State(EntityListBase& set) const;
  // The state of what a walk gives: that of the set's entity, or the class and the row.
  std::string WalkedState(Object& element) const;
  std::string WalkedStateOf(Long id, const Variant& text) const;
  // The ids in the rows of what a walk or an enumerator gives, in order.
  std::string IdsOfWalk(EntityListBase& set) const;
  std::string IdsOf(Enumerator& enumerator) const;
  std::string IdIn(Object& element) const;

  std::string CreateInfo() const { return "create " + entity().info_component; }
  std::string CreateUpdate() const { return "create " + entity().update_component; }
  std::string GetList(Long options = 0, const std::string& filter = "",
                      const std::string& sort = "") const;
  // The log of one fetch of the list.
  std::string FetchLog(const std::string& answer, const std::string& call = {}) const;
  std::string Call(const std::string& call, const std::string& id_or_key) const;
  // What Item asks for, each failure leaving the set in `state`.
  std::vector<Event> ItemEvents(const std::string& call, Long id, const std::string& state) const;

  RecordingServer server;
};

}  // namespace qdclgl::testing

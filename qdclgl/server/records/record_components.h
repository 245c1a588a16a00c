// The two components that every kind of master data has: one reads its records, one writes them.
//
// Their rows are written once. What differs between kinds in names and help texts stands in them as
// a word that the kind fills in (see MasterData): RecordID and RecordKey in parameters; {record},
// {key} and the like in help texts. So the kind makes their class tables, and these classes and
// those derived from them begin with QD_BASE_MEMBERS.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::server {

class MasterData;

class RecordComponent : public Object {
 public:
  std::string_view ClassName() const override { return table_.name(); }
  const ClassTable* Members() const override { return &table_; }

 protected:
  RecordComponent(const MasterData& kind, const ClassTable& table) : kind_(kind), table_(table) {}

  const MasterData& kind() const { return kind_; }

 private:
  const MasterData& kind_;
  const ClassTable& table_;
};

class RecordInfo : public RecordComponent {
  QD_BASE_MEMBERS(RecordComponent)

 public:
  explicit RecordInfo(const MasterData& kind);

  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& RecordID),
            "{A record}, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view RecordKey),
            "{A record} by its {key,} Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}),
            "The {records}; bit 1 of ListOptions includes those marked deleted. BadFilter, "
            "BadSort.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& RecordID = Missing,
             const Variant& RecordKey = Missing),
            "The id of the {record} with that id, or otherwise with that {key}; 0 when there is "
            "none.")
};

class RecordUpdate : public RecordComponent {
  QD_BASE_MEMBERS(RecordComponent)

 public:
  explicit RecordUpdate(const MasterData& kind);

  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new {record}; its id and version come back in the row too. Errors: {errors}.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& RecordID, const Ref<Dictionary>& dict),
            "Saves {a record}; the new version comes back in the row. Errors: NotFound, NoVersion, "
            "Changed, and those of Create.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& RecordID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes {a record}. NotFound, InUse.")
};

// The C++ class of a component: its rows, and how its objects are made.
struct RecordClass {
  std::span<const MemberRow> rows;
  Ref<Object> (*make)(const MasterData& kind);
};
template <class Component>
constexpr RecordClass RecordClassOf() {
  return {RowsOf<Component>(),
          [](const MasterData& kind) { return Ref<Object>(Make<Component>(kind)); }};
}

}  // namespace qdclgl::server

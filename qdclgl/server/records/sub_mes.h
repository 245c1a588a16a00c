// Sub-messages as clients call them: by methods of the components of items, which take these rows
// over.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// Rows that read sub-messages and their types.
class SubMesReader : public Object {
  QD_BASE_MEMBERS(Object)

 public:
  static constexpr Right kReads{Role::kReader, "read sub-messages"};

  QD_METHOD(Ref<Dictionary>, GetSubMesTypeDetail,
            (std::string_view PropsString, const Variant& Key),
            "The type of an id (a number) or a name (a text). NotFound.")
  QD_METHOD(Ref<Recordset>, GetSubMesTypeList,
            (std::string_view PropsString, const Variant& Reserved = Missing,
             const String& Filter = {}),
            "The types of sub-messages. BadFilter.")
  QD_METHOD(Ref<Dictionary>, GetSubMesDetail,
            (std::string_view PropsString, const Long& ItemID, const Long& TypeID = {}),
            "The entry of an id, Nothing when there is none in that type; type 0 is any.")
  QD_METHOD(Ref<Dictionary>, GetSubMesDetailByNumber,
            (std::string_view PropsString, const Long& TypeID, const String& Number),
            "The entry of a type with that number, Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetSubMesList,
            (std::string_view PropsString, const Variant& TypeID, const Long& ListOptions = {},
             const String& Filter = {}, const String& Sort = {}),
            "The entries of a type, or of all with 0. BadFilter, BadSort.")
};

// Rows that write them.
class SubMesWriter : public Object {
  QD_BASE_MEMBERS(Object)

 public:
  static constexpr Right kWrites{Role::kAdministrator, "change sub-messages"};

  QD_METHOD(Long, CreateSubMesType,
            (std::string_view PropsString, const String& Name, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Saves a new type and gives its id. Required, NameTaken, BadValue.")
  QD_METHOD(void, RenameSubMesType,
            (std::string_view PropsString, const Long& TypeID, const String& Name,
             std::string_view MachineName = "", std::string_view IPAddress = ""),
            "Gives a type another name, whoever saved it since. NotFound, Required, NameTaken, "
            "BadValue.")
  QD_METHOD(void, DeleteSubMesType,
            (std::string_view PropsString, const Long& TypeID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes a type without entries. NotFound, InUse.")
  QD_METHOD(Long, CreateSubMes,
            (std::string_view PropsString, Long TypeID, const Ref<Dictionary>& dict),
            "Saves a new entry; a row that names no type is of the type given. Required, "
            "BadReference, NumberTaken, BadValue.")
  QD_METHOD(void, UpdateSubMes,
            (std::string_view PropsString, const Long& ItemID, const Ref<Dictionary>& dict,
             const Long& TypeID = {}),
            "Saves an entry. NotFound, also for one of another type; NoVersion, Changed, and those "
            "of CreateSubMes.")
  QD_METHOD(void, DeleteSubMes,
            (std::string_view PropsString, const Long& ItemID, const Long& TypeID = {},
             std::string_view MachineName = "", std::string_view IPAddress = ""),
            "Removes an entry. NotFound, also for one of another type.")
};

}  // namespace qdclgl::server

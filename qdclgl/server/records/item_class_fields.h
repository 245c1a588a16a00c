// The fields that the items of an item class have, as rows of the class: what they may be, and how
// those of a sent class take the place of those that are stored.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

// The key of a class's row that holds the list of its fields.
inline constexpr std::string_view kItemClassFields = "_PropDesc";

// The table of the fields, the class's id first.
StoredTable ItemClassFieldTable();

// What callers may send of a field.
std::vector<Column> SentItemClassField();

// The fields of a class by their ids, as rows without the class's id.
Ref<Vector> ItemClassFieldsOf(Database& db, Long item_class);
// Those of them that the list shows which items are chosen from.
Ref<Recordset> ShownItemClassFields(Database& db, Long item_class);

// Gives a new class the fields of the system; then the fields that the sent row has, where it has
// any, take the place of the stored ones. Refuses what a field can't be, naming class and field.
void SaveItemClassFields(RecordSave& save);
void RemoveItemClassFields(Database& db, Long item_class);

}  // namespace qdclgl::server

// The slots that the fields of an item class get when the class is saved, and what its items say to
// the changes of a field.
#pragma once

#include <map>

#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

inline constexpr Integer kFirstOwnField = 101;  // below are the fields of the system

using FieldsById = std::map<Integer, Ref<Dictionary>>;

// Gives the fields of a saved class that need one a slot (FSlot) each. Refuses, naming the field,
// one too many (BadValue), a default that is no value of the field (BadValue), a size that the
// values of items go beyond (InUse), and the removal or the other way to search for a field that
// items have values in (InUse).
void SettleSlots(const RecordSave& save, const FieldsById& stored, FieldsById& taken);

}  // namespace qdclgl::server

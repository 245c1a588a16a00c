// Slots: the columns of t_Item that hold the values of fields. Programs may change no table, so
// each field of an item class gets a column that is there already, of its own type. Some of each
// type have an index and are for the fields that items are searched by.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/server/db/columns.h"

namespace qdclgl::server {

// All of them. Their zero is the value of an item that has none.
const std::vector<Column>& ItemSlots();

// The first free slot for values of a type: one with an index where the field is searched by,
// otherwise one without. "" when all of them are taken.
std::string_view FreeSlot(ColumnType type, bool is_searched, const std::set<std::string>& taken);

// How many fields of a type a class can have of either sort.
int SlotsFor(ColumnType type, bool is_searched);
// Whether the slot is one that FreeSlot could give.
bool IsSlotFor(ColumnType type, bool is_searched, std::string_view slot);

// The SQL condition that a slot is not at its zero.
std::string HoldsSomething(const Column& slot);

// Values as slots hold them, and back: dates and decimals are texts there whose order is theirs.
Variant SlotValue(ColumnType type, const Variant& value);
Variant FromSlot(ColumnType type, const Variant& held);

}  // namespace qdclgl::server

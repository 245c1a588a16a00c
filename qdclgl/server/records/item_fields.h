// The fields of their own that the items of a class have: what the class describes, as items hold
// it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

struct ItemField {
  std::string name;    // as people call it
  std::string column;  // of rows and lists: "F1000_101"
  std::string slot;    // the column of t_Item
  ColumnType type;
  Long data_type = 0;
  Long precision = 0;
  Integer scale = 0;
  std::string default_value;
  bool is_required = false;
  bool is_searched = false;  // by an index

  // From a row of a class's list of fields.
  static ItemField From(const Dictionary& description, std::string slot);

  Column AsColumn() const { return {column, type}; }
  // The SQL of its value in a row of t_Item.
  std::string StoredValue() const;
  // Why a value of the field's type is none of the field: "has more than 20 characters". "" for one
  // that is.
  std::string ReasonAgainst(const Variant& value) const;
  bool IsZero(const Variant& value) const;

  // What any value is for the field: a value of its type, or the reason why there is none.
  struct TakenValue {
    Variant value;
    std::string reason = {};
  };
  TakenValue Take(const Variant& value) const;
  // The same of what a slot holds.
  TakenValue TakeHeld(const Variant& held) const;

  // What the items of the class hold in the slot, but for its zero.
  void EachHeld(Database& db, Long item_class,
                const std::function<void(Long item, const Variant& held)>& look) const;
};

// The fields of a class by their ids. Those of the system are not among them.
class ItemFields {
 public:
  ItemFields(Database& db, Long item_class);

  const std::vector<ItemField>& all() const { return fields_; }

 private:
  std::vector<ItemField> fields_;
};

// Whether a key of a row is that of a field, of whatever class.
bool IsFieldKey(std::string_view key);

// Puts into the record what its sent row has of the fields of its class. A key that is none of
// them, a value that its field can't have, and the want of one that must be there are refused.
void TakeFields(RecordSave& save);

// Puts the fields of its class into a record that was read, in place of its slots.
void ShowFields(Database& db, Dictionary& record);

// Calls the fields of items on the trail by their columns, and not by the slots of today.
void NameFieldsOnTrail(Database& db, std::map<Long, TrailedRecord>& items);

}  // namespace qdclgl::server

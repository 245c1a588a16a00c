#include "qdclgl/server/records/field_slots.h"

#include <functional>
#include <set>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item_fields.h"
#include "qdclgl/server/records/item_slots.h"

namespace qdclgl::server {

namespace {

bool IsOwn(const Dictionary& field) {
  return field.Value("FPropID").As<Integer>() >= kFirstOwnField;
}

ItemField FieldOf(const Dictionary& field) {
  return ItemField::From(field, field.Value("FSlot").As<String>());
}

// The refusals of one field of a class that is saved.
class FieldSave {
 public:
  FieldSave(const RecordSave& save, const ItemField& field) : save_(save), field_(field) {}

  [[noreturn]] void Refuse(std::int32_t number, const std::string& reason) const {
    save_.Refuse(number, "field \"" + field_.name + "\": " + reason);
  }

  void RequireDefault() const {
    const ItemField::TakenValue value = field_.Take(Variant(field_.default_value));
    if (!value.reason.empty()) Refuse(refusal::kBadValue, "its default " + value.reason + ".");
  }
  // Refuses unless all items that have a value meet a condition.
  void RequireOfItems(const std::function<bool(const ItemField::TakenValue& value)>& is_met,
                      const std::string& otherwise) const {
    field_.EachHeld(save_.db(), save_.id(), [&](Long, const Variant& held) {
      const ItemField::TakenValue taken = field_.TakeHeld(held);
      if (!field_.IsZero(taken.value) && !is_met(taken)) Refuse(refusal::kInUse, otherwise);
    });
  }
  void RequireNoValues(const std::string& otherwise) const {
    RequireOfItems([](const ItemField::TakenValue&) { return false; }, otherwise);
  }
  void RequireThatValuesFit() const {
    RequireOfItems([](const ItemField::TakenValue& value) { return value.reason.empty(); },
                   "items have values that are larger.");
  }

 private:
  const RecordSave& save_;
  const ItemField& field_;
};

// What the items say to a field that changes.
void RequireItemsToFollow(const RecordSave& save, const Dictionary& stored,
                          const Dictionary& taken) {
  const ItemField before = FieldOf(stored), after = FieldOf(taken);
  const FieldSave field(save, after);
  if (before.is_searched != after.is_searched) {
    field.RequireNoValues("items have values in it; FSearch is chosen while none has.");
  }
  if (before.precision != after.precision || before.scale != after.scale) {
    field.RequireThatValuesFit();
  }
}

// Whether a field has to be given a slot, another one where it has one.
bool NeedsSlot(const Dictionary& taken) {
  const ItemField field = FieldOf(taken);
  return !IsSlotFor(field.type, field.is_searched, field.slot);
}

std::set<std::string> TakenSlots(const FieldsById& fields) {
  std::set<std::string> slots;
  for (const auto& [id, field] : fields) slots.insert(field->Value("FSlot").As<String>());
  return slots;
}

}  // namespace

void SettleSlots(const RecordSave& save, const FieldsById& stored, FieldsById& taken) {
  for (const auto& [id, field] : stored) {
    if (!IsOwn(*field) || taken.contains(id)) continue;
    const ItemField removed = FieldOf(*field);
    FieldSave(save, removed).RequireNoValues("items have values in it; empty it first.");
  }
  std::set<std::string> slots = TakenSlots(taken);
  for (const auto& [id, field] : taken) {
    if (!IsOwn(*field)) continue;
    const ItemField own = FieldOf(*field);
    FieldSave(save, own).RequireDefault();
    if (const auto former = stored.find(id); former != stored.end()) {
      RequireItemsToFollow(save, *former->second, *field);
    }
    if (!NeedsSlot(*field)) continue;
    const std::string_view slot = FreeSlot(own.type, own.is_searched, slots);
    if (slot.empty()) {
      FieldSave(save, own).Refuse(
          refusal::kBadValue, "a class has at most " +
                                  std::to_string(SlotsFor(own.type, own.is_searched)) +
                                  " fields of such a type that it " +
                                  (own.is_searched ? "is searched by." : "is not searched by."));
    }
    slots.emplace(slot);
    field->Put("FSlot", Variant(slot));
  }
}

}  // namespace qdclgl::server

#include "qdclgl/server/records/item_slots.h"

namespace qdclgl::server {

namespace {

// The slots of one type are FText1, FText2 and so on; the first ones have an index.
struct Pool {
  ColumnType type;
  std::string_view name;
  int searched, plain;
};
constexpr Pool kPools[] = {
    {ColumnType::kText, "FText", 12, 24},
    {ColumnType::kLong, "FWhole", 6, 12},
    {ColumnType::kCurrency, "FMoney", 4, 8},
    {ColumnType::kDouble, "FReal", 4, 8},
};

const Pool& PoolOf(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
    case ColumnType::kInteger:
    case ColumnType::kLong: return kPools[1];
    case ColumnType::kCurrency: return kPools[2];
    case ColumnType::kSingle:
    case ColumnType::kDouble: return kPools[3];
    default: return kPools[0];
  }
}

// The slots of a pool, those with an index first.
struct Place {
  int first, end;
};
Place PlaceOf(const Pool& pool, bool is_searched) {
  return is_searched ? Place{1, pool.searched + 1}
                     : Place{pool.searched + 1, pool.searched + pool.plain + 1};
}

std::string SlotName(const Pool& pool, int number) {
  return std::string(pool.name) + std::to_string(number);
}

const std::vector<std::string>& SlotNames() {
  static const std::vector<std::string> kNames = [] {
    std::vector<std::string> names;
    for (const Pool& pool : kPools) {
      for (int i = 1; i <= pool.searched + pool.plain; ++i) names.push_back(SlotName(pool, i));
    }
    return names;
  }();
  return kNames;
}

}  // namespace

const std::vector<Column>& ItemSlots() {
  static const std::vector<Column> kSlots = [] {
    std::vector<Column> slots;
    auto name = SlotNames().begin();
    for (const Pool& pool : kPools) {
      for (int i = 0; i < pool.searched + pool.plain; ++i) slots.push_back({*name++, pool.type});
    }
    return slots;
  }();
  return kSlots;
}

std::string_view FreeSlot(ColumnType type, bool is_searched, const std::set<std::string>& taken) {
  const Pool& pool = PoolOf(type);
  const Place place = PlaceOf(pool, is_searched);
  for (int i = place.first; i < place.end; ++i) {
    const std::string name = SlotName(pool, i);
    if (!taken.contains(name)) return FindColumn(ItemSlots(), name)->name;
  }
  return {};
}

int SlotsFor(ColumnType type, bool is_searched) {
  const Place place = PlaceOf(PoolOf(type), is_searched);
  return place.end - place.first;
}

bool IsSlotFor(ColumnType type, bool is_searched, std::string_view slot) {
  const Pool& pool = PoolOf(type);
  const Place place = PlaceOf(pool, is_searched);
  for (int i = place.first; i < place.end; ++i) {
    if (SlotName(pool, i) == slot) return true;
  }
  return false;
}

std::string HoldsSomething(const Column& slot) {
  return std::string(slot.name) + (StorageOf(slot.type) == Storage::kText ? " <> ''" : " <> 0");
}

Variant SlotValue(ColumnType type, const Variant& value) {
  switch (type) {
    case ColumnType::kBoolean: return Long{value.Held<Boolean>()};
    case ColumnType::kDecimal: return DecimalText(value.Held<Decimal>());
    case ColumnType::kDate: return DateText(value.Held<DateTime>());
    default: return value;
  }
}

Variant FromSlot(ColumnType type, const Variant& held) {
  switch (type) {
    case ColumnType::kBoolean: return held.Held<Long>() != 0;
    case ColumnType::kDecimal: return DecimalFrom(held.TextView());
    case ColumnType::kDate: return DateFrom(held.TextView());
    default: return held;
  }
}

}  // namespace qdclgl::server

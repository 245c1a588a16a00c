#include "qdclgl/frame/containers/recordset.h"

#include <algorithm>
#include <numeric>

#include "qdclgl/frame/containers/criterion.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/objects/position_walk.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Recordset)
QD_DEFINE_MEMBERS(Field)
QD_DEFINE_MEMBERS(Fields)

namespace {

[[noreturn]] void NoSuchField(std::string_view what) {
  throw Error(error_number::kFieldNotFound, "Recordset", "No field " + std::string(what) + ".");
}

[[noreturn]] void NoCurrentRow() {
  throw Error(error_number::kNoCurrentRow, "Recordset", "There is no current row.");
}

[[noreturn]] void BadArguments(std::string why) {
  throw Error(error_number::kBadArguments, "Recordset", std::move(why));
}

// A column by name or by position from 0.
Long PositionOf(const Recordset& recordset, const Variant& index) {
  if (index.IsString()) return recordset.FieldPosition(index.TextView());
  const Long position = CLng(index);
  recordset.FieldName(position);  // raises 3265 outside
  return position;
}

// The Vector that stands for several, null for one value.
Ref<Vector> ListIn(const Variant& value) {
  if (!value.IsObject()) return nullptr;
  return Ref<Vector>(dynamic_cast<Vector*>(value.ObjectPointer()));
}

// The columns that are meant by one index or by a Vector of them.
std::vector<Long> PositionsOf(const Recordset& recordset, const Variant& indexes) {
  const Ref<Vector> list = ListIn(indexes);
  if (!list) return {PositionOf(recordset, indexes)};
  std::vector<Long> positions;
  // An index that is an object is asked for its own value, by which the list may change.
  for (std::size_t i = 0; i < list->size(); ++i) {
    positions.push_back(PositionOf(recordset, Variant(list->at(i))));
  }
  return positions;
}

std::vector<Long> AllPositions(const Recordset& recordset) {
  std::vector<Long> positions(static_cast<std::size_t>(recordset.FieldCount()));
  std::iota(positions.begin(), positions.end(), 0);
  return positions;
}

}  // namespace

// ---- Recordset ----

Ref<Recordset> Recordset::Create(std::initializer_list<std::string_view> columns) {
  auto recordset = Make<Recordset>();
  for (const std::string_view column : columns) recordset->AppendField(column);
  recordset->Open();
  return recordset;
}

void Recordset::RequireOpen() const {
  if (!rows_->open) {
    throw Error(error_number::kObjectClosed, "Recordset", "The recordset is closed.");
  }
}

std::span<Variant> Recordset::CurrentRow() const {
  RequireOpen();
  if (position_ >= rows_->count || rows_->IsDeleted(position_)) NoCurrentRow();
  const std::size_t columns = rows_->columns->size();
  return std::span(rows_->cells).subspan(position_ * columns, columns);
}

void Recordset::AddNew(const Variant& FieldList, const Variant& Values) {
  if (FieldList.IsMissing() != Values.IsMissing()) {
    BadArguments("The fields of a new row and its values are given together.");
  }
  if (FieldList.IsMissing()) return BeginRow();
  const std::vector<Long> positions = PositionsOf(*this, FieldList);
  const Ref<Vector> list = ListIn(FieldList) ? ListIn(Values) : nullptr;
  std::vector<Variant> values;
  if (list) {
    for (std::size_t i = 0; i < list->size(); ++i) values.push_back(list->at(i));
  } else {
    values.push_back(Values);
  }
  if (values.size() != positions.size()) {
    BadArguments("A new row was given " + std::to_string(positions.size()) + " fields and " +
                 std::to_string(values.size()) + " values.");
  }
  BeginRow();
  for (std::size_t i = 0; i < values.size(); ++i) SetFieldValue(positions[i], std::move(values[i]));
  Update();
}

void Recordset::BeginRow() {
  AddRow(std::vector<Variant>(rows_->columns->size(), Variant(Null)));
  position_ = rows_->count - 1;
}

void Recordset::AddRow(std::vector<Variant> values) {
  RequireOpen();
  if (values.size() != rows_->columns->size()) {
    BadArguments("A row of " + std::to_string(rows_->columns->size()) + " columns was given " +
                 std::to_string(values.size()) + " values.");
  }
  rows_->cells.insert(rows_->cells.end(), std::make_move_iterator(values.begin()),
                      std::make_move_iterator(values.end()));
  ++rows_->count;
}

Ref<Recordset> Recordset::Clone(Long) {
  RequireOpen();
  auto clone = Make<Recordset>();
  clone->rows_ = rows_;
  clone->position_ = rows_->RowFrom(0);
  return clone;
}

void Recordset::Close() {
  position_ = 0;
  rows_ = Make<Rows>();  // last: what ends with the former rows may use the recordset
}

void Recordset::Delete(Long AffectRecords) {
  constexpr Long kCurrent = 1;
  if (AffectRecords != kCurrent) BadArguments("The current row alone is deleted, which is 1.");
  const std::span<Variant> row = CurrentRow();
  // Released when the row is gone: what ends with its values may use the recordset.
  const std::vector<Variant> values(std::make_move_iterator(row.begin()),
                                    std::make_move_iterator(row.end()));
  if (rows_->deleted.size() <= position_) rows_->deleted.resize(position_ + 1);
  rows_->deleted[position_] = true;
  ++rows_->deleted_count;
}

void Recordset::Find(std::string_view Criteria) {
  const CallingOut out(this);
  CurrentRow();
  const Criterion criterion(Criteria);
  const auto column = static_cast<std::size_t>(FieldPosition(criterion.column()));
  // A value that is an object is asked for its own value, which may move the cursor or add rows.
  const Ref<Rows> rows = rows_;
  const std::size_t columns = rows->columns->size();
  std::size_t position = position_;
  for (const std::size_t count = rows->count; position < count; ++position) {
    if (rows->IsDeleted(position)) continue;
    const Variant value = rows->cells[position * columns + column];
    if (criterion.IsMetBy(value)) break;
  }
  position_ = position;
}

Ref<Vector> Recordset::GetRows(Long row_count, const Variant& start, const Variant& indexes) {
  constexpr Long kAll = -1, kCurrent = 0, kFirst = 1, kLast = 2;
  if (row_count < 1 && row_count != kAll) BadArguments("So many rows are 1 or more, or all: -1.");
  const Long from = start.IsMissing() ? kCurrent : CLng(start);
  if (from < kCurrent || from > kLast) {
    BadArguments("Rows are read from the current one (0), the first (1) or the last (2) on.");
  }
  const std::vector<Long> positions =
      indexes.IsMissing() ? AllPositions(*this) : PositionsOf(*this, indexes);
  if (from == kFirst) MoveFirst();
  if (from == kLast) MoveLast();
  if (Bof() || Eof()) NoCurrentRow();

  const auto new_list = [] {
    auto list = Make<Vector>();
    list->LowerBound(0);
    return list;
  };
  std::vector<Ref<Vector>> columns;
  for (std::size_t i = 0; i < positions.size(); ++i) columns.push_back(new_list());
  for (Long row = 0; row != row_count && !Eof(); ++row) {
    if (row >= kMostElements && row >= RecordCount()) {  // one of others may have no end
      throw Error(error_number::kOverflow, "Recordset",
                  "The recordset has more than " + std::to_string(kMostElements) + " rows.");
    }
    for (std::size_t i = 0; i < positions.size(); ++i) {
      columns[i]->Append(FieldValue(positions[i]));
    }
    MoveNext();
  }
  Ref<Vector> result = new_list();
  for (Ref<Vector>& column : columns) result->Append(Variant(std::move(column)));
  return result;
}

// Moves to the row at a position. Error 3021, and the cursor stays, when there is none.
void Recordset::MoveTo(std::size_t position) {
  RequireOpen();
  if (position >= rows_->count) NoCurrentRow();
  position_ = position;
}

void Recordset::MoveFirst() { MoveTo(rows_->RowFrom(0)); }

void Recordset::MoveLast() { MoveTo(rows_->RowBefore(rows_->count)); }

void Recordset::MoveNext() {
  RequireOpen();
  if (position_ != kBeforeFirst && position_ >= rows_->count) NoCurrentRow();
  position_ = rows_->RowFrom(position_ + 1);
}

void Recordset::MovePrevious() {
  RequireOpen();
  const std::size_t position = std::min(position_, rows_->count);
  if (position_ == kBeforeFirst || (position == rows_->count && rows_->IsEmpty())) NoCurrentRow();
  position_ = rows_->RowBefore(position);
}

void Recordset::Open() { rows_->open = true; }

void Recordset::Update() { CurrentRow(); }

Boolean Recordset::Bof() const {
  RequireOpen();
  return position_ == kBeforeFirst || rows_->IsEmpty();
}

Boolean Recordset::Eof() const {
  RequireOpen();
  return (position_ != kBeforeFirst && position_ >= rows_->count) || rows_->IsEmpty();
}

Ref<Fields> Recordset::Fields() const {
  return Make<qdclgl::Fields>(Ref<Recordset>(const_cast<Recordset*>(this)));
}

Long Recordset::RecordCount() const {
  RequireOpen();
  return static_cast<Long>(rows_->count - rows_->deleted_count);
}

Long Recordset::State() const { return rows_->open ? 1 : 0; }

Ref<Dictionary> Recordset::Row() const {
  return Dictionary::FromRow(rows_->columns, CurrentRow().data());
}

Long Recordset::FieldCount() const { return static_cast<Long>(rows_->columns->size()); }

String Recordset::FieldName(Long position) const {
  if (position < 0 || position >= Recordset::FieldCount()) NoSuchField(std::to_string(position));
  return rows_->columns->name(static_cast<std::uint32_t>(position));
}

Variant Recordset::FieldValue(Long position) const {
  Recordset::FieldName(position);
  return CurrentRow()[static_cast<std::size_t>(position)];
}

void Recordset::SetFieldValue(Long position, Variant value) {
  Recordset::FieldName(position);
  CurrentRow()[static_cast<std::size_t>(position)] = std::move(value);
}

void Recordset::AppendField(std::string_view name) {
  if (rows_->open) {
    BadArguments("Fields are appended before the recordset is opened.");
  }
  for (Long i = 0; i < Recordset::FieldCount(); ++i) {
    if (EqualsIgnoringAsciiCase(Recordset::FieldName(i), name)) {
      BadArguments("There is a field " + std::string(name) + " already.");
    }
  }
  rows_->columns = KeyList::Appended(std::move(rows_->columns), name);
}

Long Recordset::FieldPosition(std::string_view name) const {
  for (Long i = 0; i < FieldCount(); ++i) {
    if (EqualsIgnoringAsciiCase(FieldName(i), name)) return i;
  }
  NoSuchField(name);
}

// ---- Field and Fields ----

String Field::Name() const { return recordset_->FieldName(position_); }

Variant Field::Value() const { return recordset_->FieldValue(position_); }

void Field::Value(Variant value) { recordset_->SetFieldValue(position_, std::move(value)); }

void Fields::Append(std::string_view Name, Long, Long, Long) { recordset_->AppendField(Name); }

Ref<Enumerator> Fields::NewEnum() {
  return EnumerateByPosition([rows = recordset_] { return rows->FieldCount(); },
                             [rows = recordset_](std::size_t position) {
                               return Make<Field>(rows, static_cast<Long>(position));
                             });
}

Long Fields::Count() const { return recordset_->FieldCount(); }

Ref<Field> Fields::Item(const Variant& Index) const {
  return Make<Field>(recordset_, PositionOf(*recordset_, Index));
}

Ref<Dictionary> RowToDictionary(const Ref<Recordset>& rs) {
  const Ref<Recordset> held = rs;  // the caller's variable may change meanwhile
  return held->Row();
}

}  // namespace qdclgl

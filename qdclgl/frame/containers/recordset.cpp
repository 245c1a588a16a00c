#include "qdclgl/frame/containers/recordset.h"

#include "qdclgl/frame/containers/criterion.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Recordset)
QD_DEFINE_MEMBERS(Field)
QD_DEFINE_MEMBERS(Fields)

namespace {

class WalkFields final : public IWalkVariant {
 public:
  explicit WalkFields(Ref<Recordset> recordset) : recordset_(std::move(recordset)) {}
  std::string_view ClassName() const override { return "WalkFields"; }

  void Next(Variant& Item, Boolean& Done) override {
    if (position_ >= recordset_->FieldCount()) return;
    Item = Variant(Make<Field>(recordset_, position_++));
    Done = true;
  }
  void Skip(Boolean& Done) override {
    if (position_ >= recordset_->FieldCount()) return;
    ++position_;
    Done = true;
  }
  void Reset() override { position_ = 0; }

 private:
  Ref<Recordset> recordset_;
  Long position_ = 0;
};

[[noreturn]] void NoSuchField(std::string_view what) {
  throw Error(error_number::kFieldNotFound, "Recordset", "No field " + std::string(what) + ".");
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
  if (position_ >= rows_->count) {
    throw Error(error_number::kNoCurrentRow, "Recordset", "There is no current row.");
  }
  const std::size_t columns = rows_->columns->size();
  return std::span(rows_->cells).subspan(position_ * columns, columns);
}

void Recordset::AddNew() {
  AddRow(std::vector<Variant>(rows_->columns->size(), Variant(Null)));
  position_ = rows_->count - 1;
}

void Recordset::AddRow(std::vector<Variant> values) {
  RequireOpen();
  if (values.size() != rows_->columns->size()) {
    throw Error(error_number::kBadArguments, "Recordset",
                "A row of " + std::to_string(rows_->columns->size()) + " columns was given " +
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
  return clone;
}

void Recordset::Close() {
  position_ = 0;
  rows_ = Make<Rows>();  // last: what ends with the former rows may use the recordset
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
    const Variant value = rows->cells[position * columns + column];
    if (criterion.IsMetBy(value)) break;
  }
  position_ = position;
}

void Recordset::MoveFirst() {
  const std::size_t before = std::exchange(position_, 0);
  try {
    CurrentRow();
  } catch (...) {
    position_ = before;
    throw;
  }
}

void Recordset::MoveNext() {
  CurrentRow();
  ++position_;
}

void Recordset::Open() { rows_->open = true; }

void Recordset::Update() { CurrentRow(); }

Boolean Recordset::Bof() const {
  RequireOpen();
  return rows_->count == 0;
}

Boolean Recordset::Eof() const {
  RequireOpen();
  return position_ >= rows_->count;
}

Ref<Fields> Recordset::Fields() const {
  return Make<qdclgl::Fields>(Ref<Recordset>(const_cast<Recordset*>(this)));
}

Long Recordset::RecordCount() const {
  RequireOpen();
  return static_cast<Long>(rows_->count);
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
    throw Error(error_number::kBadArguments, "Recordset",
                "Fields are appended before the recordset is opened.");
  }
  for (Long i = 0; i < Recordset::FieldCount(); ++i) {
    if (EqualsIgnoringAsciiCase(Recordset::FieldName(i), name)) {
      throw Error(error_number::kBadArguments, "Recordset",
                  "There is a field " + std::string(name) + " already.");
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

Ref<Enumerator> Fields::NewEnum() { return EnumFactory().CreateEnum(Make<WalkFields>(recordset_)); }

Long Fields::Count() const { return recordset_->FieldCount(); }

Ref<Field> Fields::Item(const Variant& Index) const {
  if (Index.IsString()) {
    return Make<Field>(recordset_, recordset_->FieldPosition(Index.TextView()));
  }
  const Long position = CLng(Index);
  recordset_->FieldName(position);  // raises 3265 outside
  return Make<Field>(recordset_, position);
}

Ref<Dictionary> RowToDictionary(const Ref<Recordset>& rs) {
  const Ref<Recordset> held = rs;  // the caller's variable may change meanwhile
  return held->Row();
}

}  // namespace qdclgl

#include "qdclgl/automation/foreign_recordset.h"

namespace qdclgl::automation {

namespace {

// More rows than a 32-bit program has room for.
constexpr Long kMostRows = 10 * kMostElements;

Ref<Object> ColumnOf(Object& columns, Long position) {
  return AnswerAs<Object>(columns, "Item", position);
}

String NameOf(Object& column) { return AnswerAs<String>(column, "Name"); }

}  // namespace

// The foreign object holds itself during a call; what is called last needs no more of this one.

Ref<Recordset> ForeignRecordset::Clone(Long LockType) {
  return AnswerAs<Recordset>(*rows_, "Clone", LockType);
}

void ForeignRecordset::Close() { rows_->Call("Close"); }

void ForeignRecordset::Delete(Long AffectRecords) { rows_->Call("Delete", AffectRecords); }

void ForeignRecordset::Find(std::string_view Criteria) { rows_->Call("Find", Criteria); }

void ForeignRecordset::MoveFirst() { rows_->Call("MoveFirst"); }

void ForeignRecordset::MoveLast() { rows_->Call("MoveLast"); }

void ForeignRecordset::MoveNext() { rows_->Call("MoveNext"); }

void ForeignRecordset::MovePrevious() { rows_->Call("MovePrevious"); }

void ForeignRecordset::Open() { rows_->Call("Open"); }

void ForeignRecordset::Update() { rows_->Call("Update"); }

Boolean ForeignRecordset::Bof() const { return AnswerAs<Boolean>(*rows_, "BOF"); }

Boolean ForeignRecordset::Eof() const { return AnswerAs<Boolean>(*rows_, "EOF"); }

Long ForeignRecordset::RecordCount() const {
  return NumberOf(*rows_, "RecordCount", -1, kMostRows);
}

Long ForeignRecordset::State() const { return AnswerAs<Long>(*rows_, "State"); }

void ForeignRecordset::BeginRow() { rows_->Call("AddNew"); }

Ref<Dictionary> ForeignRecordset::Row() const {
  const Ref<Object> columns = Columns();
  const Long count = CountOf(*columns);
  Ref<Dictionary> row = Dictionary::Create(static_cast<std::size_t>(count));
  for (Long i = 0; i < count; ++i) {
    const Ref<Object> column = ColumnOf(*columns, i);
    row->Put(NameOf(*column), column->Get("Value"));
  }
  row->ResetModified();
  return row;
}

Long ForeignRecordset::FieldCount() const { return CountOf(*Columns()); }

String ForeignRecordset::FieldName(Long position) const { return NameOf(*Column(position)); }

Variant ForeignRecordset::FieldValue(Long position) const { return Column(position)->Get("Value"); }

void ForeignRecordset::SetFieldValue(Long position, Variant value) {
  Column(position)->Let("Value", std::move(value));
}

void ForeignRecordset::AppendField(std::string_view name) {
  constexpr Long kVariantColumn = 12;
  Columns()->Call("Append", name, kVariantColumn);
}

Ref<Object> ForeignRecordset::Columns() const { return AnswerAs<Object>(*rows_, "Fields"); }

Ref<Object> ForeignRecordset::Column(Long position) const { return ColumnOf(*Columns(), position); }

}  // namespace qdclgl::automation

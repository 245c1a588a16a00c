// A recordset of another library.
#pragma once

#include "qdclgl/automation/foreign_object.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::automation {

// Each member is a late-bound call, whose errors pass as they are. It outlives its calls: what is
// called may take it away from where it is held.
class ForeignRecordset final : public Recordset, public Foreign {
 public:
  explicit ForeignRecordset(Ref<ForeignObject> rows) : rows_(std::move(rows)) {}

  IUnknown* object() const override { return rows_->object(); }

  Ref<Recordset> Clone(Long LockType) override;
  void Close() override;
  void Delete(Long AffectRecords) override;
  void Find(std::string_view Criteria) override;
  void MoveFirst() override;
  void MoveLast() override;
  void MoveNext() override;
  void MovePrevious() override;
  void Open() override;
  void Update() override;
  Boolean Bof() const override;
  Boolean Eof() const override;
  // -1 where it doesn't know.
  Long RecordCount() const override;
  Long State() const override;

  void BeginRow() override;
  Ref<Dictionary> Row() const override;
  Long FieldCount() const override;
  String FieldName(Long position) const override;
  Variant FieldValue(Long position) const override;
  void SetFieldValue(Long position, Variant value) override;
  void AppendField(std::string_view name) override;

 private:
  Ref<Object> Columns() const;
  Ref<Object> Column(Long position) const;

  Ref<ForeignObject> rows_;
};

}  // namespace qdclgl::automation

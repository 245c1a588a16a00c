#include "qdclgl/frame/entities/walkers.h"

namespace qdclgl {

void WalkRecordset::Attach(const Ref<Recordset>& Rs) {
  constexpr Long kLockTypeAsItIs = -1;
  m_Rs = Rs->Clone(kLockTypeAsItIs);
  Reset();
}

void WalkRecordset::Next(Variant& Item, Boolean& Done) {
  if (m_Rs->Eof()) return;
  Item = Variant(OnCreateObject(RowToDictionary(m_Rs)));
  m_Rs->MoveNext();
  Done = true;
}

void WalkRecordset::Skip(Boolean& Done) {
  if (m_Rs->Eof()) return;
  m_Rs->MoveNext();
  Done = true;
}

void WalkRecordset::Reset() {
  if (!(m_Rs->Eof() && m_Rs->Bof())) m_Rs->MoveFirst();
}

Ref<Dictionary> RowAt(const Ref<Vector>& vector, Long index) {
  Variant element = vector->Item(index);
  if (element.IsNothing()) {
    element = Variant(Make<Dictionary>());
    vector->Item(index, element);
  }
  return element.As<Dictionary>();
}

Ref<Vector> RecordsetToVector(const Ref<Recordset>& rs) {
  auto rows = Make<Vector>();
  for (; !rs->Eof(); rs->MoveNext()) rows->Append(Variant(RowToDictionary(rs)));
  return rows;
}

}  // namespace qdclgl

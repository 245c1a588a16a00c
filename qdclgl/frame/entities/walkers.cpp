#include "qdclgl/frame/entities/walkers.h"

#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl {

void WalkRecordset::Attach(const Ref<Recordset>& Rs) {
  constexpr Long kLockTypeAsItIs = -1;
  m_Rs = Rs->Clone(kLockTypeAsItIs);
  Reset();
}

void WalkRecordset::Next(Variant& Item, Boolean& Done) {
  const CallingOut out(this);
  if (m_Rs->Eof()) return;
  Item = Variant(OnCreateObject(RowToDictionary(m_Rs)));
  m_Rs->MoveNext();
  Done = true;
}

void WalkRecordset::Skip(Boolean& Done) {
  const CallingOut out(this);
  if (m_Rs->Eof()) return;
  m_Rs->MoveNext();
  Done = true;
}

void WalkRecordset::Reset() {
  if (!(m_Rs->Eof() && m_Rs->Bof())) m_Rs->MoveFirst();
}

Ref<Dictionary> RowAt(const Ref<Vector>& vector, Long index) {
  const Variant& element = vector->Find(index);
  if (!element.IsNothing()) return element.As<Dictionary>();
  auto row = Make<Dictionary>();
  vector->Item(index, Variant(row));
  return row;
}

Ref<Vector> RecordsetToVector(const Ref<Recordset>& rs) {
  auto rows = Make<Vector>();
  const Ref<Recordset> held = rs;
  for (; !held->Eof(); held->MoveNext()) rows->Append(Variant(RowToDictionary(held)));
  return rows;
}

}  // namespace qdclgl

#include "qdclgl/frame/entities/walkers.h"

#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl {

namespace {

[[noreturn]] void HasNoEnd() {
  throw Error(error_number::kOverflow, "QDCLGL",
              "The recordset has more than " + std::to_string(kMostElements) + " rows.");
}

}  // namespace

void WalkRecordset::Attach(const Ref<Recordset>& Rs) {
  constexpr Long kLockTypeAsItIs = -1;
  m_Rs = Rs->Clone(kLockTypeAsItIs);
  Reset();
}

void WalkRecordset::Next(Variant& Item, Boolean& Done) {
  const CallingOut out(this);
  if (IsAtEnd()) return;
  Item = Variant(OnCreateObject(RowToDictionary(m_Rs)));
  Pass();
  Done = true;
}

void WalkRecordset::Skip(Boolean& Done) {
  const CallingOut out(this);
  if (IsAtEnd()) return;
  Pass();
  Done = true;
}

void WalkRecordset::Reset() {
  const CallingOut out(this);
  if (!(m_Rs->Eof() && m_Rs->Bof())) m_Rs->MoveFirst();
  m_Passed = 0;
}

bool WalkRecordset::IsAtEnd() const {
  if (m_Rs->Eof()) return true;
  if (m_Passed >= kMostElements && m_Passed >= m_Rs->RecordCount()) HasNoEnd();
  return false;
}

void WalkRecordset::Pass() {
  m_Rs->MoveNext();
  ++m_Passed;
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
  for (; !held->Eof(); held->MoveNext()) {
    if (rows->Count() == kMostElements) HasNoEnd();
    rows->Append(Variant(RowToDictionary(held)));
  }
  return rows;
}

}  // namespace qdclgl

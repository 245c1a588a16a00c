// The walkers behind NewEnum. A recordset walker runs over a clone of a set's recordset and makes
// an entity of each row; a vector walker runs over a list of the data tree and makes a child that
// shares its row with the list.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/entities/properties.h"

namespace qdclgl {

// Runs over the rows of a recordset with a cursor of its own, from the first row on, wherever the
// given cursor stands. What is made of a row is the heir's. Error 6 behind more rows than both
// kMostElements and the recordset's count: a recordset of others may have no end.
class WalkRecordset : public IWalkVariant {
 public:
  void Attach(const Ref<Recordset>& Rs);

  void Next(Variant& Item, Boolean& Done) override;
  void Skip(Boolean& Done) override;
  void Reset() override;

 protected:
  virtual Ref<Object> OnCreateObject(const Ref<Dictionary>& Dict) = 0;

 private:
  bool IsAtEnd() const;
  void Pass();

  Ref<Recordset> m_Rs;
  Long m_Passed = 0;
};

// An object of a row: by Construct(row, transaction context), or by TakeRow of a class that keeps
// values of the row and not the row.
template <class T>
Ref<T> MakeOfRow(const Ref<Dictionary>& row, const Ref<Object>& xa) {
  auto object = Make<T>();
  if constexpr (requires { object->TakeRow(row, xa); }) {
    object->TakeRow(row, xa);
  } else {
    object->Construct(row, xa);
  }
  return object;
}

// Makes an `Entity` of each row.
template <class Entity>
class EntityWalker final : public WalkRecordset {
 public:
  std::string_view ClassName() const override { return "EntityWalker"; }

  void Attach(const Ref<Recordset>& Rs, const Ref<Object>& xa) {
    WalkRecordset::Attach(Rs);
    m_Xa = xa;
  }

 protected:
  Ref<Object> OnCreateObject(const Ref<Dictionary>& Dict) override {
    return MakeOfRow<Entity>(Dict, m_Xa);
  }

 private:
  Ref<Object> m_Xa;
};

// The row at `index` of a list; a hole becomes an empty row that stays in the list.
Ref<Dictionary> RowAt(const Ref<Vector>& vector, Long index);

// Attaches a `Child` to each row of a list and to the child flag of its position. The position has
// 16 bits: error 6 behind the 32,767th element.
template <class Child>
class VectorWalk {
 public:
  VectorWalk() = default;
  VectorWalk(const Ref<Vector>& vector, const Ref<ChangeFlag>& flag)
      : m_Vector(vector), m_ChangeFlag(flag) {}

  // The next child; False at the end, and `child` is then left alone. A child that nobody else
  // holds is not made anew, it moves on to the next row.
  bool Next(Ref<Child>& child) {
    if (!Skip()) return false;
    Ref<Dictionary> row = RowAt(m_Vector, m_Pos);
    Ref<ChangeFlag> flag = m_ChangeFlag->At(m_Pos);
    if (!child || child->IsShared()) child = Make<Child>();
    child->Attach(std::move(row), std::move(flag));
    return true;
  }
  bool Skip() {
    if (m_Pos >= m_Vector->Count()) return false;
    m_Pos = NextPosition(m_Pos);
    return true;
  }
  void Reset() { m_Pos = 0; }

 private:
  Ref<Vector> m_Vector;
  Ref<ChangeFlag> m_ChangeFlag;
  Integer m_Pos = 0;
};

// The same for an enumerator, whose elements are all made anew.
template <class Child>
class VectorWalker final : public IWalkVariant {
 public:
  std::string_view ClassName() const override { return "VectorWalker"; }

  void Init(const Ref<Vector>& vector, const Ref<ChangeFlag>& flag) { m_Walk = {vector, flag}; }

  void Next(Variant& Item, Boolean& Done) override {
    Ref<Child> child;
    if (!m_Walk.Next(child)) return;
    Item = Variant(child);
    Done = true;
  }
  void Skip(Boolean& Done) override {
    if (m_Walk.Skip()) Done = true;
  }
  void Reset() override { m_Walk.Reset(); }

 private:
  VectorWalk<Child> m_Walk;
};

// The rows from the cursor on as a new Vector of Dictionaries; leaves the cursor behind the last
// row. Error 6 for more than kMostElements rows.
Ref<Vector> RecordsetToVector(const Ref<Recordset>& rs);

}  // namespace qdclgl

#include "qdclgl/frame/entities/line_view.h"

#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/objects/variant_kind.h"

namespace qdclgl {

// ---- LineView ----

Boolean LineView::Modified() const { return Bag().ChangeFlag()->Modified(); }

// ---- LineListBase ----

void LineListBase::Attach(const Ref<Vector>& vector, const Ref<ChangeFlag>& flag) {
  m_Vector = vector;
  m_Flag = flag;
}

const Ref<Vector>& LineListBase::Lines() const {
  if (!m_Vector) RaiseError(error_number::kObjectNotSet);
  return m_Vector;
}

void LineListBase::Add(Variant index) {
  if (Count() >= kMostElements) RaiseError(error_number::kOverflow);
  if (index.IsMissing()) {
    Lines()->Append(Variant(Make<Dictionary>()));
  } else {
    if (!IsVariantKind(index, variant_kind::kWholeNumber)) RaiseError(error_number::kTypeMismatch);
    Insert(CLng(index), Make<Dictionary>());
  }
  m_Flag->Modified(true);
}

void LineListBase::Insert(Long index, const Ref<Dictionary>& line) {
  VectorInsertAt(Lines(), index, line);
}

void LineListBase::Remove(Long index) {
  const Ref self(this);
  const Variant removed = Lines()->Item(index);  // released when lines and flags agree again
  Lines()->Remove(index, 1);
  m_Flag->Remove(index);
}

Long LineListBase::Count() const { return Lines()->Count(); }

void LineListBase::Count(Long value) {
  if (value < 0) RaiseError(error_number::kSubscriptOutOfRange);
  if (value > kMostElements && value > Count()) RaiseError(error_number::kOverflow);
  const Ref self(this);
  while (Count() < value) Lines()->Append(Variant(Make<Dictionary>()));
  m_Flag->Modified(true);
  // The flags of the lines that are cut off stay behind: the list's own flag speaks for them.
  if (Count() > value) Lines()->Remove(value + 1, Count() - value);
}

Boolean LineListBase::Modified() const {
  Lines();
  return m_Flag->Modified();
}

}  // namespace qdclgl

// The lists of columns that a multi-column ledger has.
#pragma once

#include "qdclgl/frame/entities/line_view.h"
#include "qdclgl/frame/session/startup.h"

namespace qdclgl {

// A list of columns, into which one can be put at position 1 though it is empty. Callers can make
// an object of it, which nobody binds to a list.
template <class View>
class ColumnList : public LineList<View>, private ApartmentMember {
  QD_BASE_MEMBERS(LineList<View>)

 public:
  QD_INHERITED(Add)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Remove)
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<View>, Item, (Long index),
             "The column at a position from 1, with the change flag of that position. Error 9 "
             "outside.")
  QD_INHERITED(Modified)

 protected:
  void Insert(Long index, const Ref<Dictionary>& line) override {
    this->Lines()->Insert(index, Variant(line));
  }
};

template <class View>
Ref<View> ColumnList<View>::Item(Long index) const {
  const Ref<Dictionary> row = RowAt(this->Lines(), index);
  return ViewOf<View>(row, this->m_Flag->At(index));
}

}  // namespace qdclgl

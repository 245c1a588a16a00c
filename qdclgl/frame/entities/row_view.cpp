#include "qdclgl/frame/entities/row_view.h"

namespace qdclgl {

Ref<Properties> RowView::Properties() const {
  if (!m_Props && m_Bag.IsAttached()) m_Props = Make<qdclgl::Properties>(m_Bag);
  return m_Props;
}

void RowView::Reattach(const Ref<Dictionary>& row, Long track_state) {
  Bag().Attach(row, false, Nothing, track_state);
  if (m_Props) m_Props->Share(m_Bag);
}

}  // namespace qdclgl

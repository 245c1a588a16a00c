#include "qdclgl/frame/entities/row_view.h"

namespace qdclgl {

Ref<Properties> RowView::Properties() const {
  if (!m_Props && m_Bag.IsAttached()) m_Props = Make<qdclgl::Properties>(m_Bag);
  return m_Props;
}

}  // namespace qdclgl

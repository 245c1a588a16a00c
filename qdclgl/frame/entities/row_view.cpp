#include "qdclgl/frame/entities/row_view.h"

namespace qdclgl {

Ref<Properties> RowView::Properties() const { return m_Props; }

}  // namespace qdclgl

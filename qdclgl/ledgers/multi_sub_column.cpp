#include "qdclgl/ledgers/multi_sub_column.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(MultiSubColumn)
QD_DEFINE_MEMBERS(MultiSubColumnSet)

}  // namespace qdclgl

#include "qdclgl/masterdata/sett_type.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(SettType)
QD_DEFINE_MEMBERS(SettTypeSet)

const EntityProtocol& SettType::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLSettType.SettTypeInfo",
      .update_component = "QDSVGLSettType.SettTypeUpdate",
      .id_key = kIdKey,
  };
  return kProtocol;
}

const SetProtocol& SettTypeSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLSettType.SettTypeInfo",
      .update_component = "QDSVGLSettType.SettTypeUpdate",
      .text_key_method = "GetDetailByNumber",
      .asks_for_nothing = true,
  };
  return kProtocol;
}

}  // namespace qdclgl

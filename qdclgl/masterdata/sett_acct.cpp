#include "qdclgl/masterdata/sett_acct.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(SettAcct)
QD_DEFINE_MEMBERS(SettAcctSet)

const EntityProtocol& SettAcct::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLSettAcct.SettAcctInfo",
      .update_component = "QDSVGLSettAcct.SettAcctUpdate",
      .id_key = kIdKey,
  };
  return kProtocol;
}

const SetProtocol& SettAcctSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLSettAcct.SettAcctInfo",
      .update_component = "QDSVGLSettAcct.SettAcctUpdate",
      .text_key_method = "GetDetailByNumber",
      .asks_for_nothing = true,
  };
  return kProtocol;
}

}  // namespace qdclgl

#include "qdclgl/masterdata/payment.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Payment)
QD_DEFINE_MEMBERS(PaymentSet)

const EntityProtocol& Payment::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLPayment.PaymentInfo",
      .update_component = "QDSVGLPayment.PaymentUpdate",
      .id_key = kIdKey,
  };
  return kProtocol;
}

const SetProtocol& PaymentSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLPayment.PaymentInfo",
      .update_component = "QDSVGLPayment.PaymentUpdate",
      .text_key_method = "GetDetailByNumber",
      .asks_for_nothing = true,
  };
  return kProtocol;
}

}  // namespace qdclgl

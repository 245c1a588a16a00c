// Auxiliary details of a voucher line: rows that name an item class, an item of it and a value.
// No server call is made here.
#pragma once

#include "qdclgl/frame/entities/line_view.h"

namespace qdclgl {

class VoucherDetail final : public LineView {
  QD_MEMBERS(VoucherDetail, LineView, Internal, "An auxiliary detail of a voucher line.")

 public:
  QD_FIELD(GetLet, Boolean, Detail, "FDetail", "The detail flag.", Clear(false))
  QD_FIELD(GetLet, Long, ItemClassID, "FItemClassID", "Id of the item class.", Clear(0))
  QD_FIELD(GetLet, String, ItemClassName, "FItemClassName", "Name of the item class.", Clear(""))
  QD_FIELD(GetLet, String, ItemClassNumber, "FItemClassNumber", "Number of the item class.",
           Clear(""))
  QD_FIELD(GetLet, String, ItemFullName, "FItemFullName", "Full name of the item.", Clear(""))
  QD_FIELD(GetLet, Long, ItemID, "FItemID", "Id of the item.", Clear(0))
  QD_FIELD(GetLet, String, ItemName, "FItemName", "Name of the item.", Clear(""))
  QD_FIELD(GetLet, String, ItemNumber, "FItemNumber", "Number of the item.", Clear(""))
  QD_PROPERTY(Get, Boolean, Modified,
              "Whether the flag that the detail reports to was set: the flag of its position for a "
              "detail from a walk, the flag that all share for a detail from Item.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, String, Value, "FValue", "The free value of the detail.", Clear(""))
};

class VoucherDetailSet final : public LineList<VoucherDetail> {
  QD_MEMBERS(VoucherDetailSet, LineList<VoucherDetail>, Internal,
             "The auxiliary details of one voucher line.")

 public:
  QD_INHERITED(Add)
  QD_METHOD(Ref<VoucherDetail>, FindItem, (Variant ItemClassKey),
            "The first detail of the item class with that number (a text, case respected) or id (a "
            "number, rounded); Nothing when there is none.")
  QD_INHERITED(NewEnum)
  QD_INHERITED(Remove)
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<VoucherDetail>, Item, (Long index),
             "The detail at a position from 1. All details reached this way share the change flag "
             "of the list. Error 9 outside.",
             DefaultMember)
};

using WalkVoucherDetail = VectorWalker<VoucherDetail>;

}  // namespace qdclgl

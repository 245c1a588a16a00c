// The list of vouchers: the way in. Finds a voucher by id or by year, period, group and number,
// makes and deletes vouchers, and posts them.
//
// Server components: QDSVGLVoucher.VoucherInfo reads, .VoucherUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity_set.h"
#include "qdclgl/vouchers/voucher.h"

namespace qdclgl {

class VoucherSet final : public EntitySet<Voucher> {
  QD_MEMBERS(VoucherSet, EntitySet<Voucher>, Creatable, "The list of vouchers.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(void, Cash, (Long VoucherID, Boolean Cashed),
            "Marks a voucher as cashed or takes it back; the server alone decides. Does nothing "
            "for id 0. Calls Cash.")
  QD_METHOD(void, Check, (Long VoucherID, Boolean Checked),
            "Checks a voucher or takes the check back; the server alone decides. Does nothing for "
            "id 0. Calls Check.")
  QD_METHOD(Ref<Voucher>, CreateNew,
            (Long nYear = {}, Variant Period = Missing, Variant Group = Missing,
             Variant Number = Missing),
            "A new voucher of that year (0 when left out) and, where given, period, group id and "
            "number; it is modified and not saved.")
  QD_METHOD(Long, ExistenceCheck,
            (Variant VoucherID = Missing, Variant nYear = Missing, Variant Period = Missing,
             Variant Group = Missing, Variant Number = Missing),
            "The id of the voucher with that id, or with that year, period, group and number; 0 "
            "when there is none or period, group and number are not all given. Calls "
            "ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_METHOD(Variant, GetLastVchDateThisPeriod, (),
            "Empty: a member without a body, kept for programs that call it.")
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_METHOD(void, Post, (Long VoucherID), "Posts a voucher; the server alone decides. Calls Post.")
  QD_METHOD(void, PostAll, (),
            "Does nothing: a member without a body, kept for programs that call it.")
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove,
            (Variant Key = Missing, Variant nYear = Missing, Variant Period = Missing,
             Variant Group = Missing, Variant Number = Missing),
            "Deletes the voucher of an id, or, without a key, of a year, period, group and number; "
            "the list keeps showing it until Refresh. Error 5 when there is none and for a text "
            "key. Calls Delete.")
  QD_METHOD(void, UnPost, (Long VoucherID),
            "Takes the posting of a voucher back; the server alone decides. Calls UnPost.")
  QD_METHOD(void, UnPostAll, (),
            "Does nothing: a member without a body, kept for programs that call it.")
  QD_INHERITED(Count)
  QD_INDEXED(Get, Ref<Voucher>, Item,
             (Variant Key = Missing, Long nYear = {}, Long Period = {}, String Group = {},
              Long Number = {}, Boolean ShowDeleted = false),
             "The voucher of an id (a number), read by GetDetail; with any other key or none the "
             "voucher of the year, period, group and number, read by GetDetailByNumber. An empty "
             "one when the server knows no such voucher.",
             DefaultMember)
  QD_INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
};

using WalkVoucherSet = EntityWalker<Voucher>;

}  // namespace qdclgl

// Voucher groups: the words that vouchers are filed under.
//
// Server components: QDSVGLVoucherGroup.VoucherGroupInfo reads, .VoucherGroupUpdate writes.
#pragma once

#include "qdclgl/frame/entities/entity.h"
#include "qdclgl/frame/entities/entity_set.h"

namespace qdclgl {

class VoucherGroup final : public Entity {
  QD_MEMBERS(VoucherGroup, Entity, Creatable, "A word that vouchers are filed under.")

 public:
  QD_INHERITED(CancelChanges)
  QD_INHERITED(Construct)
  QD_INHERITED(Refresh)
  QD_INHERITED(SaveChanges)
  QD_FIELD(GetLet, String, CRange, "FCRange",
           "A range text; stored for the server, never read here.")
  QD_FIELD(GetLet, String, DCRange, "FDCRange",
           "A range text; stored for the server, never read here.")
  QD_FIELD(GetLet, String, DRange, "FDRange",
           "A range text; stored for the server, never read here.")
  QD_PROPERTY(GetLet, Integer, LimitMulti,
              "Reads 1 when the stored value is true and 0 otherwise, whatever number was written. "
              "Key FLimitMulti.")
  QD_FIELD(GetLet, String, Name, "FName", "The group's name.")
  QD_FIELD(GetLet, String, NCRange, "FNCRange",
           "A range text; stored for the server, never read here.")
  QD_FIELD(GetLet, String, NDCRange, "FNDCRange",
           "A range text; stored for the server, never read here.")
  QD_FIELD(GetLet, String, NDRange, "FNDRange",
           "A range text; stored for the server, never read here.")
  QD_INHERITED(Properties)
  QD_FIELD(GetLet, Integer, Standard, "FStandard", "The standard flag.")
  QD_FIELD(GetLet, String, UUID, "UUID", "The group's global identifier.")
  QD_PROPERTY(Get, Long, VoucherGroupID, "The id of the group; 0 while it is not saved.")

 protected:
  const EntityProtocol& Protocol() const override;
};

class VoucherGroupSet final : public EntitySet<VoucherGroup> {
  QD_MEMBERS(VoucherGroupSet, EntitySet<VoucherGroup>, Creatable, "The list of voucher groups.")

 public:
  QD_INHERITED(ListOptions)
  QD_INHERITED(Filter)
  QD_INHERITED(Sort)
  QD_METHOD(Ref<VoucherGroup>, CreateNew, (Variant Name = Missing),
            "A new group, with that name when one is given; it is not saved.")
  QD_METHOD(Long, ExistenceCheck, (Variant VoucherGroupID = Missing, Variant Name = Missing),
            "The id of the group with that id or name, 0 when there is none or neither is given; "
            "the id goes first. Calls ExistenceCheck.")
  QD_INHERITED(GetCurrent)
  QD_INHERITED(GetNext)
  QD_INHERITED(NewEnum)
  QD_INHERITED(Refresh)
  QD_METHOD(void, Remove, (Variant Key, Long lngDelSign = 0),
            "Deletes the group of an id (a number) or a name (anything else); the list keeps "
            "showing it until Refresh. Error 5 when there is none. Calls Delete.")
  QD_INHERITED(Count)
  QD_INHERITED(Item)
  QD_INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
};

using WalkVoucherGroupSet = EntityWalker<VoucherGroup>;

}  // namespace qdclgl

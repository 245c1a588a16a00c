// Voucher groups: the words that vouchers are filed under.
//
// Server components: QDSVGLVoucherGroup.VoucherGroupInfo reads, .VoucherGroupUpdate writes.
#pragma once

#include "frame/entity.h"
#include "frame/entity_set.h"

namespace qdclgl {

class VoucherGroup final : public Entity {
  MEMBERS(VoucherGroup, Entity, Creatable, "A word that vouchers are filed under.")

 public:
  INHERITED(CancelChanges)
  INHERITED(Construct)
  INHERITED(Refresh)
  INHERITED(SaveChanges)
  FIELD(GetLet, String, CRange, "FCRange", "A range text; stored for the server, never read here.")
  FIELD(GetLet, String, DCRange, "FDCRange", "A range text; stored for the server, never read here.")
  FIELD(GetLet, String, DRange, "FDRange", "A range text; stored for the server, never read here.")
  PROPERTY(GetLet, Integer, LimitMulti, "Reads 1 when the stored value is true and 0 otherwise, whatever number was written. Key FLimitMulti.")
  FIELD(GetLet, String, Name, "FName", "The group's name.")
  FIELD(GetLet, String, NCRange, "FNCRange", "A range text; stored for the server, never read here.")
  FIELD(GetLet, String, NDCRange, "FNDCRange", "A range text; stored for the server, never read here.")
  FIELD(GetLet, String, NDRange, "FNDRange", "A range text; stored for the server, never read here.")
  INHERITED(Properties)
  FIELD(GetLet, Integer, Standard, "FStandard", "The standard flag.")
  FIELD(GetLet, String, UUID, "UUID", "The group's global identifier.")
  PROPERTY(Get, Long, VoucherGroupID, "The id of the group; 0 while it is not saved.")

 protected:
  const EntityProtocol& Protocol() const override;
};

class VoucherGroupSet final : public EntitySet<VoucherGroup> {
  MEMBERS(VoucherGroupSet, EntitySet<VoucherGroup>, Creatable, "The list of voucher groups.")

 public:
  INHERITED(ListOptions)
  INHERITED(Filter)
  INHERITED(Sort)
  METHOD(Ref<VoucherGroup>, CreateNew, (Variant Name = Missing), "A new group, with that name when one is given; it is not saved.")
  METHOD(Long, ExistenceCheck, (Variant VoucherGroupID = Missing, Variant Name = Missing), "The id of the group with that id or name, 0 when there is none or neither is given; the id goes first. Calls ExistenceCheck.")
  INHERITED(GetCurrent)
  INHERITED(GetNext)
  INHERITED(NewEnum)
  INHERITED(Refresh)
  METHOD(void, Remove, (Variant Key, Long lngDelSign = 0), "Deletes the group of an id (a number) or a name (anything else); the list keeps showing it until Refresh. Error 5 when there is none. Calls Delete.")
  INHERITED(Count)
  INHERITED(Item)
  INHERITED(RecordSet)

 protected:
  const SetProtocol& Protocol() const override;
};

using WalkVoucherGroupSet = EntityWalker<VoucherGroup>;

}  // namespace qdclgl

// Voucher groups: the words that vouchers are filed under.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// "QDSVGLVoucherGroup.VoucherGroupInfo": reads voucher groups.
class VoucherGroupInfo final : public Object {
  QD_MEMBERS(VoucherGroupInfo, Object, Creatable, "Reads voucher groups.")

 public:
  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& VoucherGroupID),
            "A voucher group, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view Name),
            "A voucher group by its name, Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}),
            "The voucher groups; bit 1 of ListOptions includes those marked deleted. BadFilter, "
            "BadSort.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& VoucherGroupID = Missing,
             const Variant& Name = Missing),
            "The id of the group with that id, or otherwise with that name; 0 when there is none.")
};

// "QDSVGLVoucherGroup.VoucherGroupUpdate": writes voucher groups; administrators only.
class VoucherGroupUpdate final : public Object {
  QD_MEMBERS(VoucherGroupUpdate, Object, Creatable, "Writes voucher groups.")

 public:
  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new group; its id and version come back in the row too. Errors: Required, "
            "NameTaken, BadValue.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& VoucherGroupID, const Ref<Dictionary>& dict),
            "Saves a group; the new version comes back in the row. Errors: NotFound, NoVersion, "
            "Changed, and those of Create.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& VoucherGroupID,
             std::string_view MachineName = "", std::string_view IPAddress = "",
             const Long& lngDelSign = {}),
            "With sign 0 removes a group, InUse when vouchers are filed under it; with any other "
            "marks it deleted. NotFound.")
};

}  // namespace qdclgl::server

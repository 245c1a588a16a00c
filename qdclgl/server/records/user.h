// The users of the books.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// "QDSVGLUser.UserInfo": a component of this server. Users have the columns FUserID, FVersion,
// FName, FRoles ("preparer, checker") and FDisabled. Their passwords never leave the server.
class UserInfo final : public Object {
  QD_MEMBERS(UserInfo, Object, Creatable, "Reads users.")

 public:
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const String& Filter = {}, const String& Sort = {}),
            "The users. BadFilter, BadSort.")
  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& UserID),
            "A user, Nothing when there is none.")
};

// "QDSVGLUser.UserUpdate": a component of this server. Some enabled administrator remains, whatever
// happens to users; a call that would leave none is refused as InUse.
class UserUpdate final : public Object {
  QD_MEMBERS(UserUpdate, Object, Creatable, "Writes users.")

 public:
  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new user, with the password under FPassword, none without the key; id and "
            "version come back in the row too. Administrators only. Errors: Required, NameTaken, "
            "BadValue.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& UserID, const Ref<Dictionary>& dict),
            "Saves a user, all but the password; the new version comes back in the row. "
            "Administrators only. Errors: NotFound, NoVersion, Changed, InUse, and those of "
            "Create.")
  QD_METHOD(void, SetPassword,
            (std::string_view PropsString, const Long& UserID, std::string_view Password),
            "Gives a user another password: oneself with id 0 or the own one, others by "
            "administrators. NotFound.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& UserID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes a user; vouchers and the audit trail keep the name. Administrators only. "
            "NotFound, InUse.")
};

}  // namespace qdclgl::server

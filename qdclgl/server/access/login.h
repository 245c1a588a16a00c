// Logging in and out, and the two session-store components (QDCMtsCacheService.CacheFacade and
// QDCPropsMgr.ShareProps) that answer from the session.
#pragma once

#include <string_view>

#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class SessionUpdate final : public Object {
  QD_MEMBERS(SessionUpdate, Object, Creatable, "Logs users in and out.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLSession.SessionUpdate";
  static constexpr MethodRight kRights[] = {{"Keep", {Role::kReader, "keep a session"}}};

  QD_METHOD(
      String, Login,
      (std::string_view ConnectionText, std::string_view UserName, std::string_view Password,
       Boolean Outer = false),
      "Makes a session of this process, in place of the one before, and returns its "
      "PropsString. With Outer the session store answers as at an outer login. A batch of this "
      "thread in these books is taken back, and so it is at the logout. Errors: LoginRefused, "
      "LoginDelayed, NoBooks, WrongSchema, BadConnectionText.")
  QD_METHOD(void, Logout, (std::string_view PropsString),
            "Ends the session, and rolls back its batch. NotLoggedIn when there is none.")
  QD_METHOD(String, Keep, (std::string_view PropsString, Long& Minutes),
            "Keeps the session beyond the end of this process, and returns a ticket by which "
            "Resume goes on with it on this machine. It ends after so many minutes, which for 0 "
            "become SessionMinutes of the books, the most that there can be; at its Logout; and "
            "when the user's password, roles or name change or the user is disabled or removed. "
            "Whoever has the ticket has the session. Errors: NotLoggedIn, BadValue, ReadOnly.")
  QD_METHOD(String, Resume, (std::string_view ConnectionText, std::string_view Ticket),
            "Goes on with a kept session in this process, in place of the one before, and returns "
            "its PropsString. Nothing is written. Errors: NotLoggedIn when it has ended, NoBooks, "
            "WrongSchema, BadConnectionText.")
};

class CacheFacade final : public Object {
  QD_MEMBERS(CacheFacade, Object, Creatable, "The session store's front.")

 public:
  static constexpr std::string_view kProgID = "QDCMtsCacheService.CacheFacade";

  QD_METHOD(Variant, GetItem, (Long ProcessID, std::string_view Key),
            "A session value of a process; IsOuterLogin is 1 for an outer login and 0 otherwise. "
            "Empty when there is none.")
};

class ShareProps final : public Object {
  QD_MEMBERS(ShareProps, Object, Creatable, "The session store of ordinary logins.")

 public:
  static constexpr std::string_view kProgID = "QDCPropsMgr.ShareProps";

  QD_METHOD(Variant, GetProperty, (Long ProcessID, std::string_view Key),
            "A session value of a process; Empty when there is none.")
};

}  // namespace qdclgl::server

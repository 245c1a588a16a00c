// Finding lines by what stands in them.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class LineInfo final : public Object {
  QD_MEMBERS(LineInfo, Object, Creatable, "Finds lines of vouchers.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLLine.LineInfo";
  static constexpr Right kRead{Role::kReader, "read vouchers"};
  static constexpr MethodRight kRights[] = {{"Find", kRead}};

  // What WhichState stands for.
  static constexpr Long kAll = 0, kPosted = 1, kNotPosted = 2;

  QD_METHOD(
      Ref<Recordset>, Find,
      (std::string_view PropsString, const String& Words, const String& Filter = {},
       const String& AccountNumber = {}, DateTime DateFrom = {}, DateTime DateTo = {},
       Long WhichState = {}, const String& ItemClassNumber = {}, const String& ItemNumber = {},
       Long First = {}, Long Count = {}),
      "The lines that have each of the words: in their text (or their voucher's, where they have "
      "none), their reference or their voucher's, the number or name of their account or of an "
      "item, as their amount, or as their day. Case is ignored; what stands in quotes is one word. "
      "On an account and those below it, of some days, posted (1) or not (2), and naming an item, "
      "where that is asked for; Filter is on the columns. By day and voucher, from the First line, "
      "counted from 1, at most Count. NotFound for the account, BadReference for a class or an "
      "item that there isn't, BadValue, BadFilter.")
};

}  // namespace qdclgl::server

// Who the session is. Its identity lives in process-wide stores that another component fills at
// login; every reading asks them again.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/objects/late_bound.h"

namespace qdclgl {

// The session's connection text, handed as first argument to almost every server method. "" when
// the session can't be found. Asks the session object of this apartment (property PropsString)
// where there is one, otherwise GetSessionProperty.
String GetPropsString();

// The session's user name, likewise (property UserName).
String GetSessionUserName();

// One value of the session of this process, Empty when it can't be had; raises nothing.
//
// Makes QDCMtsCacheService.CacheFacade and asks GetItem(process id, "IsOuterLogin"). At 1 the value
// comes from GetItem(process id, Key), for the fourteen keys of a session only; at 0 from
// GetProperty(process id, Key) of QDCPropsMgr.ShareProps; any other answer gives Empty. Each of the
// two is asked once for the kind of value and once for the value.
Variant GetSessionProperty(const String& Key);

// The value of one `Key=Value;` pair of a connection text; "" when the key is not found. The key
// matches without regard to case wherever it first stands, inside a longer key too. A "}" at the
// end of the value is dropped. Error 5 when no ";" follows the key or the delimiter.
String GetPropsValue(const String& Props, const String& Key, const String& Delimiter);

// The session object of this apartment. The library itself never sets one.
Ref<Object> SessionObject();
void SetSessionObject(const Ref<Object>& session);

}  // namespace qdclgl

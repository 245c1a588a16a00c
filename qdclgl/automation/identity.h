// The ids of the server: the library's, the classes', the interfaces'. Each is made from a name and
// is the same in every build, so that no list of ids is kept and no client has to be built anew.
#pragma once

#include <string_view>

#include "qdclgl/automation/com.h"

namespace qdclgl::automation {

// The name-based (version 5) UUID of a name, in the server's own namespace.
GUID IdOfName(std::string_view name);

const GUID& LibraryId();
inline constexpr WORD kLibraryMajor = 1;
inline constexpr WORD kLibraryMinor = 0;

// ISetXactContext as an interface of its own: SetTransactionContext(xa).
const IID& ContextInterfaceId();

// "{01234567-...}" as the registry writes it.
std::wstring IdText(const GUID& id);

}  // namespace qdclgl::automation

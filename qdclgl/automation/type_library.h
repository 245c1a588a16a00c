// The type library, made from the member rows: a dispinterface and a coclass for each class, and
// ISetXactContext.
#pragma once

#include <string>

#include "qdclgl/automation/com.h"
#include "qdclgl/automation/served_classes.h"

namespace qdclgl::automation {

// The place of the type library: beside the server, under its name.
std::wstring TypeLibraryPath();

// Writes it to a file, over an older one.
void WriteTypeLibrary(const std::wstring& path);

// The dispinterface and the coclass of a class, from the file that the registration wrote, or made
// on the spot where there is none.
Com<ITypeInfo> InterfaceInfo(const ServedClass& served);
Com<ITypeInfo> ClassInfo(const ServedClass& served);

// Forgets what the two above keep loaded.
void ReleaseTypeLibrary();

}  // namespace qdclgl::automation

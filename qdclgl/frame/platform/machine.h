// This machine's identity, as the library stamps it on what it saves.
#pragma once

#include <string>

#include "qdclgl/frame/values/values.h"

namespace qdclgl {

// The computer's name in upper case; "" on failure.
String GetMachineName();

// The computer's name as the system gives it, leading blanks dropped; "NoName" on failure or when
// it has more than 39 characters.
String GetComputerNameOrNoName();

// This machine's address text; "" on failure.
String GetIPAddress();

// The system directory with a backslash at its end; "" on failure.
String GetSystemDirectoryPath();

// Puts a "\" at the end of `Path` unless one stands there.
void AppendBackslash(String& Path);

}  // namespace qdclgl

// What the library asks of a compiler. Every public header reaches this one first.
#pragma once

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 202002L
#error "QDCLGL is a C++20 library: compile with -std=c++20 or newer."
// A file that isn't there ends the compilation, so that the line above stays the only complaint.
#include "compile with -std=c++20"
#endif

// The public classes of the library. Every face (automation, command line, the API table) is a walk
// over this list and the rows behind it.
#pragma once

#include <span>
#include <string_view>

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

std::span<const ClassTable* const> PublicClasses();

// The class of that name, case ignored; null when there is none.
const ClassTable* FindPublicClass(std::string_view name);

// A new object of a public class, as automation clients create "QDCLGL.<Class>". Error 429 for an
// unknown name and for a class whose objects come from other objects only.
Ref<Object> CreatePublicObject(std::string_view name);

}  // namespace qdclgl

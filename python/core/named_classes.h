// What the module offers by name.
#pragma once

#include <vector>

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::python {

// All public classes, and the containers of the frame.
std::vector<const ClassTable*> NamedClasses();

// Their names, those of the classes that have no table, and of the server's refusals: what
// `from qdclgl import *` gives of them.
std::vector<std::string> ExportedNames();

}  // namespace qdclgl::python

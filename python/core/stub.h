// The types of the module as type checkers and editors read them: the text of qdclgl/_core.pyi.
#pragma once

#include <string>

namespace qdclgl::python {

std::string StubText();

}  // namespace qdclgl::python

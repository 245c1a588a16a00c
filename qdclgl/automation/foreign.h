// Classes of the machine, for the library's late-bound calls. How their objects are held is told in
// crossing.h.
#pragma once

#include <string_view>

#include "qdclgl/frame/objects/object.h"

namespace qdclgl::automation {

// A new object of a class of the machine; Nothing when there is no such class. Raises what its
// creation reports.
Ref<Object> CreateForeign(std::string_view prog_id);

}  // namespace qdclgl::automation

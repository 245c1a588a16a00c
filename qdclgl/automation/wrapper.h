// The automation objects that stand before ours. How objects get there is told in crossing.h.
#pragma once

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/objects/object.h"

namespace qdclgl::automation {

// The wrapper of an object of ours, with a reference for the caller.
Com<IDispatch> Wrap(Object* object);

}  // namespace qdclgl::automation

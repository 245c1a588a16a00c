// The server components, each behind an object that gives the interpreter's lock away while the
// component is at work.
#pragma once

#include "qdclgl/frame/objects/object.h"

namespace qdclgl::python {

// Makes the server components known under their ProgIDs; but for the session stores, as a thread
// has the session that it has opened itself, or none.
void RegisterReleasedComponents();

// The component behind such an object; any other object itself.
Object& Behind(Object& object);

}  // namespace qdclgl::python

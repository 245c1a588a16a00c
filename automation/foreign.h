// Objects of others inside the library.
//
// An object of ours that comes back is itself again. A foreign recordset is worked through
// late-bound calls; a foreign Dictionary or Vector, told by the members it offers, is taken in by
// copy; any other object is held as it is and called by name. What is handed out again of the
// foreign ones that are held is the object that came in.
#pragma once

#include "automation/com.h"
#include "frame/late_bound.h"

namespace qdclgl::automation {

// An object as the library holds it; null for null.
Ref<Object> TakeIn(IUnknown* object);

// The object that an object of the library stands for, null when it is one of our own. The caller
// gets no reference of its own.
IUnknown* ForeignBehind(Object* object);

// A new object of a class of the machine; Nothing when there is no such class. Raises what its
// creation reports.
Ref<Object> CreateForeign(std::string_view prog_id);

}  // namespace qdclgl::automation

// How objects cross the edge, in both directions.
//
// Declared apart from what makes it so: a value may hold an object, and what stands before or
// behind an object passes values on.
#pragma once

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/objects/object.h"

namespace qdclgl::automation {

// Puts the automation object for `object` into an empty VARIANT: a foreign object as itself, an
// enumerator as an IEnumVARIANT, any other as its one wrapper, null for null. An object has the
// same wrapper for as long as anyone holds it, so that clients may ask whether two are the same.
void HandOut(Object* object, VARIANT* destination);

// The object behind a wrapper; null for what is no wrapper of this server's. Error kWrongThread.
Ref<Object> Unwrap(IUnknown* object);

// How a Dictionary or Vector of others becomes one of ours.
enum class Taking {
  // What a component answers with: a copy, and nothing else.
  kCopy,
  // What a caller hands over: a copy that stands for its original until something is written into
  // it. It is handed out as the original, and a copy of it is one of what the original holds then.
  kStandIn,
};

// An object as the library holds it; null for null. An object of ours that comes back is itself
// again; of others, a recordset is worked through late-bound calls; a Dictionary or Vector, told by
// the members it offers, is taken in as `taking` says, whatever lies in it by copy; any other
// object is held as it is and called by name. Error kWrongThread for an object of ours that belongs
// to another thread.
Ref<Object> TakeIn(IUnknown* object, Taking taking);

// The object that an object of the library stands for, null when it is one of our own or has become
// one. The caller gets no reference of its own.
IUnknown* ForeignBehind(Object* object);

}  // namespace qdclgl::automation

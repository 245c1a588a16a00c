// The automation objects that stand before ours.
#pragma once

#include "automation/com.h"
#include "frame/object.h"

namespace qdclgl::automation {

// Puts the automation object for `object` into an empty VARIANT: a foreign object as itself, an
// enumerator as an IEnumVARIANT, any other as its one wrapper, null for null. An object has the
// same wrapper for as long as anyone holds it, so that clients may ask whether two are the same.
void HandOut(Object* object, VARIANT* destination);

// The wrapper of an object of ours, with a reference for the caller.
Com<IDispatch> Wrap(Object* object);

// The object behind a wrapper; null for what is no wrapper of this server's.
Ref<Object> Unwrap(IUnknown* object);

}  // namespace qdclgl::automation

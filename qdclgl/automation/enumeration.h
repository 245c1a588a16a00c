// Enumerators as automation clients hold them.
#pragma once

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl::automation {

// Puts `enumerator` into an empty VARIANT as an IEnumVARIANT. `owner` and its `member` are what it
// came from: a clone is made by asking them again and going on to the same place.
void PutEnumeration(const Ref<Enumerator>& enumerator, const Ref<Object>& owner,
                    const ClassMember& member, VARIANT* destination);

}  // namespace qdclgl::automation

// The classes that clients can create, with what is registered of them: the creatable ones among
// the served classes, and the server components.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/objects/object.h"

namespace qdclgl::automation {

struct CreatableClass {
  std::string prog_id;  // "QDCLGL.Voucher"
  CLSID class_id;
  std::string_view help;
  // Containers and components stand in for those that a machine may have: theirs go first.
  bool yields;
  bool is_in_type_library;  // components are called late-bound only
  std::function<Ref<Object>()> make;

  std::string versioned_prog_id() const { return prog_id + ".1"; }
};

std::span<const CreatableClass> CreatableClasses();

// Null when there is none.
const CreatableClass* FindCreatableById(REFCLSID class_id);

}  // namespace qdclgl::automation

// The classes that automation clients see, with their ids: the public classes of the library, and
// the containers that a server component needs to answer it.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::automation {

struct ServedClass {
  const ClassTable* table;
  std::string prog_id;  // "QDCLGL.Voucher"
  // The containers stand in for a library that a machine may have: theirs goes first.
  bool yields;
  CLSID class_id;
  IID interface_id;
};

std::span<const ServedClass> ServedClasses();

// Null when there is none.
const ServedClass* FindClassOf(const ClassTable* table);
const ServedClass* FindClassNamed(std::string_view name);

}  // namespace qdclgl::automation

#include "qdclgl/automation/served_classes.h"

#include <algorithm>
#include <vector>

#include "qdclgl/api/class_list.h"
#include "qdclgl/automation/identity.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::automation {

namespace {

void Add(std::vector<ServedClass>& classes, const char* library, const ClassTable* table,
         bool yields) {
  const std::string library_name(library);
  const std::string class_name(table->name());
  const std::string prog_id = library_name + "." + class_name;
  classes.push_back(
      {table, prog_id, yields, IdOfName(prog_id), IdOfName(library_name + "._" + class_name)});
}

template <class Matches>
const ServedClass* FindClass(Matches matches) {
  const auto classes = ServedClasses();
  const auto found = std::find_if(classes.begin(), classes.end(), matches);
  return found != classes.end() ? &*found : nullptr;
}

}  // namespace

std::span<const ServedClass> ServedClasses() {
  static const std::vector<ServedClass> classes = [] {
    std::vector<ServedClass> all;
    for (const ClassTable* table : PublicClasses()) Add(all, "QDCLGL", table, false);
    for (const ClassTable* table : {&Dictionary::Table(), &Vector::Table(), &Recordset::Table(),
                                    &Fields::Table(), &Field::Table()}) {
      Add(all, "QDL", table, true);
    }
    return all;
  }();
  return classes;
}

const ServedClass* FindClassOf(const ClassTable* table) {
  return FindClass([&](const ServedClass& served) { return served.table == table; });
}

const ServedClass* FindClassNamed(std::string_view name) {
  return FindClass([&](const ServedClass& served) { return served.table->name() == name; });
}

}  // namespace qdclgl::automation

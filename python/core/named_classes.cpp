#include "python/core/named_classes.h"

#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::python {

std::vector<const ClassTable*> NamedClasses() {
  std::vector<const ClassTable*> classes(PublicClasses().begin(), PublicClasses().end());
  classes.insert(classes.end(), {&Dictionary::Table(), &Vector::Table(), &Collection::Table(),
                                 &Recordset::Table(), &Field::Table(), &Fields::Table()});
  return classes;
}

std::vector<std::string> ExportedNames() {
  std::vector<std::string> names = {"Object", "Enumerator"};
  for (const ClassTable* table : NamedClasses()) names.emplace_back(table->name());
  for (const server::RefusalRow& row : server::kRefusals) names.emplace_back(row.name);
  return names;
}

}  // namespace qdclgl::python

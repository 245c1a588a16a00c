#include "qdclgl/cli/journal_columns.h"

namespace qdclgl::cli {

namespace {

// The heading of this class of items, whatever it is called in the books.
constexpr Long kDepartments = 1;
constexpr std::string_view kDepartmentHeading = "department";

}  // namespace

ItemColumns::ItemColumns() : classes_(ItemClassesOfBooks()) {
  for (NamedItemClass& item_class : classes_) {
    item_class.others.push_back(item_class.number);
    const bool is_usual = item_class.id == kDepartments;
    columns_.push_back(
        {is_usual ? kDepartmentHeading : item_class.number, false, item_class.others});
  }
}

}  // namespace qdclgl::cli

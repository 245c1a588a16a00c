// The item classes of the books, by whatever people call them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

struct NamedItemClass {
  Long id;
  std::string number;
  std::string name;                 // in English, where it has one
  std::vector<std::string> others;  // its names in all languages
};

// Those of the books, by number. The library's session must be there.
std::vector<NamedItemClass> ItemClassesOfBooks();

// The class with this number or one of these names, as ItemClassNamed knows them; null when there
// is none.
const NamedItemClass* FindItemClass(const std::vector<NamedItemClass>& classes,
                                    std::string_view word);
// The class with this number or one of these names, or the plural of one in English; case is
// ignored. UsageError, with the nearest one, when there is none.
const NamedItemClass& ItemClassNamed(const std::vector<NamedItemClass>& classes,
                                     std::string_view word);

// The id of an item by its number; 0 when its class has none.
Long ItemNumbered(const NamedItemClass& item_class, const std::string& number);

// "there is no item \"C009\" of item class CUSTOMER"
std::string NoSuchItem(const NamedItemClass& item_class, std::string_view number);

}  // namespace qdclgl::cli

#include "qdclgl/cli/item_classes.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/masterdata/item.h"
#include "qdclgl/masterdata/item_class.h"

namespace qdclgl::cli {

namespace {

bool IsCalled(std::string_view name, std::string_view word) {
  return EqualsIgnoringAsciiCase(name, word) ||
         EqualsIgnoringAsciiCase(std::string(name) + "s", word);
}

}  // namespace

std::vector<NamedItemClass> ItemClassesOfBooks() {
  const auto set = Make<ItemClassSet>();
  set->Sort("FNumber");
  std::vector<NamedItemClass> classes;
  for (auto& item_class : set) {
    NamedItemClass named{item_class.ItemClassID(), item_class.Number(), item_class.Name_en(), {}};
    for (const std::string& name :
         {item_class.Name_en(), item_class.Name_Chs(), item_class.Name_Cht()}) {
      if (!name.empty()) named.others.push_back(name);
    }
    if (named.name.empty()) named.name = item_class.Name_Chs();
    classes.push_back(std::move(named));
  }
  return classes;
}

const NamedItemClass* FindItemClass(const std::vector<NamedItemClass>& classes,
                                    std::string_view word) {
  for (const NamedItemClass& item_class : classes) {
    if (IsCalled(item_class.number, word)) return &item_class;
  }
  for (const NamedItemClass& item_class : classes) {
    for (const std::string& name : item_class.others) {
      if (IsCalled(name, word)) return &item_class;
    }
  }
  return nullptr;
}

const NamedItemClass& ItemClassNamed(const std::vector<NamedItemClass>& classes,
                                     std::string_view word) {
  if (const NamedItemClass* item_class = FindItemClass(classes, word)) return *item_class;
  std::vector<std::string_view> words;
  for (const NamedItemClass& item_class : classes) words.push_back(item_class.number);
  for (const NamedItemClass& item_class : classes) {
    for (const std::string& name : item_class.others) {
      if (!EqualsIgnoringAsciiCase(name, item_class.number)) words.push_back(name);
    }
  }
  throw UsageError(NoSuch("item class", word, words));
}

Long ItemNumbered(const NamedItemClass& item_class, const std::string& number) {
  return Make<ItemSet>()->ExistenceCheck(Missing, item_class.id, number);
}

std::string NoSuchItem(const NamedItemClass& item_class, std::string_view number) {
  return "there is no item " + Quoted(number) + " of item class " + item_class.number;
}

}  // namespace qdclgl::cli

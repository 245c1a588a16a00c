// Items of a class with many fields, and the pages that are read of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "qdclgl/frame/values/values.h"

namespace bench {

// A class of twenty fields, six of which are searched by. Logged in to the books before.
qdclgl::Long MakeItemClass();

// Saves so many items of the class in batches, with a value in every field.
void SaveItems(qdclgl::Long item_class, int count);

// Pages of the first hundred items, of one class with so many.
struct ItemPage {
  std::string name;
  std::function<void()> read;
};
std::vector<ItemPage> ItemPages(qdclgl::Long item_class, int count);

}  // namespace bench

#include "qdclgl/frame/containers/collection.h"

#include <algorithm>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/position_walk.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Collection)

namespace {

std::string FoldKey(const Variant& key) { return ToUpper(CStr(key)); }

}  // namespace

std::size_t Collection::Locate(const Variant& index) const {
  if (index.IsString()) {
    const auto found = keys_.find(FoldKey(index));
    if (found == keys_.end()) RaiseError(error_number::kInvalidCall);
    const auto place = std::find_if(elements_.begin(), elements_.end(), [&](const auto& element) {
      return element.get() == found->second;
    });
    return static_cast<std::size_t>(place - elements_.begin());
  }
  const Long position = CLng(index);
  if (position < 1 || position > Count()) RaiseError(error_number::kSubscriptOutOfRange);
  return static_cast<std::size_t>(position - 1);
}

void Collection::Add(Variant Item, const Variant& Key, const Variant& Before) {
  auto element = std::make_unique<Element>();
  element->value = std::move(Item);
  // An object as a key is asked for its text, which may change the list: the place comes after it.
  if (!Key.IsMissing()) element->key = FoldKey(Key);
  const std::size_t place = Before.IsMissing() ? elements_.size() : Locate(Before);
  if (!Key.IsMissing() && !keys_.emplace(element->key, element.get()).second) {
    RaiseError(error_number::kDuplicateKey);
  }
  elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(place), std::move(element));
}

void Collection::Remove(const Variant& Index) {
  const std::size_t place = Locate(Index);
  const std::unique_ptr<Element> removed = std::move(elements_[place]);
  elements_.erase(elements_.begin() + static_cast<std::ptrdiff_t>(place));
  const auto key = keys_.find(removed->key);
  if (key != keys_.end() && key->second == removed.get()) keys_.erase(key);
}

Ref<Enumerator> Collection::NewEnum() {
  const Ref<Collection> self(this);
  return EnumerateByPosition(
      [self] { return self->elements_.size(); },
      [self](std::size_t position) { return self->elements_[position]->value; });
}

Long Collection::Count() const { return static_cast<Long>(elements_.size()); }

Variant Collection::Item(const Variant& Index) const {
  if (Index.IsString()) {
    const auto found = keys_.find(FoldKey(Index));
    if (found == keys_.end()) RaiseError(error_number::kInvalidCall);
    return found->second->value;
  }
  return elements_[Locate(Index)]->value;
}

}  // namespace qdclgl

#include "frame/dictionary.h"

#include <algorithm>

#include "frame/class_table.h"

namespace qdclgl {

DEFINE_MEMBERS(Dictionary)

// ---- KeyList ----

void KeyList::Append(const Key& key) {
  const std::uint32_t position = size();
  names_.push_back({std::string(key.text()), key.hash()});
  if (slots_.size() < 2 * names_.size()) {
    Reindex();
  } else {
    Index(position);
  }
}

void KeyList::Index(std::uint32_t position) {
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = names_[position].hash & mask;
  while (slots_[i].position != kNotFound) i = (i + 1) & mask;
  slots_[i] = {names_[position].hash, position};
}

void KeyList::Reindex() {
  std::size_t slots = 16;
  while (slots < 2 * names_.size()) slots *= 2;
  slots_.assign(slots, Slot{});
  for (std::uint32_t position = 0; position < size(); ++position) Index(position);
}

Ref<KeyList> KeyList::Appended(Ref<KeyList> list, const Key& key) {
  if (!list) list = Make<KeyList>();
  if (!list->IsShared()) {
    list->next_ = nullptr;
    list->Append(key);
    return list;
  }
  if (!list->next_ || list->next_->names_.back().text != key.text()) {
    auto next = Make<KeyList>(*list);
    next->Append(key);
    list->next_ = std::move(next);
  }
  return list->next_;
}

Ref<KeyList> KeyList::Removed(Ref<KeyList> list, std::uint32_t position) {
  if (list->IsShared()) list = Make<KeyList>(*list);
  list->next_ = nullptr;
  list->names_.erase(list->names_.begin() + position);
  list->Reindex();
  return list;
}

// ---- Dictionary ----

Ref<Dictionary> Dictionary::Create(std::size_t capacity) {
  return Ref<Dictionary>(new (capacity) Dictionary(capacity));
}

Ref<Dictionary> Dictionary::FromRow(const Ref<KeyList>& keys, const Variant* values) {
  Ref<Dictionary> row = Create(keys->size());
  row->keys_ = keys;
  std::uninitialized_copy_n(values, keys->size(), row->values_);
  row->has_counted_ = !std::all_of(values, values + keys->size(),
                                   [](const Variant& value) { return value.IsPlain(); });
  return row;
}

Dictionary::~Dictionary() {
  if (has_counted_) std::destroy_n(values_, size());
  if (values_ != Inline()) ::operator delete(values_);
}

Long Dictionary::Count() const { return static_cast<Long>(size()); }

String Dictionary::Name(Long Index) const {
  if (Index < 1 || Index > Count()) RaiseError(error_number::kSubscriptOutOfRange);
  return key_at(static_cast<std::uint32_t>(Index - 1));
}

Variant Dictionary::Value(std::string_view Key) const {
  const Variant* value = Find(Key);
  return value != nullptr ? *value : Variant();
}

void Dictionary::Value(std::string_view Key, Variant value) { Put(Key, std::move(value)); }

Boolean Dictionary::Lookup(std::string_view Key, const Variant&) { return Contains(Key); }

Variant Dictionary::ValueOrDefault(std::string_view Key, Variant Default) {
  const Variant* value = Find(Key);
  if (value != nullptr) return *value;
  return Default.IsMissing() ? Variant() : Default;
}

void Dictionary::Remove(std::string_view Key) {
  Erase(Key);
  MarkEdited();  // also when there was nothing to delete
}

Ref<Dictionary> Dictionary::Clone() { return CopyWith(nullptr); }

void Dictionary::SetTrackState(Long Flag) {
  track_nested_ = Flag != 0;
  ResetModified();
}

Boolean Dictionary::Modified() const {
  return own_modified() || (track_nested_ && AnyElementTouched());
}

void Dictionary::ResetModified() {
  ClearOwnModified();
  if (track_nested_) ClearElements();
}

void Dictionary::Put(const Key& key, Variant value) {
  MarkEdited();
  has_counted_ = has_counted_ || !value.IsPlain();
  const std::uint32_t position = keys_ ? keys_->Find(key) : KeyList::kNotFound;
  if (position == KeyList::kNotFound) {
    Append(key, std::move(value));
  } else {
    values_[position] = std::move(value);
  }
}

void Dictionary::Append(const Key& key, Variant value) {
  const std::uint32_t position = size();
  if (position == capacity_) Grow();
  keys_ = KeyList::Appended(std::move(keys_), key);
  new (values_ + position) Variant(std::move(value));
}

void Dictionary::Grow() {
  const std::uint32_t capacity = std::max<std::uint32_t>(8, capacity_ * 2);
  auto* values = static_cast<Variant*>(::operator new(capacity * sizeof(Variant)));
  // A value is moved by moving its bytes; nothing in it points at itself.
  if (size() > 0) std::memcpy(static_cast<void*>(values), values_, size() * sizeof(Variant));
  if (values_ != Inline()) ::operator delete(values_);
  values_ = values;
  capacity_ = capacity;
}

bool Dictionary::Erase(const Key& key) {
  const std::uint32_t position = keys_ ? keys_->Find(key) : KeyList::kNotFound;
  if (position == KeyList::kNotFound) return false;
  MarkEdited();
  const std::uint32_t last = size() - 1;
  const Variant removed = std::move(values_[position]);  // released when the row is whole again
  std::move(values_ + position + 1, values_ + last + 1, values_ + position);
  std::destroy_at(values_ + last);
  keys_ = KeyList::Removed(std::move(keys_), position);
  return true;
}

Ref<Dictionary> Dictionary::CopyWith(Variant (*copy_object)(const Variant&)) const {
  const std::uint32_t count = size();
  Ref<Dictionary> copy = Create(count);
  if (count == 0) return copy;
  if (!has_counted_) {
    std::memcpy(static_cast<void*>(copy->values_), values_, count * sizeof(Variant));
    copy->keys_ = keys_;
    return copy;
  }
  std::uninitialized_default_construct_n(copy->values_, count);
  copy->keys_ = keys_;
  copy->has_counted_ = true;
  for (std::uint32_t i = 0; i < count; ++i) {
    const Variant& value = values_[i];
    const bool by_copier = copy_object != nullptr && value.IsObject() && !value.IsNothing();
    copy->values_[i] = by_copier ? copy_object(value) : value;
  }
  return copy;
}

std::span<const Variant> Dictionary::Elements() const {
  if (!has_counted_) return {};
  return {values_, size()};
}

}  // namespace qdclgl

#include "qdclgl/frame/containers/dictionary.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/position_walk.h"
#include "qdclgl/frame/platform/thread_own.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Dictionary)

// ---- KeyList ----

void KeyList::Append(const RowKey& key) {
  const std::uint32_t position = size();
  names_.push_back({std::string(key.text()), key.ends(), key.hash()});
  if (slots_.size() < 2 * names_.size()) {
    Reindex();
  } else {
    Index(position);
  }
}

void KeyList::Index(std::uint32_t position) {
  std::size_t i = names_[position].hash & mask_;
  while (slots_[i].position != kNotFound) i = (i + 1) & mask_;
  slots_[i] = {names_[position].hash, position};
}

void KeyList::Reindex() {
  const std::size_t slots = std::max(kFewestSlots, std::bit_ceil(2 * names_.size()));
  slots_.assign(slots, Slot{});
  mask_ = slots - 1;
  for (std::uint32_t position = 0; position < size(); ++position) Index(position);
}

// The lists that this thread's lists have become by one more key. By them, rows to which the same
// keys are written in the same order come to share their lists, however they are made. When there
// are many, all are forgotten; the rows keep theirs.
class KeyList::Growths {
 public:
  ~Growths() { ended = true; }

  static Ref<KeyList> Appended(const Ref<KeyList>& list, const RowKey& key) {
    if (ended || (list && list->size() >= kLongestShared)) return Grown(list, key);
    return ThreadOwn<Growths>().Find(list, key);
  }

 private:
  struct Step {
    const KeyList* from;  // its longer list holds on to it, so that the address stays its own
    std::uint32_t key_hash;
    friend bool operator==(const Step&, const Step&) = default;
  };
  struct StepHash {
    std::size_t operator()(const Step& step) const {
      return std::hash<const KeyList*>()(step.from) ^ step.key_hash;
    }
  };

  static constexpr std::uint32_t kLongestShared = 64;
  static constexpr std::size_t kMost = 1024;
  // Rows may still be written when the thread's variables are gone already.
  static inline thread_local bool ended = false;

  Ref<KeyList> Find(const Ref<KeyList>& list, const RowKey& key) {
    if (lists_.size() == kMost) lists_.clear();
    Ref<KeyList>& longer = lists_[{list.get(), key.hash()}];
    if (!longer || !longer->IsAt(longer->size() - 1, key)) {
      longer = Grown(list, key);
      longer->shorter_ = list;
      for (KeyList* step = longer.get(); step != nullptr; step = step->shorter_.get()) {
        step->usual_size_ = std::max(step->usual_size_, longer->size());
      }
    }
    return longer;
  }

  static Ref<KeyList> Grown(const Ref<KeyList>& list, const RowKey& key) {
    auto longer = list ? Make<KeyList>(*list) : Make<KeyList>();
    longer->Append(key);
    return longer;
  }

  std::unordered_map<Step, Ref<KeyList>, StepHash> lists_;
};

Ref<KeyList> KeyList::Appended(Ref<KeyList> list, const RowKey& key) {
  if (!list || list->IsShared()) return Growths::Appended(list, key);
  list->shorter_ = nullptr;
  list->Append(key);
  return list;
}

Ref<KeyList> KeyList::Removed(Ref<KeyList> list, std::uint32_t position) {
  if (list->IsShared()) {
    Ref<KeyList> rest;
    for (std::uint32_t i = 0; i < list->size(); ++i) {
      if (i != position) rest = Appended(std::move(rest), list->name(i));
    }
    return rest;
  }
  list->shorter_ = nullptr;
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

Boolean Dictionary::Lookup(std::string_view Key, const Variant&) { return Contains(Key); }

Variant Dictionary::ValueOrDefault(std::string_view Key, Variant Default) {
  const Variant* value = Find(Key);
  if (value != nullptr) return *value;
  return Default.IsMissing() ? Variant() : Default;
}

void Dictionary::Remove(std::string_view Key) {
  MarkEdited();  // also when there is nothing to delete
  Erase(Key);
}

Ref<Dictionary> Dictionary::Clone() { return CopyWith(nullptr); }

void Dictionary::Add(std::string_view Key, Variant Item) {
  if (Contains(Key)) {
    throw Error(error_number::kDuplicateKey, "Dictionary",
                "The key " + std::string(Key) + " is there already.");
  }
  Put(Key, std::move(Item));
}

Boolean Dictionary::Exists(std::string_view Key) { return Contains(Key); }

Ref<Vector> Dictionary::Items() {
  auto items = Make<Vector>();
  items->LowerBound(0);
  for (std::uint32_t i = 0; i < size(); ++i) items->Append(value_at(i));
  return items;
}

Ref<Vector> Dictionary::Keys() {
  auto keys = Make<Vector>();
  keys->LowerBound(0);
  for (std::uint32_t i = 0; i < size(); ++i) keys->Append(key_at(i));
  return keys;
}

Ref<Enumerator> Dictionary::NewEnum() {
  return EnumerateByPosition([keys = keys_] { return keys ? keys->size() : 0; },
                             [keys = keys_](std::size_t position) {
                               return keys->name(static_cast<std::uint32_t>(position));
                             });
}

Boolean Dictionary::Modified() const {
  return own_modified() || (track_nested_ && AnyElementTouched());
}

void Dictionary::Append(const RowKey& key, Variant value) {
  const std::uint32_t position = size();
  Ref<KeyList> keys = KeyList::Appended(std::move(keys_), key);
  if (position == capacity_) Grow(std::max({8u, 2 * capacity_, keys->usual_size()}));
  keys_ = std::move(keys);
  has_counted_ = has_counted_ || !value.IsPlain();
  new (values_ + position) Variant(std::move(value));
}

void Dictionary::Grow(std::uint32_t capacity) {
  auto* values = static_cast<Variant*>(::operator new(capacity * sizeof(Variant)));
  // A value is moved by moving its bytes; nothing in it points at itself.
  if (capacity_ > 0) {
    std::memcpy(static_cast<void*>(values), values_, capacity_ * sizeof(Variant));
  }
  if (values_ != Inline()) ::operator delete(values_);
  values_ = values;
  capacity_ = capacity;
}

bool Dictionary::Erase(const RowKey& key) {
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
  Ref<Dictionary> result = Create(count);
  if (count == 0) return result;
  Dictionary& copy = *result;
  if (!has_counted_) {
    std::memcpy(static_cast<void*>(copy.values_), values_, count * sizeof(Variant));
    copy.keys_ = keys_;
    return result;
  }
  std::uninitialized_copy_n(values_, count, copy.values_);
  copy.keys_ = keys_;
  copy.has_counted_ = true;
  if (copy_object == nullptr) return result;
  // From here on this row may change or end: objects that copy themselves run code of their own.
  for (std::uint32_t i = 0; i < count; ++i) {
    Variant& value = copy.values_[i];
    if (value.IsObject() && !value.IsNothing()) value = copy_object(value);
  }
  return result;
}

std::span<const Variant> Dictionary::Elements() const {
  if (!has_counted_) return {};
  return {values_, size()};
}

}  // namespace qdclgl

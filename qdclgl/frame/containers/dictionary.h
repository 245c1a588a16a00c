// The row container of the data tree: an ordered map from column names to values.
//
// Keys match exactly, case included, and keep the order in which they were first written. Rows of
// one shape (copies of one row, rows of one recordset, rows whose keys were written in one order)
// share one list of keys; a row changes over to another list when it gains or loses a key.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/tracked.h"
#include "qdclgl/frame/objects/enumeration.h"
#include "qdclgl/frame/objects/members.h"
#include "qdclgl/frame/values/row_key.h"

namespace qdclgl {

// The keys of a row with their positions. Shared lists are never changed.
class KeyList {
 public:
  KeyList() : slots_(kFewestSlots), mask_(kFewestSlots - 1) {}
  KeyList(const KeyList& other) : names_(other.names_), slots_(other.slots_), mask_(other.mask_) {}
  KeyList& operator=(const KeyList&) = delete;

  std::uint32_t size() const { return static_cast<std::uint32_t>(names_.size()); }
  const std::string& name(std::uint32_t position) const { return names_[position].text; }

  // How many keys rows that began with these keys have come to, as far as that is known.
  std::uint32_t usual_size() const { return usual_size_; }

  static constexpr std::uint32_t kNotFound = UINT32_MAX;
  std::uint32_t Find(const RowKey& key) const {
    for (std::size_t i = key.hash() & mask_;; i = (i + 1) & mask_) {
      const Slot slot = slots_[i];
      if (slot.position == kNotFound) return kNotFound;
      if (slot.hash == key.hash() && IsAt(slot.position, key)) return slot.position;
    }
  }

  // The list with `key` behind the others, null being the list without keys: this list itself,
  // changed, when `list` is its only owner, otherwise a list that all rows of the thread share
  // which add that key to this one.
  static Ref<KeyList> Appended(Ref<KeyList> list, const RowKey& key);
  // Likewise the list without a key; null when no other was there.
  static Ref<KeyList> Removed(Ref<KeyList> list, std::uint32_t position);

  void AddRef() const { ++references_; }
  void Release() const {
    if (--references_ == 0) delete this;
  }

 private:
  struct Name {
    std::string text;
    RowKey::Ends ends;
    std::uint32_t hash;
  };
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t position = kNotFound;
  };

  class Growths;

  static constexpr std::size_t kFewestSlots = 16;

  bool IsShared() const { return references_ > 1; }
  bool IsAt(std::uint32_t position, const RowKey& key) const {
    const Name& name = names_[position];
    return key.Is(name.text, name.ends);
  }
  void Append(const RowKey& key);
  void Index(std::uint32_t position);
  void Reindex();

  mutable std::uint32_t references_ = 0;
  std::vector<Name> names_;
  std::vector<Slot> slots_;  // open addressing, a power of two, at most half full
  std::size_t mask_;         // the number of slots less one
  std::uint32_t usual_size_ = 0;
  Ref<KeyList> shorter_;  // for a list among the Growths: the one that it grew from
};

class Vector;

class Dictionary : public Tracked {
  QD_MEMBERS(Dictionary, Object, Creatable, "An ordered map from text keys to values.")

 public:
  QD_PROPERTY(Get, Long, Count, "The number of keys.")
  QD_INDEXED(Get, String, Name, (Long Index), "The key at a position from 1. Error 9 outside.")
  QD_INDEXED(GetLetSet, Variant, Value, (std::string_view Key),
             "The value of a key; Empty for a key that is absent. A write adds or replaces the "
             "key.",
             DefaultMember)
  QD_METHOD(Boolean, Lookup, (std::string_view Key, const Variant& Value = Missing),
            "True when the key exists. The second argument is accepted and left alone.")
  QD_METHOD(Variant, ValueOrDefault, (std::string_view Key, Variant Default = Missing),
            "The value when the key exists, otherwise the default; Empty without a default.")
  QD_METHOD(void, Remove, (std::string_view Key),
            "Deletes the key when it exists; marks the Dictionary modified in any case.")
  QD_METHOD(Ref<Dictionary>, Clone, (), "A shallow copy, unmodified, keys in the same order.")
  QD_METHOD(void, SetTrackState, (Long Flag),
            "Leaves the Dictionary unmodified. From then on Modified covers nested containers too "
            "(1) or the own keys only (0).")
  QD_PROPERTY(Get, Boolean, Modified,
              "Whether a key was written or removed since tracking was last set or reset.")
  QD_METHOD(void, ResetModified, (), "Clears the modified state.")
  QD_METHOD(void, Add, (std::string_view Key, Variant Item),
            "Adds a key with its value. Error 457 when the key is there already.")
  QD_METHOD(Boolean, Exists, (std::string_view Key), "True when the key exists.")
  QD_METHOD(Ref<Vector>, Items, (), "The values in the order of their keys, from index 0.",
            ArrayOf(1))
  QD_METHOD(Ref<Vector>, Keys, (), "The keys in order, from index 0.", ArrayOf(1))
  QD_METHOD(Ref<Enumerator>, NewEnum, (),
            "The keys in order, as they are now: what is added or removed later changes nothing.",
            Hidden)

  static constexpr Container kContainer = Container::kDictionary;

  Dictionary() : Tracked(kContainer) {}
  ~Dictionary() override;

  // An empty Dictionary with room for `capacity` keys in its own memory block.
  static Ref<Dictionary> Create(std::size_t capacity);
  // A row over a shared list of keys, `values` in the order of the keys.
  static Ref<Dictionary> FromRow(const Ref<KeyList>& keys, const Variant* values);

  // The value of a key in place, null when the key is absent; valid until the next write.
  const Variant* Find(const RowKey& key) const {
    if (!keys_) return nullptr;
    const std::uint32_t position = keys_->Find(key);
    return position == KeyList::kNotFound ? nullptr : values_ + position;
  }
  bool Contains(const RowKey& key) const { return Find(key) != nullptr; }
  void Put(const RowKey& key, Variant value) {
    const std::uint32_t position = keys_ ? keys_->Find(key) : KeyList::kNotFound;
    MarkEdited();
    if (position == KeyList::kNotFound) {
      Append(key, std::move(value));
    } else {
      has_counted_ = has_counted_ || !value.IsPlain();
      values_[position] = std::move(value);
    }
  }
  // False when the key was absent; that leaves the Dictionary unmodified.
  bool Erase(const RowKey& key);

  std::uint32_t size() const { return keys_ ? keys_->size() : 0; }
  const std::string& key_at(std::uint32_t position) const { return keys_->name(position); }
  const Variant& value_at(std::uint32_t position) const { return values_[position]; }

  // A copy, unmodified, in which each object is what `copy_object` makes of it; plain values and
  // Nothing are copied as they are.
  virtual Ref<Dictionary> CopyWith(Variant (*copy_object)(const Variant&)) const;

  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void* memory) { ::operator delete(memory); }

 private:
  static void* operator new(std::size_t size, std::size_t capacity) {
    return ::operator new(size + capacity * sizeof(Variant));
  }
  static void operator delete(void* memory, std::size_t) { ::operator delete(memory); }

  explicit Dictionary(std::size_t capacity)
      : Tracked(kContainer), capacity_(static_cast<std::uint32_t>(capacity)), values_(Inline()) {}

  std::span<const Variant> Elements() const override;
  Variant* Inline() { return reinterpret_cast<Variant*>(this + 1); }
  void Append(const RowKey& key, Variant value);
  void Grow(std::uint32_t capacity);

  bool track_nested_ = false;
  bool has_counted_ = false;  // some value may own a reference; otherwise copies are memory copies
  std::uint32_t capacity_ = 0;
  Ref<KeyList> keys_;  // null while there is no key
  Variant* values_ = nullptr;
};

inline Variant Dictionary::Value(std::string_view Key) const {
  const Variant* value = Find(Key);
  return value != nullptr ? *value : Variant();
}

inline void Dictionary::Value(std::string_view Key, Variant value) { Put(Key, std::move(value)); }

inline void Dictionary::SetTrackState(Long Flag) {
  track_nested_ = Flag != 0;
  ResetModified();
}

inline void Dictionary::ResetModified() {
  ClearOwnModified();
  if (track_nested_) ClearElements();
}

}  // namespace qdclgl

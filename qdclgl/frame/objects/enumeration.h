// Enumeration: walkers that know their elements, and the enumerator that callers hold.
#pragma once

#include <iterator>

#include "qdclgl/frame/objects/members.h"

namespace qdclgl {

// A walk over some elements. `Done` is set to True when an element was produced or passed and is
// left alone at the end, as is `Item`.
class IWalkVariant : public Object {
 public:
  virtual void Next(Variant& Item, Boolean& Done) = 0;
  virtual void Skip(Boolean& Done) = 0;
  virtual void Reset() = 0;
};

// What `NewEnum` returns: the automation enumerator over a walker.
class Enumerator final : public Object {
 public:
  static constexpr std::string_view kClassName = "IEnumVARIANT";
  std::string_view ClassName() const override { return kClassName; }

  explicit Enumerator(Ref<IWalkVariant> walker) : walker_(std::move(walker)) {}

  // False at the end; `item` is then left alone.
  bool Next(Variant& item);
  // Passes up to `count` elements. False when there were fewer.
  bool Skip(Long count);
  void Reset();

  // Called with "Next" (an element by reference; True or False), "Skip" and "Reset".
  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override;

 private:
  Ref<IWalkVariant> walker_;
};

// Makes enumerators, and answers what stands for a Null.
class EnumeratorFactory {
 public:
  Ref<Enumerator> CreateEnum(const Ref<IWalkVariant>& walker) const;
  // `value`, or `default_value` when it is Null.
  Variant NullToDefault(const Variant& value, const Variant& default_value) const;
};

// The factory of this apartment, made on first use.
const EnumeratorFactory& EnumFactory();

// The elements of a `Walk` in a loop. `bool Next(Ref<T>& element)` of the walk puts the next
// element into the place of the one before, or tells that there is none.
template <class T, class Walk>
class ElementIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;

  ElementIterator() = default;
  explicit ElementIterator(Walk walk) : walk_(std::move(walk)) { Step(); }

  T& operator*() const { return *element_; }
  T* operator->() const { return &*element_; }
  ElementIterator& operator++() {
    Step();
    return *this;
  }
  void operator++(int) { Step(); }
  friend bool operator==(const ElementIterator& left, std::default_sentinel_t) {
    return left.at_end_;
  }

 private:
  void Step() {
    at_end_ = !walk_.Next(element_);
    if (at_end_) element_ = nullptr;
  }

  Walk walk_;
  Ref<T> element_;
  bool at_end_ = true;
};

// The elements of an enumerator for C++ callers: `for (auto& group : set)`. The element lives until
// the loop moves on; keep it with Ref<T>(&element).
template <class T>
class EnumeratorRange {
  class Walk {
   public:
    Walk() = default;
    Walk(Ref<Enumerator> enumerator) : enumerator_(std::move(enumerator)) {}

    bool Next(Ref<T>& element) {
      Variant item;
      if (!enumerator_->Next(item)) return false;
      element = item.As<T>();
      return true;
    }

   private:
    Ref<Enumerator> enumerator_;
  };

 public:
  using Iterator = ElementIterator<T, Walk>;

  explicit EnumeratorRange(Ref<Enumerator> enumerator) : enumerator_(std::move(enumerator)) {}

  Iterator begin() const { return Iterator(enumerator_); }
  std::default_sentinel_t end() const { return {}; }

 private:
  Ref<Enumerator> enumerator_;
};

}  // namespace qdclgl

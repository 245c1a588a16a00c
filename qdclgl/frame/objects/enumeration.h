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

// The elements of an enumerator for C++ callers: `for (auto& group : set)`. The element lives until
// the loop moves on; keep it with Ref<T>(&element).
template <class T>
class EnumeratorRange {
 public:
  explicit EnumeratorRange(Ref<Enumerator> enumerator) : enumerator_(std::move(enumerator)) {}

  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;

    Iterator() = default;
    explicit Iterator(Ref<Enumerator> enumerator) : enumerator_(std::move(enumerator)) { Step(); }

    T& operator*() const { return *element_; }
    T* operator->() const { return element_.get(); }
    Iterator& operator++() {
      Step();
      return *this;
    }
    void operator++(int) { Step(); }
    friend bool operator==(const Iterator& left, std::default_sentinel_t) {
      return left.enumerator_ == nullptr;
    }

   private:
    void Step() {
      Variant item;
      if (enumerator_->Next(item)) {
        element_ = item.As<T>();
      } else {
        enumerator_ = nullptr;
        element_ = nullptr;
      }
    }

    Ref<Enumerator> enumerator_;  // null at the end
    Ref<T> element_;
  };

  Iterator begin() const { return Iterator(enumerator_); }
  std::default_sentinel_t end() const { return {}; }

 private:
  Ref<Enumerator> enumerator_;
};

}  // namespace qdclgl

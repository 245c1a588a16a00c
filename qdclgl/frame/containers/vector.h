// The list container of the data tree. Lists of lines begin at index 1, as a new Vector does.
#pragma once

#include <vector>

#include "qdclgl/frame/containers/tracked.h"
#include "qdclgl/frame/objects/enumeration.h"
#include "qdclgl/frame/objects/members.h"

namespace qdclgl {

class Vector : public Tracked {
  QD_MEMBERS(Vector, Object, Creatable, "An indexed list of values.")

 public:
  QD_PROPERTY(Get, Long, Count, "The number of elements.")
  QD_PROPERTY(GetLet, Long, LowerBound, "The index of the first element, 1 in a new Vector.")
  QD_PROPERTY(Get, Long, UpperBound,
              "The index of the last element; one below LowerBound while the Vector is empty.")
  QD_METHOD(void, Append, (Variant Item), "Adds an element behind the last one.")
  QD_METHOD(void, Insert, (Long Index, Variant Item),
            "Puts an element before the one at Index, or behind the last one. Error 9 outside.")
  QD_METHOD(void, Remove, (Long Index, Long Count = 1),
            "Removes elements from Index on. Error 9, and nothing is removed, when they are not "
            "all there.")
  QD_INDEXED(GetLetSet, Variant, Item, (Long Index), "The element at Index. Error 9 outside.",
             DefaultMember)
  QD_METHOD(Ref<Vector>, Clone, (), "A shallow copy, unmodified, with the same lower bound.")
  QD_METHOD(Ref<Enumerator>, NewEnum, (),
            "The elements in order, by their places: one that is added behind is come to, and when "
            "one is removed that was passed, the next is passed over.",
            Hidden)

  static constexpr Container kContainer = Container::kVector;

  Vector() : Tracked(kContainer) {}

  std::size_t size() const { return elements_.size(); }
  const Variant& at(std::size_t offset) const { return elements_[offset]; }
  // The element at an index in place, valid until the next write. Error 9 outside.
  const Variant& Find(Long index) const { return elements_[Offset(index, elements_.size())]; }

  // A copy in which each object is what `copy_object` makes of it; see Dictionary::CopyWith.
  virtual Ref<Vector> CopyWith(Variant (*copy_object)(const Variant&)) const;

 private:
  std::span<const Variant> Elements() const override { return elements_; }
  // The offset of an index. Error 9 unless it is below `end`.
  std::size_t Offset(Long index, std::size_t end) const {
    const std::int64_t offset = std::int64_t{index} - lower_bound_;
    if (offset < 0 || offset >= static_cast<std::int64_t>(end)) {
      RaiseError(error_number::kSubscriptOutOfRange);
    }
    return static_cast<std::size_t>(offset);
  }

  Long lower_bound_ = 1;
  std::vector<Variant> elements_;
};

inline Long Vector::Count() const { return static_cast<Long>(elements_.size()); }

}  // namespace qdclgl

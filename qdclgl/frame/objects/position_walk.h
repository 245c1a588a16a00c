// The walk over a list by the places of its elements: one that is added behind is come to, and when
// one is removed that was passed, the next is passed over.
#pragma once

#include <cstddef>
#include <utility>

#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl {

// `size()` is asked anew at each step, `element(position)` gives the one at a position from 0.
template <class Size, class Element>
class PositionWalk final : public IWalkVariant {
 public:
  PositionWalk(Size size, Element element) : size_(std::move(size)), element_(std::move(element)) {}
  std::string_view ClassName() const override { return "PositionWalk"; }

  void Next(Variant& Item, Boolean& Done) override {
    if (position_ >= static_cast<std::size_t>(size_())) return;
    Item = Variant(element_(position_++));
    Done = true;
  }
  void Skip(Boolean& Done) override {
    if (position_ >= static_cast<std::size_t>(size_())) return;
    ++position_;
    Done = true;
  }
  void Reset() override { position_ = 0; }

 private:
  Size size_;
  Element element_;
  std::size_t position_ = 0;
};

// An enumerator of that walk. What the two functions hold lives as long as it does.
template <class Size, class Element>
Ref<Enumerator> EnumerateByPosition(Size size, Element element) {
  return EnumFactory().CreateEnum(
      Make<PositionWalk<Size, Element>>(std::move(size), std::move(element)));
}

}  // namespace qdclgl

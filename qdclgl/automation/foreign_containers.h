// Containers of other libraries, taken in by copy.
#pragma once

#include "qdclgl/automation/crossing.h"
#include "qdclgl/automation/foreign_object.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::automation {

// Fills an empty container with what a foreign one holds. Errors: what the foreign object raises;
// 13 and 6 for a count, a bound or a key that can't be, 28 for one that holds itself, 7 for more
// elements in all than kMostCopies.
void Fill(Dictionary& copy, Object& foreign);
void Fill(Vector& copy, Object& foreign);

template <class Container>
Ref<Container> CopyOf(Object& foreign) {
  auto copy = Make<Container>();
  Fill(*copy, foreign);
  return copy;
}

// A copy of a container of others that stands for it, see Taking::kStandIn.
template <class Container>
class StandIn final : public Container, public Foreign {
 public:
  explicit StandIn(Ref<ForeignObject> original) : original_(std::move(original)) {
    Fill(*this, *original_);
  }

  IUnknown* object() const override {
    return this->WrittenWithin() ? nullptr : original_->object();
  }
  Ref<Container> CopyWith(Variant (*copy_object)(const Variant&)) const override {
    if (this->WrittenWithin()) return Container::CopyWith(copy_object);
    Ref<Container> now = CopyOf<Container>(*Ref(original_));
    return copy_object == nullptr ? now : now->CopyWith(copy_object);
  }

 private:
  Ref<ForeignObject> original_;
};

template <class Container>
Ref<Object> Taken(const Ref<ForeignObject>& foreign, Taking taking) {
  if (taking == Taking::kCopy) return CopyOf<Container>(*foreign);
  return Make<StandIn<Container>>(foreign);
}

}  // namespace qdclgl::automation

#include "qdclgl/frame/containers/vector.h"

#include <iterator>
#include <limits>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/position_walk.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Vector)

Long Vector::LowerBound() const { return lower_bound_; }

void Vector::LowerBound(Long value) { lower_bound_ = value; }

Long Vector::UpperBound() const {
  const std::int64_t bound = std::int64_t{lower_bound_} + Count() - 1;
  if (bound < std::numeric_limits<Long>::min() || bound > std::numeric_limits<Long>::max()) {
    RaiseError(error_number::kOverflow);
  }
  return static_cast<Long>(bound);
}

void Vector::Append(Variant Item) {
  elements_.push_back(std::move(Item));
  MarkEdited();
}

void Vector::Insert(Long Index, Variant Item) {
  const std::size_t offset = Offset(Index, elements_.size() + 1);
  elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(offset), std::move(Item));
  MarkEdited();
}

void Vector::Remove(Long Index, Long Count) {
  if (Count == 0) return;
  const std::size_t first = Offset(Index, elements_.size());
  if (Count < 0 || static_cast<std::size_t>(Count) > elements_.size() - first) {
    RaiseError(error_number::kSubscriptOutOfRange);
  }
  const auto from = elements_.begin() + static_cast<std::ptrdiff_t>(first);
  // Released when the list is whole again: what ends by it may use the list.
  const std::vector<Variant> removed(std::make_move_iterator(from),
                                     std::make_move_iterator(from + Count));
  elements_.erase(from, from + Count);
  MarkEdited();
}

Variant Vector::Item(Long Index) const { return Find(Index); }

void Vector::Item(Long Index, Variant value) {
  elements_[Offset(Index, elements_.size())] = std::move(value);
  MarkEdited();
}

Ref<Vector> Vector::Clone() { return CopyWith(nullptr); }

Ref<Enumerator> Vector::NewEnum() {
  const Ref<Vector> self(this);
  return EnumerateByPosition([self] { return self->size(); },
                             [self](std::size_t position) { return self->at(position); });
}

Ref<Vector> Vector::CopyWith(Variant (*copy_object)(const Variant&)) const {
  auto result = Make<Vector>();
  Vector& copy = *result;
  copy.lower_bound_ = lower_bound_;
  if (copy_object == nullptr) {
    copy.elements_ = elements_;
    return result;
  }
  // By position, each element held: objects that copy themselves run code of their own, by which
  // this list may change or end.
  const Ref self(this);
  const std::size_t count = elements_.size();
  copy.elements_.reserve(count);
  for (std::size_t i = 0; i < count && i < elements_.size(); ++i) {
    const Variant element = elements_[i];
    const bool by_copier = element.IsObject() && !element.IsNothing();
    copy.elements_.push_back(by_copier ? copy_object(element) : element);
  }
  return result;
}

}  // namespace qdclgl

#include "qdclgl/automation/foreign_containers.h"

#include <limits>

#include "qdclgl/automation/foreign_object.h"

namespace qdclgl::automation {

Ref<Dictionary> CopyOfDictionary(Object& foreign) {
  const CopyLevel level;
  const Long count = CountOf(foreign);
  Ref<Dictionary> copy = Dictionary::Create(static_cast<std::size_t>(count));
  for (Long i = 1; i <= count; ++i) {
    CopyLevel::CountElement();
    const auto key = AnswerAs<String>(foreign, "Name", i);
    copy->Put(key, foreign.Get("Value", key));
  }
  copy->ResetModified();
  copy->ClearTouched();
  return copy;
}

Ref<Vector> CopyOfVector(Object& foreign) {
  const CopyLevel level;
  auto copy = Make<Vector>();
  constexpr Long kLeast = std::numeric_limits<Long>::min() + 1;
  constexpr Long kMost = std::numeric_limits<Long>::max() - kMostElements;
  const Long first = NumberOf(foreign, "LowerBound", kLeast, kMost);
  const Long last = NumberOf(foreign, "UpperBound", first - 1, first - 1 + kMostElements);
  copy->LowerBound(first);
  for (Long i = first; i <= last; ++i) {
    CopyLevel::CountElement();
    copy->Append(foreign.Get("Item", i));
  }
  copy->ClearTouched();
  return copy;
}

}  // namespace qdclgl::automation

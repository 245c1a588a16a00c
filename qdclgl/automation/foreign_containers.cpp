#include "qdclgl/automation/foreign_containers.h"

#include <algorithm>
#include <limits>

namespace qdclgl::automation {

void Fill(Dictionary& copy, Object& foreign) {
  const CopyLevel level;
  const Long count = CountOf(foreign);
  for (Long i = 1; i <= count; ++i) {
    CopyLevel::CountElement();
    const auto key = AnswerAs<String>(foreign, "Name", i);
    copy.Put(key, foreign.Get("Value", key));
  }
  copy.EndFilling();
}

void Fill(Vector& copy, Object& foreign) {
  const CopyLevel level;
  // An empty list ends before it begins.
  constexpr Long kLeast = std::numeric_limits<Long>::min() + 1;
  constexpr Long kMost = std::numeric_limits<Long>::max();
  const Long first = NumberOf(foreign, "LowerBound", kLeast, kMost);
  const Long before = first - 1;
  const Long last =
      NumberOf(foreign, "UpperBound", before, before + std::min(kMostElements, kMost - before));
  copy.LowerBound(first);
  for (Long count = last - before, i = 0; i < count; ++i) {
    CopyLevel::CountElement();
    copy.Append(foreign.Get("Item", first + i));
  }
  copy.EndFilling();
}

}  // namespace qdclgl::automation

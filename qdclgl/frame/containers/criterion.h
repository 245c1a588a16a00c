// The criterion of a recordset's Find: `Column op literal`, op one of = <> < > <= >= like.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/objects/variant.h"

namespace qdclgl {

class Criterion {
 public:
  // A literal is a number, a text in single quotes (a quote inside is doubled) or a date between #
  // signs. Error 3001 with a description for anything else, an undoubled apostrophe included.
  explicit Criterion(std::string_view text);

  const std::string& column() const { return column_; }

  // Compares as everywhere in the library (conversions.h); a Null meets no criterion. `like`
  // compares texts in which * and % stand for any run of characters.
  bool IsMetBy(const Variant& value) const;

 private:
  enum class Operator { kEqual, kNotEqual, kLess, kGreater, kAtMost, kAtLeast, kLike };

  std::string column_;
  Operator operator_;
  Variant literal_;
};

}  // namespace qdclgl

#include "qdclgl/frame/containers/criterion.h"

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

[[noreturn]] void Refuse(std::string_view criterion, std::size_t position, const char* wanted) {
  throw Error(error_number::kBadArguments, "Recordset",
              "The criterion \"" + std::string(criterion) + "\" needs " + wanted + " at position " +
                  std::to_string(position + 1) + ".");
}

bool IsNameCharacter(char c) {
  return (c >= '0' && c <= '9') || (AsciiToLower(c) >= 'a' && AsciiToLower(c) <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool Matches(std::string_view text, std::string_view pattern) {
  // On a mismatch the latest wildcard takes one character more.
  std::size_t t = 0, p = 0, star = std::string_view::npos, taken = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%')) {
      star = p++;
      taken = t;
    } else if (p < pattern.size() && pattern[p] == text[t]) {
      ++p;
      ++t;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      t = ++taken;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%')) ++p;
  return p == pattern.size();
}

}  // namespace

Criterion::Criterion(std::string_view text) {
  std::size_t at = 0;
  const auto skip_blanks = [&] {
    while (at < text.size() && text[at] == ' ') ++at;
  };
  const auto take = [&](std::string_view token) {
    if (!EqualsIgnoringAsciiCase(text.substr(at, token.size()), token)) return false;
    at += token.size();
    return true;
  };
  const auto take_until = [&](char end, const char* wanted) {
    const std::size_t first = at;
    const std::size_t last = text.find(end, first);
    if (last == std::string_view::npos) Refuse(text, text.size(), wanted);
    at = last + 1;
    return text.substr(first, last - first);
  };

  skip_blanks();
  if (take("[")) {
    column_ = take_until(']', "a closing bracket");
  } else {
    const std::size_t first = at;
    while (at < text.size() && IsNameCharacter(text[at])) ++at;
    column_ = text.substr(first, at - first);
  }
  if (column_.empty()) Refuse(text, at, "a column name");

  skip_blanks();
  constexpr std::pair<std::string_view, Operator> kOperators[] = {
      {"<>", Operator::kNotEqual}, {"<=", Operator::kAtMost},  {">=", Operator::kAtLeast},
      {"=", Operator::kEqual},     {"<", Operator::kLess},     {">", Operator::kGreater},
      {"like ", Operator::kLike},  {"like'", Operator::kLike},
  };
  const auto* found = std::begin(kOperators);
  while (found != std::end(kOperators) && !take(found->first)) ++found;
  if (found == std::end(kOperators)) Refuse(text, at, "an operator (= <> < > <= >= like)");
  operator_ = found->second;
  if (found->first.back() == '\'') --at;

  skip_blanks();
  const std::size_t literal = at;
  if (take("'")) {
    std::string content(take_until('\'', "a closing quote"));
    while (at < text.size() && text[at] == '\'') {
      ++at;
      content += '\'';
      content += take_until('\'', "a closing quote");
    }
    literal_ = Variant(content);
  } else if (take("#")) {
    try {
      literal_ = CDate(Variant(take_until('#', "a closing #")));
    } catch (const Error& error) {
      if (error.number() == error_number::kBadArguments) throw;
      Refuse(text, literal, "a date");
    }
  } else {
    while (at < text.size() && text[at] != ' ') ++at;
    const std::string_view number = text.substr(literal, at - literal);
    try {
      literal_ = CDbl(Variant(number));
    } catch (const Error&) {
      Refuse(text, literal, "a number, a text in quotes or a date");
    }
  }
  if (operator_ == Operator::kLike && !literal_.IsString())
    Refuse(text, literal, "a text in quotes");

  skip_blanks();
  if (at != text.size()) Refuse(text, at, "its end");
}

bool Criterion::IsMetBy(const Variant& value) const {
  if (operator_ == Operator::kLike) {
    return !value.IsNull() && Matches(ConcatenatedText(value), literal_.TextView());
  }
  const std::partial_ordering order = Compare(value, literal_);
  if (order == std::partial_ordering::unordered) return false;
  switch (operator_) {
    case Operator::kEqual: return order == 0;
    case Operator::kNotEqual: return order != 0;
    case Operator::kLess: return order < 0;
    case Operator::kGreater: return order > 0;
    case Operator::kAtMost: return order <= 0;
    case Operator::kAtLeast: return order >= 0;
    case Operator::kLike: break;
  }
  return false;
}

}  // namespace qdclgl

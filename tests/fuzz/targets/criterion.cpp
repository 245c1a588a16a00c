// Criteria of a recordset's Find: opposites, LIKE against a plain matcher, Find against a walk.
#include "qdclgl/frame/containers/criterion.h"

#include <vector>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/conversions.h"
#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl;
using fuzz::NumberOf;
using fuzz::Require;

bool IsLike(std::string_view text, std::string_view pattern) {
  if (pattern.empty()) return text.empty();
  const bool is_wild = pattern[0] == '*' || pattern[0] == '%';
  if (!is_wild) {
    return !text.empty() && text[0] == pattern[0] && IsLike(text.substr(1), pattern.substr(1));
  }
  return IsLike(text, pattern.substr(1)) || (!text.empty() && IsLike(text.substr(1), pattern));
}

std::string InQuotes(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += std::string(c == '\'' ? 2 : 1, c);
  return quoted + "'";
}

bool IsMet(std::string_view criterion, const Variant& value) {
  return Criterion(criterion).IsMetBy(value);
}

const std::vector<Variant>& Values() {
  static const std::vector<Variant> kValues = {
      Variant(),    Null,      true,          Long{0},
      Long{5},      -1.5,      Currency(100), DateTime::FromYmd(2024, 1, 31),
      "",           "5",       "it's",        "Receipts",
      "2024-01-31", "\xc3\xa4"};
  return kValues;
}

// A literal: the opposites of all operators.
void LookAtOpposites(std::string_view literal) {
  const auto with = [&](const char* sign) {
    return "c " + std::string(sign) + " " + std::string(literal);
  };
  if (NumberOf([&] { Criterion{with("=")}; }) != 0) return;
  for (const Variant& value : Values()) {
    const bool is_unordered = !IsMet(with("="), value) && !IsMet(with("<>"), value);
    Require(is_unordered || IsMet(with("<"), value) != IsMet(with(">="), value), "< is not >=");
    Require(is_unordered || IsMet(with(">"), value) != IsMet(with("<="), value), "> is not <=");
    Require(!is_unordered || !IsMet(with("<="), value), "what is unordered is not <=");
    Require((IsMet(with("<="), value) && IsMet(with(">="), value)) == IsMet(with("="), value),
            "= is <= and >=");
  }
}

void LookAtLike(std::string_view text, std::string_view pattern) {
  constexpr std::size_t kLongest = 14;  // the plain matcher takes its time
  if (text.size() > kLongest || pattern.size() > kLongest) return;
  Require(IsMet("c like " + InQuotes(pattern), Variant(text)) == IsLike(text, pattern),
          "LIKE is what the plain matcher says");
  Require(IsMet("c = " + InQuotes(text), Variant(text)), "a quoted text equals itself");
}

// Whatever the criterion: Find stands where a walk stands.
void LookAtFind(const std::string& text) {
  const std::int32_t refused = NumberOf([&] { Criterion{text}; });
  Require(refused == 0 || refused == error_number::kBadArguments, "a refusal is 3001");
  auto list = Make<Recordset>();
  const std::string column = refused == 0 ? Criterion(text).column() : "c";
  list->AppendField(column);
  list->Open();
  for (const Variant& value : Values()) list->AddRow({value});
  list->MoveFirst();
  const std::int32_t raised = NumberOf([&] { list->Find(text); });
  Require(raised == refused, "Find refuses what the criterion refuses");
  if (refused != 0) return;
  std::size_t place = 0;
  while (place < Values().size() && !IsMet(text, Values()[place])) ++place;
  Require(list->Eof() == (place == Values().size()), "Find ends where a walk ends");
  if (list->Eof()) return;
  Require(list->FieldValue(0).Type() == Values()[place].Type(), "Find finds what a walk finds");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::TextOf(data, size);
  LookAtFind(std::string(text));
  LookAtOpposites(text);
  const std::size_t end = std::min(text.find('\n'), text.size());
  LookAtLike(text.substr(0, end), text.substr(std::min(end + 1, text.size())));
  return 0;
}

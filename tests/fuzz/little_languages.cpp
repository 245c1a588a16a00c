#include "tests/fuzz/little_languages.h"

namespace qdclgl::fuzz {
namespace {

constexpr int kDeepest = 6;

std::string AnyLiteral(Choices& choices) {
  constexpr std::string_view kLiterals[] = {"0",
                                            "1",
                                            "-1",
                                            "2.5",
                                            "2024",
                                            "1e300",
                                            "99999999999999999999",
                                            "2147483648",
                                            "'x'",
                                            "''",
                                            "'it''s'",
                                            "'1000'",
                                            "'%'",
                                            "'a\\'",
                                            "'_\\%'",
                                            "'\xc3\xa4'",
                                            "'\xff'",
                                            "#2024-01-31#",
                                            "'2024-01-31'",
                                            "#2024-02-30#",
                                            "##",
                                            "TRUE",
                                            "false",
                                            "NULL",
                                            "-",
                                            "'",
                                            "'2024-01-31 13:05'"};
  return std::string(choices.Of(kLiterals));
}

std::string AnyCondition(Choices& choices, std::span<const std::string_view> columns, int depth) {
  constexpr std::string_view kOperators[] = {
      "=", "<>", "<", ">", "<=", ">=", "==", "LIKE", "NOT LIKE", " "};
  const std::string column(choices.Of(columns));
  const auto part = [&] { return AnyCondition(choices, columns, depth + 1); };
  switch (depth < kDeepest ? choices.Below(10) : choices.Below(4)) {
    case 0:
      return column + (choices.OneIn(2) ? " IN (" : " NOT IN (") + AnyLiteral(choices) +
             (choices.OneIn(2) ? ", " + AnyLiteral(choices) : "") + ")";
    case 1:
      return column + " " + std::string(choices.Of(kOperators)) + " " +
             std::string(choices.Of(columns));
    case 2: return column;
    case 4: return "(" + part() + ")";
    case 5: return "NOT " + part();
    case 6: return part() + " AND " + part();
    case 7: return part() + (choices.OneIn(2) ? " OR " : " or ") + part();
    default: return column + " " + std::string(choices.Of(kOperators)) + " " + AnyLiteral(choices);
  }
}

// One byte of the text goes, comes or changes, one time in three.
std::string MaybeBroken(Choices& choices, std::string text) {
  if (!choices.OneIn(3) || text.empty()) return text;
  const std::size_t at = choices.Below(text.size());
  const auto byte = static_cast<char>(choices.OneIn(2) ? "'()#,%\\ ;"[choices.Below(9)]
                                                       : static_cast<char>(choices.Next()));
  switch (choices.Below(3)) {
    case 0: text.erase(at, 1); break;
    case 1: text.insert(at, 1, byte); break;
    default: text[at] = byte;
  }
  return text;
}

}  // namespace

std::string AnyFilter(Choices& choices, std::span<const std::string_view> columns) {
  if (choices.OneIn(300)) {
    std::string deep(5000, '(');
    return deep + "FName = 1" + std::string(5000, ')');
  }
  if (choices.OneIn(100)) {
    std::string chain(choices.Of(columns));
    const std::string link = " " + std::string(choices.OneIn(2) ? "AND" : "OR") + " " + chain;
    for (std::size_t left = choices.Below(3000); left > 0; --left) chain += link;
    return chain;
  }
  return MaybeBroken(choices, AnyCondition(choices, columns, 0));
}

std::string AnySort(Choices& choices, std::span<const std::string_view> columns) {
  constexpr std::string_view kDirections[] = {"", " DESC", " ASC", " desc", " up"};
  std::string text;
  for (std::size_t left = choices.Below(4); left > 0; --left) {
    if (!text.empty()) text += ", ";
    text += std::string(choices.Of(columns)) + std::string(choices.Of(kDirections));
  }
  return MaybeBroken(choices, text);
}

}  // namespace qdclgl::fuzz

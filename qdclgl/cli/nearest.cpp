#include "qdclgl/cli/nearest.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

// How many letters are put in, left out, changed or swapped on the way from one word to the other.
std::size_t Distance(std::string_view from, std::string_view to) {
  // From the part of `from` read so far, and from those that are one and two letters shorter, to
  // each part of `to`.
  std::vector<std::size_t> row(to.size() + 1), above(row.size()), second_above(row.size());
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    second_above.swap(above);
    above.swap(row);
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t changed = above[j] + (from[i] == to[j] ? 0 : 1);
      row[j + 1] = std::min({changed, above[j + 1] + 1, row[j] + 1});
      const bool is_swap = i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j];
      if (is_swap) row[j + 1] = std::min(row[j + 1], second_above[j - 1] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::string_view Nearest(std::string_view word, std::span<const std::string_view> words) {
  constexpr std::size_t kLongestWord = 100;  // the effort grows with both lengths
  if (word.size() > kLongestWord) return {};
  std::string_view nearest;
  std::size_t least = std::clamp<std::size_t>(word.size() / 2, 1, 3) + 1;
  for (const std::string_view one : words) {
    const std::size_t distance = Distance(FoldAsciiCase(word), FoldAsciiCase(one));
    // With every letter changed nothing is left of the word.
    if (distance >= least || distance >= std::max(word.size(), one.size())) continue;
    least = distance;
    nearest = one;
  }
  return nearest;
}

std::string DidYouMean(std::string_view word, std::span<const std::string_view> words) {
  const std::string_view nearest = Nearest(word, words);
  return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

std::string NoSuch(std::string_view what, std::string_view word,
                   std::span<const std::string_view> words) {
  const std::string meant = DidYouMean(word, words);
  std::string text = "there is no " + std::string(what) + " " + Quoted(word);
  text += meant.empty() ? ";" : meant;
  text += text.ends_with('?') ? " There are" : " there are";
  for (const std::string_view one : words) {
    text.append(one == words.front() ? " " : ", ").append(one);
  }
  return text;
}

}  // namespace qdclgl::cli

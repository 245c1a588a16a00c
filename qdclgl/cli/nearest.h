// The word that a misspelt one was meant to be.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qdclgl::cli {

// The word that takes the fewest letters put in, left out, changed or swapped, case ignored; ""
// when all of them are too far away to be meant.
std::string_view Nearest(std::string_view word, std::span<const std::string_view> words);

// "; did you mean balance?", or nothing.
std::string DidYouMean(std::string_view word, std::span<const std::string_view> words);

// "there is no kind \"acounts\"; did you mean accounts? There are accounts, users" of "kind".
std::string NoSuch(std::string_view what, std::string_view word,
                   std::span<const std::string_view> words);

}  // namespace qdclgl::cli

// Which books people have before them, in words.
#pragma once

#include <string>

#include "qdclgl/frame/containers/dictionary.h"

namespace qdclgl::cli {

// "version 16, 12 vouchers, the last one 2024/12 General 3 of 2024-12-31, audit head 4-0f3a...", of
// what the server tells of whole books that it has copied.
std::string WhichBooks(const Dictionary& account);

}  // namespace qdclgl::cli

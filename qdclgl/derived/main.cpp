// Writes the derived parts of the files below a root, and names those that have changed.
#include <cstdio>
#include <exception>

#include "qdclgl/derived/derived.h"

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: qdclgl-derived ROOT\n", stderr);
    return 2;
  }
  try {
    using namespace qdclgl::derived;
    const std::filesystem::path root = arguments[1];
    for (const Part& part : DerivedParts(root)) {
      const bool is_new = part.name.empty() && !exists(root / part.file);
      if (!is_new && CommittedText(root, part) == part.text) continue;
      Write(root, part);
      std::printf("%s\n", part.Called().c_str());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qdclgl-derived: %s\n", error.what());
    return 1;
  }
}

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
    for (const Part& part : DerivedParts(arguments[1])) {
      if (CommittedText(arguments[1], part) == part.text) continue;
      Write(arguments[1], part);
      std::printf("%s\n", part.Called().c_str());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qdclgl-derived: %s\n", error.what());
    return 1;
  }
}

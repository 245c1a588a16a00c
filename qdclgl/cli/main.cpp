// qdclgl: the general ledger at the command line.
#include <unistd.h>

#include <iostream>

#include "qdclgl/cli/program.h"

int main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);
  const qdclgl::cli::Console console{std::cout, std::cerr, isatty(STDERR_FILENO) != 0,
                                     isatty(STDIN_FILENO) != 0 ? &std::cin : nullptr};
  return qdclgl::cli::Run({arguments + 1, arguments + count}, console);
}

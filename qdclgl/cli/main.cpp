// qdclgl: the general ledger at the command line.
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "qdclgl/cli/output.h"
#include "qdclgl/cli/program.h"

int main(int count, char** arguments) {
  using namespace qdclgl::cli;
  std::ios::sync_with_stdio(false);
  signal(SIGPIPE, SIG_IGN);
  Output output(STDOUT_FILENO);
  std::ostream out(&output);
  const Console console{out,
                        std::cerr,
                        isatty(STDERR_FILENO) != 0,
                        isatty(STDIN_FILENO) != 0 ? &std::cin : nullptr,
                        LookAt(STDOUT_FILENO),
                        &output};
  return Run({arguments + 1, arguments + count}, console);
}

// qdclgl: the general ledger at the command line.
#include <unistd.h>

#include <iostream>

#include "qdclgl/cli/output.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/system.h"

int main(int count, char** arguments) {
  using namespace qdclgl::cli;
  std::ios::sync_with_stdio(false);
  PrepareStandardStreams();
  Output output(STDOUT_FILENO);
  std::ostream out(&output);
  const Console console{out,
                        std::cerr,
                        IsTerminal(STDERR_FILENO),
                        IsTerminal(STDIN_FILENO) ? &std::cin : nullptr,
                        LookAt(STDOUT_FILENO),
                        &output};
  return Run({arguments + 1, arguments + count}, console);
}

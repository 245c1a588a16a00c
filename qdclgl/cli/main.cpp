// qdclgl: the general ledger at the command line.
#include <iostream>

#include "qdclgl/cli/output.h"
#include "qdclgl/cli/program.h"

int main(int count, char** arguments) {
  using namespace qdclgl::cli;
  const std::vector<std::string> words = BeginProgram(count, arguments);
  std::ios::sync_with_stdio(false);
  Output output(kStandardOutput), errors(kStandardError);
  std::ostream out(&output), err(&errors);
  err << std::unitbuf;
  const auto watched = TerminalOf(kStandardError);
  const Console console{out,
                        err,
                        watched && watched->obeys_escapes,
                        IsTerminal(kStandardInput) ? &std::cin : nullptr,
                        LookAt(kStandardOutput),
                        &output};
  return Run(words, console);
}

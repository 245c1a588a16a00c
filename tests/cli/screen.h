// Programs on a terminal of known size.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {

struct Screen {
  unsigned short rows = 24;
  unsigned short columns = 80;
  std::map<std::string, std::string> environment = {};
  std::string typed = {};
  std::string question = {};  // which is waited for before anything is typed
};

// What the program, or another one, shows there; "\r\n" is made "\n".
RunResult RunOnScreen(const Screen& screen, const std::vector<std::string>& arguments,
                      const std::string& program = QDCLGL_PROGRAM);

}  // namespace qdclgl::cli::testing

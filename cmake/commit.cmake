# Writes the commit that SOURCE stands at into the C++ file OUTPUT, which is left alone when it says
# so already:
#
#   cmake -D SOURCE=... -D OUTPUT=... -P commit.cmake
#
# A folder that only lies within the repository of something else has no commit of its own.
set(commit "")
find_program(GIT git)
if(GIT)
  execute_process(COMMAND ${GIT} -C ${SOURCE} rev-parse --show-prefix
                  OUTPUT_VARIABLE below RESULT_VARIABLE failed ERROR_QUIET
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT failed AND below STREQUAL "")
    execute_process(COMMAND ${GIT} -C ${SOURCE} describe --always --exclude=* --abbrev=12 --dirty=+
                    OUTPUT_VARIABLE commit ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  endif()
endif()

file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT [[
#include "qdclgl/cli/version_text.h"

namespace qdclgl::cli {

std::string_view BuiltFrom() { return "@commit@"; }

}  // namespace qdclgl::cli
]])

# Installs the library, moves the installed tree, and builds and runs a program against it.
#
#   cmake -D SOURCE_DIR=... -D BUILD_DIR=... -D GENERATOR=... -D COMPILER=... -P run.cmake
#
# SOURCE_DIR is the library's source tree, BUILD_DIR the build folder that it is installed from.

set(work ${BUILD_DIR}/consumer)
file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work})

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${work}/installed)
file(RENAME ${work}/installed ${work}/moved)

# Every header is below one folder, and no installed file knows where the library was built.
file(GLOB above RELATIVE ${work}/moved/include ${work}/moved/include/*)
if(NOT above STREQUAL "qdclgl")
  message(FATAL_ERROR "include/ holds more than the folder qdclgl: ${above}")
endif()
file(GLOB_RECURSE scripts ${work}/moved/*.cmake)
if(NOT scripts)
  message(FATAL_ERROR "no package files were installed")
endif()
foreach(script IN LISTS scripts)
  file(READ ${script} text)
  foreach(path IN ITEMS ${SOURCE_DIR} ${work}/installed)
    string(FIND "${text}" "${path}" at)
    if(NOT at EQUAL -1)
      message(FATAL_ERROR "${script} names ${path}")
    endif()
  endforeach()
endforeach()

file(READ ${SOURCE_DIR}/README.md readme)
string(REGEX MATCH "```cpp\n([^`]*)```" found "${readme}")
if(NOT found)
  message(FATAL_ERROR "README.md has no C++ example")
endif()
file(WRITE ${work}/readme_example.cpp "${CMAKE_MATCH_1}")

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer -B ${work}/build -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${work}/moved
    -DREADME_EXAMPLE=${work}/readme_example.cpp)
run(${CMAKE_COMMAND} --build ${work}/build)
run(${work}/build/consumer)
message("${output}")
run(${work}/build/readme-example)
message("${output}")

# Installs the library, moves the installed tree, and builds and runs programs against it: with the
# server and without, by CMake and by pkg-config, and with the sources in a folder of theirs.
#
#   cmake -D SOURCE_DIR=... -D BUILD_DIR=... -D GENERATOR=... -D COMPILER=... -D LAUNCHER=...
#         -P run.cmake
#
# SOURCE_DIR is the library's source tree, BUILD_DIR the build folder that it is installed from.

set(work ${BUILD_DIR}/consumer)
set(moved ${work}/moved)
set(programs ${SOURCE_DIR}/tests/consumer)
set(ENV{CMAKE_CXX_COMPILER_LAUNCHER} "${LAUNCHER}")
# As deep as the build folder, so that ccache knows what has been compiled there.
set(sources ${BUILD_DIR}-consumer)
file(REMOVE_RECURSE ${work} ${sources})
file(MAKE_DIRECTORY ${work})

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# Runs a program, which prints what its guide says.
function(run_as_in guide program)
  file(READ ${SOURCE_DIR}/docs/guides/${guide}.md page)
  string(REGEX MATCH "It prints\n\n```\n([^`]*)```" found "${page}")
  set(expected "${CMAKE_MATCH_1}")
  run(${program} ${ARGN})
  if(NOT found OR NOT output STREQUAL expected)
    message(FATAL_ERROR "${program} printed\n${output}in place of\n${expected}")
  endif()
  message("${program}: ${output}")
endfunction()

function(keep_books program)
  file(REMOVE ${work}/books.db)
  run_as_in(first-program ${program} ${work}/books.db)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${work}/installed)
file(RENAME ${work}/installed ${moved})

# Every header is below one folder, and no installed file knows where the library was built.
file(GLOB above RELATIVE ${moved}/include ${moved}/include/*)
if(NOT above STREQUAL "qdclgl")
  message(FATAL_ERROR "include/ holds more than the folder qdclgl: ${above}")
endif()
file(GLOB_RECURSE scripts ${moved}/*.cmake ${moved}/*.pc)
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

# What people read is there, and the program is the one of this version.
foreach(file IN ITEMS bin/qdclgl share/man/man1/qdclgl.1
             share/man/man1/qdclgl-import.1 share/doc/qdclgl/README.md
        share/doc/qdclgl/docs/cli.md share/doc/qdclgl/copyright
        share/bash-completion/completions/qdclgl share/zsh/site-functions/_qdclgl
        share/fish/vendor_completions.d/qdclgl.fish)
  if(NOT EXISTS ${moved}/${file})
    message(FATAL_ERROR "${file} was not installed")
  endif()
endforeach()
run(${moved}/bin/qdclgl --version)
message("${output}")

file(READ ${SOURCE_DIR}/README.md readme)
string(REGEX MATCH "```cpp\n([^`]*)```" found "${readme}")
if(NOT found)
  message(FATAL_ERROR "README.md has no C++ example")
endif()
file(WRITE ${work}/readme_example.cpp "${CMAKE_MATCH_1}")

function(build folder)
  run(${CMAKE_COMMAND} -S ${programs} -B ${folder} -G ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${COMPILER}
      -DREADME_EXAMPLE=${work}/readme_example.cpp ${ARGN})
  run(${CMAKE_COMMAND} --build ${folder})
  run(${folder}/consumer)
  set(output "${output}" PARENT_SCOPE)
endfunction()

build(${work}/core -DWITH_SERVER=OFF -DCMAKE_PREFIX_PATH=${moved})
message("${output}")
run(${work}/core/readme-example)
message("${output}")
run(${work}/core/first_steps)
message("${output}")
run_as_in(own-component ${work}/core/own_component)
build(${work}/server -DCMAKE_PREFIX_PATH=${moved})
keep_books(${work}/server/keep_books)
build(${sources} -DQDCLGL_FOLDER=${SOURCE_DIR} -DCMAKE_BUILD_TYPE=Release
      -DQDCLGL_WARNINGS_AS_ERRORS=ON)
keep_books(${sources}/keep_books)

# Without CMake, by pkg-config.
file(GLOB_RECURSE pkgconfig ${moved}/qdclgl-server.pc)
cmake_path(GET pkgconfig PARENT_PATH pkgconfig)
set(pkg ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkgconfig} pkg-config)
function(build_by_pkgconfig package program)
  run(${pkg} --cflags ${package})
  separate_arguments(flags UNIX_COMMAND "${output}")
  run(${pkg} --libs ${package})
  separate_arguments(libraries UNIX_COMMAND "${output}")
  run(${COMPILER} -std=c++20 ${flags} ${SOURCE_DIR}/examples/${program}.cpp -o ${work}/${program}
      ${libraries})
endfunction()
build_by_pkgconfig(qdclgl own_component)
run_as_in(own-component ${work}/own_component)
build_by_pkgconfig(qdclgl-server keep_books)
keep_books(${work}/keep_books)

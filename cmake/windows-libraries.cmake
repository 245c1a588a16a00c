# The libraries that the server components need, for Windows: built here from
# Debian's sources, under the names that they have elsewhere. Both architectures share the sources.
enable_language(C)

set(sources ${PROJECT_SOURCE_DIR}/build/windows-libraries)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${CMAKE_CURRENT_LIST_DIR}/windows-libraries.sha256)
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/fetch-windows-libraries ${sources}
                COMMAND_ERROR_IS_FATAL ANY)

# Others' sources, with others' warnings.
function(add_foreign_library name)
  add_library(${name} STATIC ${ARGN})
  target_compile_options(${name} PRIVATE -w)
endfunction()

add_foreign_library(sqlite3 ${sources}/sqlite3/sqlite3.c)
target_include_directories(sqlite3 SYSTEM PUBLIC ${sources}/sqlite3)
target_compile_definitions(sqlite3 PRIVATE SQLITE_OMIT_LOAD_EXTENSION)
add_library(PkgConfig::sqlite3 ALIAS sqlite3)

set(sodium ${sources}/libsodium)
file(GLOB_RECURSE sodium_sources ${sodium}/src/libsodium/*.c)
add_foreign_library(sodium ${sodium_sources})
# Its own configuration would make this one; the other header is looked for beside it.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/sodium/sodium)
foreach(header IN ITEMS builds/msvc/version.h src/libsodium/include/sodium/export.h)
  configure_file(${sodium}/${header} ${CMAKE_BINARY_DIR}/sodium/sodium/ COPYONLY)
endforeach()
target_include_directories(sodium SYSTEM
  PUBLIC ${sodium}/src/libsodium/include ${CMAKE_BINARY_DIR}/sodium
  PRIVATE ${sodium}/src/libsodium/include/sodium ${CMAKE_BINARY_DIR}/sodium/sodium)
target_compile_definitions(sodium PUBLIC SODIUM_STATIC PRIVATE CONFIGURED=1)
add_library(PkgConfig::libsodium ALIAS sodium)

add_foreign_library(csv ${sources}/libcsv/libcsv.c)
target_include_directories(csv SYSTEM PUBLIC ${sources}/libcsv)

# Nothing but headers, which the machine's own packages have beside others that are not for Windows.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
function(add_headers name folder)
  file(CREATE_LINK /usr/include/${folder} ${CMAKE_BINARY_DIR}/headers/${folder} SYMBOLIC)
  add_library(${name} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${name} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers)
endfunction()
add_headers(nlohmann_json::nlohmann_json nlohmann)
add_headers(CLI11::CLI11 CLI)

# The migrations as a source file, ${migrations_source}, that holds their texts.
file(GLOB migration_files CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.sql)
list(SORT migration_files)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${migration_files})

set(version 0)
set(migrations "")
foreach(file IN LISTS migration_files)
  math(EXPR version "${version} + 1")
  cmake_path(GET file FILENAME name)
  if(NOT name MATCHES "^0*${version}_[a-z0-9_]+\\.sql$")
    message(FATAL_ERROR "db/migrations/${name}: the migration of version ${version} should stand here; "
                        "files are called 0001_books.sql and numbered without a gap")
  endif()
  file(READ ${file} text)
  if(NOT text MATCHES "^-- ([^\n\"'\\]+)\n(.*)$")
    message(FATAL_ERROR "db/migrations/${name}: the first line is the title, \"-- The books\"")
  endif()
  string(APPEND migrations "    {\"${CMAKE_MATCH_1}\", R\"sql(${CMAKE_MATCH_2})sql\"},\n")
endforeach()

set(migrations_source ${CMAKE_CURRENT_BINARY_DIR}/migrations.cpp)
file(CONFIGURE OUTPUT ${migrations_source} @ONLY CONTENT [[
// The files of db/migrations/.
#include "qdclgl/server/db/schema.h"

namespace qdclgl::server {

std::span<const Migration> Migrations() {
  static constexpr Migration kMigrations[] = {
@migrations@  };
  return kMigrations;
}

}  // namespace qdclgl::server
]])

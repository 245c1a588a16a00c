# The Debian packages, which scripts/package builds: `qdclgl`, the program with all that people
# read, and `libqdclgl-dev`, what programs are built against.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qdclgl)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "general ledger over SQLite and PostgreSQL")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "QDCLGL maintainers <maintainers@qdclgl.invalid>" CACHE STRING
    "Who answers for the packages: name and address")
set(CPACK_PACKAGE_CONTACT ${CPACK_DEBIAN_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
                                                GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program development)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME qdclgl)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION 
"The program qdclgl keeps the books of a company in SQLite or PostgreSQL:
charts of accounts, vouchers with check, approval and posting, statements,
budgets, closing of periods and years, users with roles, an audit trail.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqdclgl-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
# What pkg-config asks of it.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libpq-dev, libsqlite3-dev, libsodium-dev, libssl-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "pkg-config, qdclgl")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION 
"Accounts, vouchers, items and the rest of the books as classes of C++20, and
the server components that keep them in SQLite or PostgreSQL. Static
libraries, headers, and what CMake and pkg-config ask for.")

# What Debian asks of every package, and no other installation needs.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/finish.cmake)
set(CPACK_QDCLGL_SOURCE ${PROJECT_SOURCE_DIR})
include(CPack)

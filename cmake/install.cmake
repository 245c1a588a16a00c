# What `cmake --install` puts where: for find_package(qdclgl), for pkg-config, and the program. The
# component "development" is what programs are built against, "program" the command line with all
# that people read.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qdclgl)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

# What a header reaches is for users and is installed; every other header stays inside.
set(public_headers "")
function(install_headers_from first)
  set(unread ${first})
  while(unread)
    list(POP_FRONT unread header)
    if(header IN_LIST public_headers)
      continue()
    endif()
    list(APPEND public_headers ${header})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
    file(STRINGS ${header} includes REGEX "^#include \"qdclgl/")
    list(TRANSFORM includes REPLACE "^#include \"(.*)\".*" "\\1")
    list(APPEND unread ${includes})
  endwhile()
  set(public_headers ${public_headers} PARENT_SCOPE)
endfunction()

# A library with its targets in a file of their own, and what pkg-config reads of it.
cmake_path(SET pkgconfig_folder NORMALIZE ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_folder} /)
function(install_library target name description requires)
  install(TARGETS ${target} EXPORT ${name}-targets
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT ${name}-targets NAMESPACE qdclgl:: DESTINATION ${package_folder})
  list(JOIN requires ", " requires)
  configure_file(cmake/library.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_folder})
endfunction()

install_headers_from(qdclgl/qdclgl.h)
install_library(qdclgl qdclgl "Business objects of a general ledger" "")
# For Windows the libraries that it takes are no packages; there it is a part of the automation server.
if(QDCLGL_SERVER AND NOT WIN32)
  install_headers_from(qdclgl/server/server.h)
  install_library(qdclgl-server qdclgl-server
                  "Books in SQLite or PostgreSQL for the business objects of a general ledger"
                  "qdclgl;${QDCLGL_SERVER_NEEDS}")
endif()

configure_package_config_file(cmake/qdclgl-config.cmake.in qdclgl-config.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(qdclgl-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qdclgl-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/qdclgl-config-version.cmake
        DESTINATION ${package_folder})

if(TARGET qdclgl-program)
  set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME program)
  install(TARGETS qdclgl-program)
  # For other systems than this one the program can't write them here.
  install(DIRECTORY ${PROJECT_BINARY_DIR}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
  # Each shell looks for completions in a place of its own.
  install(FILES qdclgl/cli/completion/qdclgl.bash RENAME qdclgl
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES qdclgl/cli/completion/_qdclgl
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES qdclgl/cli/completion/qdclgl.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  # As they stand in the sources, so that what they link to is found.
  set(doc ${CMAKE_INSTALL_DATADIR}/doc/qdclgl)
  install(FILES README.md CHANGELOG.md DESTINATION ${doc})
  install(FILES cmake/debian/copyright DESTINATION ${doc})
  install(DIRECTORY docs examples DESTINATION ${doc})
endif()
unset(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME)

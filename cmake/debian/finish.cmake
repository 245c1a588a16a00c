# CPack calls this between the installation into folders of its own, one for each package, and the
# packing: copyright and changes stand in every package, and what is long is packed.
set(source ${CPACK_QDCLGL_SOURCE})

function(pack file)
  execute_process(COMMAND gzip --best --no-name --force ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The day of the last commit, so that the same sources make the same packages.
execute_process(COMMAND git -C ${source} log -1 --format=%cD
                OUTPUT_VARIABLE day ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT day)
  execute_process(COMMAND date -R OUTPUT_VARIABLE day OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

foreach(component IN ITEMS PROGRAM DEVELOPMENT)
  set(package ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  string(TOLOWER ${component} folder)
  set(usr ${CPACK_TEMPORARY_DIRECTORY}/${folder}/usr)
  set(doc ${usr}/share/doc/${package})
  file(COPY ${source}/cmake/debian/copyright DESTINATION ${doc})
  configure_file(${source}/CHANGELOG.md ${doc}/changelog COPYONLY)
  file(WRITE ${doc}/changelog.Debian
       "${package} (${version}) unstable; urgency=medium\n\n"
       "  * Packed from the sources of version ${CPACK_PACKAGE_VERSION}.\n\n"
       " -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${day}\n")
  pack(${doc}/changelog)
  pack(${doc}/changelog.Debian)
  file(GLOB pages ${usr}/share/man/man*/*.[1-9])
  foreach(page IN LISTS pages)
    pack(${page})
  endforeach()
endforeach()

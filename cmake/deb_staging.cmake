# CPack pre-build step on the staged tree of the Debian package.

# Debian keeps manual pages and changelogs gzipped (-n: no name or time
# stamp, so the package is the same from build to build); the plain install
# tree keeps them readable as they are.
file(GLOB_RECURSE texts "${CPACK_TEMPORARY_DIRECTORY}/*/share/man/man[1-9]/*.[1-9]"
     "${CPACK_TEMPORARY_DIRECTORY}/*/share/doc/*/changelog")
foreach(text IN LISTS texts)
  execute_process(COMMAND gzip -9nf "${text}" RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "gzip failed on ${text}")
  endif()
endforeach()

# Stripped as Debian's own packages are (dh_strip): no symbols, and no
# .comment or .note section, which only name the tools that built it.
file(GLOB_RECURSE programs "${CPACK_TEMPORARY_DIRECTORY}/*/bin/Odb2vrn_64")
foreach(program IN LISTS programs)
  execute_process(COMMAND "${CPACK_ODB2VRN_STRIP}" --remove-section=.comment --remove-section=.note
                          --strip-unneeded "${program}" RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "strip failed on ${program}")
  endif()
endforeach()

# CPack makes the staged folders with the builder's umask, whatever the
# default directory permissions say; under umask 077 the installed
# /usr/share/doc/odb2vrn would be closed to everybody but root.
file(GLOB_RECURSE folders LIST_DIRECTORIES true "${CPACK_TEMPORARY_DIRECTORY}/*")
foreach(folder IN LISTS folders)
  if(IS_DIRECTORY "${folder}" AND NOT IS_SYMLINK "${folder}")
    file(CHMOD "${folder}" DIRECTORY_PERMISSIONS
         OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endif()
endforeach()

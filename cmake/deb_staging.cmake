# CPack pre-build step on the staged tree of the Debian package.

# Debian keeps manual pages gzipped (-n: no name or time stamp, so the
# package is the same from build to build); the plain install tree keeps
# them readable as they are.
file(GLOB_RECURSE pages "${CPACK_TEMPORARY_DIRECTORY}/*/share/man/man[1-9]/*.[1-9]")
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip -9nf "${page}" RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "gzip failed on ${page}")
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

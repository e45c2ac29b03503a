# What an installation holds, and the Debian package made from it.
#
# Everything that ships is in the one component "odb2vrn"; the package takes
# that component alone, so a test, fuzzer or tool that ever gains an install
# rule of its own cannot slip into the .deb.

include(GNUInstallDirs)

set(ODB2VRN_COMPONENT odb2vrn)

install(TARGETS Odb2vrn_64 RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${ODB2VRN_COMPONENT})
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/doc/copyright ${PROJECT_SOURCE_DIR}/doc/changelog
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT ${ODB2VRN_COMPONENT})

if(WIN32)
  # On Windows the product's own qx7za.exe is used, and there are no man pages.
  return()
endif()

# The program finds qx7za.exe on PATH, so the launcher goes beside it.
install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/qx7za/qx7za.exe
        DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${ODB2VRN_COMPONENT})
install(FILES ${PROJECT_SOURCE_DIR}/doc/Odb2vrn_64.1 ${PROJECT_SOURCE_DIR}/doc/qx7za.exe.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${ODB2VRN_COMPONENT})

# --- Debian package (scripts/package) ---------------------------------------

set(CPACK_GENERATOR DEB)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};${ODB2VRN_COMPONENT};/")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Stripped in the staged tree, as Debian strips (deb_staging.cmake).
set(CPACK_ODB2VRN_STRIP "${CMAKE_STRIP}")
set(CPACK_PACKAGE_NAME odb2vrn)
set(CPACK_PACKAGE_VENDOR "Korvane Systems")
# The version is the program's own (the banner and the VRN header show it).
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Korvane Systems <packaging@korvane.example>")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CPACK_PACKAGE_CONTACT}")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# 7zip does the unpacking: on Debian 12 and 13 alike it gives a console
# that reads ".Z", which qx7za.exe runs. The C++ runtime comes from
# dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_DEPENDS 7zip)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"convert ODB++ job archives into VRN netlist files
Odb2vrn_64 reads the ODB++ job (Valor ODB++ 6.5) in one archive of any
kind that 7-Zip unpacks (.tgz, .zip, an archive inside an archive, a job
inside a wrapping folder, compressed .Z members) and writes a VRN netlist
file: the design name, the part list with each component's part type, and
every net with the reference designator and pin of each connection.

Only the job's matrix, the step's EDA data and the top and bottom
components files are read; no geometry is. The program runs once per
board, from a shell or from another tool, and needs no configuration.")

# Gzipped manual pages and changelog, a stripped program, world-readable
# folders.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/deb_staging.cmake)

include(CPack)

# The Debian package of the program and the library a host loads: `cpack -G DEB` in the
# build folder. The build's own files go under /usr; Debian's documentation files, the
# desktop entry and the icon are added here.
if(NOT UNIX OR APPLE)
  return()
endif()

set(pkg ${PROJECT_SOURCE_DIR}/packaging)
install(FILES ${pkg}/knjige.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${pkg}/knjige.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${pkg}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/knjige)
# Debian wants the changelog compressed, reproducibly (no name or time in the header).
find_program(GZIP gzip)
if(GZIP)
  set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
  execute_process(COMMAND ${GZIP} -9nc ${pkg}/changelog OUTPUT_FILE ${changelog})
  install(FILES ${changelog} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/knjige)
  set(manpage ${CMAKE_CURRENT_BINARY_DIR}/knjige.1.gz)
  execute_process(COMMAND ${GZIP} -9nc ${pkg}/knjige.1 OUTPUT_FILE ${manpage})
  install(FILES ${manpage} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

set(CPACK_PACKAGE_NAME knjige)
set(CPACK_PACKAGE_VENDOR "The knjige developers")
set(CPACK_PACKAGE_CONTACT "The knjige developers <knjige@example.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "statutory bookkeeping books for small businesses in BiH")
set(CPACK_PACKAGE_DESCRIPTION "The income and expense books (FBiH, DB, RS), the turnover books,
the records of receivables and liabilities, the long-term asset lists and the
trade books of services and of commission goods, kept in SQL Server or in an
embedded database.

The package holds the knjige program (book chooser, printing, export and
administration commands), the library ArbosaPOSKnjige17 that host business
applications load, its headers and CMake package, and the schema script.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES TRUE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://example.com/knjige")
# Libraries found by dpkg-shlibdeps; the plugins Qt loads at run time are not linked,
# so they are named: the database drivers, FreeTDS for SQL Server, the window system and
# Qt's own translations (its print and file dialogs in Croatian, for Bosnian workstations).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# The dynamic linker's cache is refreshed by dpkg's trigger, not by maintainer scripts.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${pkg}/triggers)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, libqt6sql6-odbc, unixodbc, tdsodbc, qt6-qpa-plugins, qt6-translations-l10n")
set(CPACK_GENERATOR DEB)
include(CPack)

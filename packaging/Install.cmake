# Installed as a Debian program: the two programs, the desktop entry and its
# icon, the manual pages and the README; `cmake --install build --prefix P`
# or the package that scripts/package makes with CPack.
include(GNUInstallDirs)
set(YUNQI_PACKAGING ${CMAKE_SOURCE_DIR}/packaging)
set(YUNQI_DOCDIR ${CMAKE_INSTALL_DATADIR}/doc/yunqi-reports)

install(TARGETS yunqi-reports yunqi-statement RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${YUNQI_PACKAGING}/yunqi-reports.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${YUNQI_PACKAGING}/yunqi-reports.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${YUNQI_PACKAGING}/copyright
        DESTINATION ${YUNQI_DOCDIR})
# The pictures the README shows.
file(GLOB YUNQI_README_PICTURES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/docs/*.png)
install(FILES ${YUNQI_README_PICTURES} DESTINATION ${YUNQI_DOCDIR}/docs)

# The icon's bitmaps are drawn from the SVG.
find_program(RSVG_CONVERT rsvg-convert)
if(NOT RSVG_CONVERT)
  message(FATAL_ERROR "rsvg-convert is missing: scripts/install-deps installs it (librsvg2-bin)")
endif()
set(YUNQI_STAGED)
foreach(size 48 256)
  set(png ${CMAKE_BINARY_DIR}/packaging/icons/${size}/yunqi-reports.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packaging/icons/${size}
    COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${png} ${YUNQI_PACKAGING}/yunqi-reports.svg
    DEPENDS ${YUNQI_PACKAGING}/yunqi-reports.svg VERBATIM)
  install(FILES ${png}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  list(APPEND YUNQI_STAGED ${png})
endforeach()
# The manual pages and the changelog, compressed as Debian keeps them.
foreach(file man/yunqi-statement.1 man/yunqi-reports.1 doc/changelog)
  get_filename_component(name ${file} NAME)
  get_filename_component(kind ${file} DIRECTORY)
  set(gz ${CMAKE_BINARY_DIR}/packaging/${file}.gz)
  add_custom_command(OUTPUT ${gz}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packaging/${kind}
    COMMAND sh -c "gzip -9n < \"$0\" > \"$1\"" ${YUNQI_PACKAGING}/${name} ${gz}
    DEPENDS ${YUNQI_PACKAGING}/${name} VERBATIM)
  if(kind STREQUAL "man")
    install(FILES ${gz} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  else()
    install(FILES ${gz} DESTINATION ${YUNQI_DOCDIR})
  endif()
  list(APPEND YUNQI_STAGED ${gz})
endforeach()
add_custom_target(yunqi_packaging ALL DEPENDS ${YUNQI_STAGED})

# The Debian package. Shared libraries the programs link are found by
# dpkg-shlibdeps; what they load at run time (the SQL drivers, the ODBC driver
# manager and FreeTDS, Qt's translations, a CJK font) is named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME yunqi-reports)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "云栖账房")
set(CPACK_PACKAGE_CONTACT "云栖账房报表 maintainers <reports@yunqi.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "statements of a property-management office's fee and invoice ledger")
# CPack puts the summary before it as the synopsis.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "The desktop program yunqi-reports (云栖账房报表) shows the invoice,\n\
pre-invoice, parking and reconciliation statements of the office's SQL Server\n\
ledger, or of an embedded SQLite one, and exports them to workbooks.\n\
yunqi-statement computes the same statements from the command line and runs\n\
the month-end batch.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libqt6sql6-sqlite, libqt6sql6-odbc, unixodbc, tdsodbc, qt6-translations-l10n, fonts-noto-cjk")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)

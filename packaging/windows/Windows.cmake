# The Windows build: both programs carry the icon, the desktop program opens
# no console. scripts/windows gathers the DLLs, plugins and translations.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
find_program(IMAGEMAGICK_CONVERT convert REQUIRED)
set(YUNQI_ICON_DIR ${CMAKE_BINARY_DIR}/packaging/windows)
set(YUNQI_ICON_PNGS)
foreach(size 16 32 48 256)
  set(png ${YUNQI_ICON_DIR}/icon-${size}.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${YUNQI_ICON_DIR}
    COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${png}
            ${CMAKE_SOURCE_DIR}/packaging/yunqi-reports.svg
    DEPENDS ${CMAKE_SOURCE_DIR}/packaging/yunqi-reports.svg VERBATIM)
  list(APPEND YUNQI_ICON_PNGS ${png})
endforeach()
add_custom_command(OUTPUT ${YUNQI_ICON_DIR}/yunqi-reports.ico
  COMMAND ${IMAGEMAGICK_CONVERT} ${YUNQI_ICON_PNGS} ${YUNQI_ICON_DIR}/yunqi-reports.ico
  DEPENDS ${YUNQI_ICON_PNGS} VERBATIM)
# Written only when its text changes: a new file at every configure would
# relink both programs.
file(CONFIGURE OUTPUT ${YUNQI_ICON_DIR}/icon.rc CONTENT "1 ICON \"yunqi-reports.ico\"\n")
set_source_files_properties(${YUNQI_ICON_DIR}/icon.rc PROPERTIES
  OBJECT_DEPENDS ${YUNQI_ICON_DIR}/yunqi-reports.ico)
foreach(program yunqi-reports yunqi-statement)
  target_sources(${program} PRIVATE ${YUNQI_ICON_DIR}/icon.rc)
endforeach()
set_target_properties(yunqi-reports PROPERTIES WIN32_EXECUTABLE ON)

# Qt's SQLite driver carries its own copy of the engine, made from this same
# library, and exports none of it: a stopped run interrupts the engine's
# query through the program's copy.
set(YUNQI_SQLITE3 $ENV{YUNQI_WINDOWS_DEPS}/lib/libsqlite3.a)
if(NOT EXISTS ${YUNQI_SQLITE3})
  message(FATAL_ERROR "${YUNQI_SQLITE3} is missing: scripts/windows builds it")
endif()
target_link_libraries(yunqi_db PUBLIC ${YUNQI_SQLITE3})
target_compile_definitions(yunqi_db PRIVATE YUNQI_SQLITE_LINKED)

# Debian's hardening flags, as dpkg-buildflags gives them with every hardening
# feature on: fortified functions, the stack protector, format checks, and
# relocations read-only and bound at start. Optimisation and debugging
# information stay the build type's; a Debug build, unoptimised, leaves out
# the fortification, which needs the optimiser.
find_program(DPKG_BUILDFLAGS dpkg-buildflags)
if(NOT DPKG_BUILDFLAGS)
  message(STATUS "dpkg-buildflags not found: built without Debian's hardening flags")
  return()
endif()
foreach(kind CPPFLAGS CXXFLAGS LDFLAGS)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env DEB_BUILD_MAINT_OPTIONS=hardening=+all
            ${DPKG_BUILDFLAGS} --get ${kind}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  list(FILTER flags EXCLUDE REGEX "^-g$|^-O[0-9s]?$")
  set(YUNQI_HARDENING_${kind} ${flags})
endforeach()
set(optimised "$<NOT:$<CONFIG:Debug>>")
foreach(flag ${YUNQI_HARDENING_CPPFLAGS})
  if(flag MATCHES "^-D_FORTIFY_SOURCE")
    add_compile_options("$<${optimised}:${flag}>")
  else()
    add_compile_options(${flag})
  endif()
endforeach()
add_compile_options(${YUNQI_HARDENING_CXXFLAGS})
add_link_options(${YUNQI_HARDENING_LDFLAGS})

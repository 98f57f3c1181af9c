# GoogleTest, built from Debian's sources with this build's compiler, and mirqos_test() to add a
# test program.

set(MIRQOS_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "Folder with GoogleTest's sources")
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${MIRQOS_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# mirqos_test(NAME SOURCE... [LIBS target...] [LABELS label...] [TIMEOUT seconds] [FIXTURES name...])
# One program, one ctest entry. Tests link the library's parts statically, so they reach what the
# DLL does not export.
function(mirqos_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LIBS;LABELS;FIXTURES;ARGS" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE mirqos_flags ${ARG_LIBS} gtest gmock mirqos_test_main)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  add_test(NAME ${name} COMMAND ${name} ${ARG_ARGS})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
  if(ARG_FIXTURES)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED "${ARG_FIXTURES}")
  endif()
endfunction()

# mirqos_kept_memory(FILE TEST...): in these tests LeakSanitizer passes over what the file names. Its
# path is in quotes, because a blank would end it.
function(mirqos_kept_memory file)
  set_property(TEST ${ARGN} APPEND PROPERTY ENVIRONMENT "LSAN_OPTIONS=suppressions='${file}'")
endfunction()

# mirqos_open_uploads(TEST...) is that for the uploads that tests leave open.
function(mirqos_open_uploads)
  mirqos_kept_memory(${CMAKE_SOURCE_DIR}/tests/support/open_upload.lsan ${ARGN})
endfunction()

# mirqos_long_test(NAME) grants a test program that may take minutes a quarter of an hour.
function(mirqos_long_test name)
  set_tests_properties(${name} PROPERTIES TIMEOUT 900)
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT MIRQOS_TEST_LIMIT_SECONDS=840)
endfunction()

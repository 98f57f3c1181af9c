# What `cmake --install` puts into the package: the library, its programs, what a host is built with,
# and the documents. All destinations are relative and all that is installed finds the rest from
# where it stands, so the package works wherever it is unpacked.
include(CMakePackageConfigHelpers)

install(TARGETS MIRQOS EXPORT MIRQOSTargets
  RUNTIME DESTINATION bin
  ARCHIVE DESTINATION lib
  INCLUDES DESTINATION include)
install(TARGETS mirqos_program mirqos_logctl mirqos_logview RUNTIME DESTINATION bin)
install(DIRECTORY include/mirqos DESTINATION include FILES_MATCHING PATTERN "*.h")

set(package_dir lib/cmake/MIRQOS)
install(EXPORT MIRQOSTargets NAMESPACE MIRQOS:: DESTINATION ${package_dir})
if(MSVC OR CMAKE_CXX_SIMULATE_ID STREQUAL "MSVC")
  set(MIRQOS_COMPILER_FAMILY MSVC)
else()
  set(MIRQOS_COMPILER_FAMILY MinGW)
endif()
configure_file(cmake/MIRQOSConfig.cmake.in ${CMAKE_BINARY_DIR}/MIRQOSConfig.cmake @ONLY)
# The order of the operations never changes, so a newer library serves an older host.
write_basic_package_version_file(${CMAKE_BINARY_DIR}/MIRQOSConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/MIRQOSConfig.cmake ${CMAKE_BINARY_DIR}/MIRQOSConfigVersion.cmake
        DESTINATION ${package_dir})

# the documents, placed as in the source tree, so that links between them hold
install(FILES README.md DESTINATION .)
install(FILES docs/architecture.md docs/benchmarks.md docs/benchmarks.svg docs/formats.md
        DESTINATION docs)
install(DIRECTORY docs/decisions DESTINATION docs FILES_MATCHING PATTERN "*.md")

# The licences of what is linked into the files ask for their notices to go with them. A cross build
# has them from Debian's packages.
if(MINGW AND CMAKE_CROSSCOMPILING)
  foreach(package gcc-mingw-w64-x86-64-posix-runtime mingw-w64-x86-64-dev nlohmann-json3-dev)
    install(FILES /usr/share/doc/${package}/copyright DESTINATION licenses RENAME ${package}.txt)
  endforeach()
endif()

# Flags every target of this project is built with, and the switches of a build.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

set(MIRQOS_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")
option(MIRQOS_COVERAGE "Have the library and the programs count which of their lines run" OFF)
option(MIRQOS_SDK_OWN_ALLOCATOR "Give the bundled SDK's strings an allocator of their own" OFF)

if(WIN32)
  set(MIRQOS_PLATFORM win32)
else()
  set(MIRQOS_PLATFORM posix)
endif()

find_package(Threads REQUIRED)

# mirqos_flags: what all of the project's own code is compiled and linked with.
add_library(mirqos_flags INTERFACE)
target_include_directories(mirqos_flags INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
target_link_libraries(mirqos_flags INTERFACE Threads::Threads)
if(MSVC)
  # CMake's own /EHsc takes it that functions with C linkage never throw; one that is exported may.
  string(REGEX REPLACE "([-/])EHsc" "\\1EHs" CMAKE_CXX_FLAGS "${CMAKE_CXX_FLAGS}")
  target_compile_options(mirqos_flags INTERFACE /W4 /WX /permissive- /utf-8)
else()
  target_compile_options(mirqos_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Werror)
endif()
if(WIN32)
  target_compile_definitions(mirqos_flags INTERFACE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
                                                    _WIN32_WINNT=0x0A00)
  if(MINGW)
    # the same sources give the same bytes, whenever they are linked
    target_link_options(mirqos_flags INTERFACE -static -Wl,--no-insert-timestamp)
  endif()
endif()
if(MIRQOS_SANITIZE)
  set(sanitizers -fsanitize=${MIRQOS_SANITIZE})
  # a stack with its lines, without the variables, which take a third longer to compile
  set(finding_it -fno-omit-frame-pointer -g1)
  if(MINGW)
    # The toolchain has no sanitizer runtime: a program ends where it would have reported. The check
    # of virtual calls exists only with a runtime.
    list(APPEND sanitizers -fno-sanitize=vptr -fsanitize-undefined-trap-on-error)
  endif()
  add_compile_options(${sanitizers} ${finding_it} -fno-sanitize-recover=all -O1)
  add_link_options(${sanitizers})
  # GCC's sanitizer code hides initialisations from this warning; other builds keep it.
  target_compile_options(mirqos_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

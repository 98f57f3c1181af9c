# mirqos_json: the headers of JSON for Modern C++, from Debian also for the cross build. They are
# reached through a folder that holds only a link to them, because /usr/include itself would bring
# the native C library's headers along.
set(MIRQOS_NLOHMANN_DIR /usr/include/nlohmann CACHE PATH "Folder with JSON for Modern C++")
if(NOT EXISTS ${MIRQOS_NLOHMANN_DIR}/json.hpp)
  message(FATAL_ERROR "json.hpp is not in ${MIRQOS_NLOHMANN_DIR}; MIRQOS_NLOHMANN_DIR names the folder")
endif()

if(NOT TARGET mirqos_json)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/json-headers)
  file(CREATE_LINK ${MIRQOS_NLOHMANN_DIR} ${CMAKE_BINARY_DIR}/json-headers/nlohmann SYMBOLIC)
  add_library(mirqos_json INTERFACE)
  target_include_directories(mirqos_json SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/json-headers)
endif()

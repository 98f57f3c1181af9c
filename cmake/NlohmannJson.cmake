# mirqos_json: the headers of JSON for Modern C++, from Debian also for the cross build.
include(HeaderFolder)

set(MIRQOS_NLOHMANN_DIR /usr/include/nlohmann CACHE PATH "Folder with json.hpp of JSON for Modern C++")
if(NOT EXISTS ${MIRQOS_NLOHMANN_DIR}/json.hpp)
  message(FATAL_ERROR "json.hpp is not in ${MIRQOS_NLOHMANN_DIR}; MIRQOS_NLOHMANN_DIR names the folder")
endif()

if(NOT TARGET mirqos_json)
  mirqos_header_folder(mirqos_json ${MIRQOS_NLOHMANN_DIR} nlohmann)
endif()

# mirqos_boost: Boost's headers, from Debian also for the cross build.
include(HeaderFolder)

set(MIRQOS_BOOST_DIR /usr/include/boost CACHE PATH "Folder with Boost's headers")
if(NOT EXISTS ${MIRQOS_BOOST_DIR}/version.hpp)
  message(FATAL_ERROR "Boost's headers are not in ${MIRQOS_BOOST_DIR}; MIRQOS_BOOST_DIR names the folder")
endif()

if(NOT TARGET mirqos_boost)
  mirqos_header_folder(mirqos_boost ${MIRQOS_BOOST_DIR} boost)
  # only the header-only parts are used
  target_compile_definitions(mirqos_boost INTERFACE BOOST_ALL_NO_LIB BOOST_ASIO_NO_DEPRECATED)
  if(MIRQOS_SANITIZE MATCHES "thread")
    # the sanitizer does not know stand-alone fences and GCC refuses them; Asio's queues have locks
    target_compile_definitions(mirqos_boost INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
  endif()
  target_link_libraries(mirqos_boost INTERFACE Threads::Threads)
  if(WIN32)
    target_link_libraries(mirqos_boost INTERFACE ws2_32 mswsock)
  endif()
endif()

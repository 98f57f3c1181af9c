# mirqos_version_resource(TARGET FILE_NAME DESCRIPTION) gives a program or library of Windows a
# resource with the project's version. Elsewhere it does nothing.
if(WIN32)
  enable_language(RC)
endif()
set(MIRQOS_VERSION_TEMPLATE ${CMAKE_CURRENT_LIST_DIR}/version.rc.in)

function(mirqos_version_resource target file_name description)
  if(NOT WIN32)
    return()
  endif()
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(file_type VFT_APP)
  else()
    set(file_type VFT_DLL)
  endif()
  configure_file(${MIRQOS_VERSION_TEMPLATE} ${target}_version.rc @ONLY)
  # compiled apart from the target, whose options are meant for the C++ compiler alone
  add_library(${target}_version OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_version>)
endfunction()

# mirqos_header_folder(TARGET FOLDER NAME) makes an interface target of headers that are included as
# <NAME/...> and stand in FOLDER. A cross build takes Debian's native ones, through a folder that holds
# only a link to them, because /usr/include itself would bring the native C library's headers along.
function(mirqos_header_folder target folder name)
  if(CMAKE_CROSSCOMPILING)
    set(parent ${CMAKE_BINARY_DIR}/${target}-headers)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${folder} ${parent}/${name} SYMBOLIC)
  else()
    get_filename_component(parent ${folder}/.. ABSOLUTE)
  endif()
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${parent})
endfunction()

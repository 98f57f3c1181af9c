# What tests of this platform need beyond the library's parts.

# they look at the files as they are built
set(version_files "\"$<TARGET_FILE:MIRQOS>\"" "\"$<TARGET_FILE:mirqos_program>\""
                  "\"$<TARGET_FILE:mirqos_logctl>\"" "\"$<TARGET_FILE:mirqos_logview>\"")
target_compile_definitions(unit.version_resource PRIVATE MIRQOS_LIBRARY="$<TARGET_FILE:MIRQOS>"
                           MIRQOS_FILES=$<JOIN:${version_files},$<COMMA>>
                           MIRQOS_VERSION="${PROJECT_VERSION}")
target_link_libraries(unit.version_resource PRIVATE version)
add_dependencies(unit.version_resource MIRQOS mirqos_program mirqos_logctl mirqos_logview)

# Windows itself needs no such test, and would have the user asked about the fault.
if(CMAKE_CROSSCOMPILING_EMULATOR)
  mirqos_test(unit.crash win32/crash.cpp LIBS gtest LABELS unit)
  set_tests_properties(unit.crash PROPERTIES WILL_FAIL TRUE)
endif()

# With another ANSI code page. Windows itself does not take it from the environment, Wine does.
if(CMAKE_CROSSCOMPILING_EMULATOR)
  mirqos_test(unit.file_output_double_byte win32/file_output_double_byte.cpp
              LIBS mirqos_parts mirqos_test_support LABELS unit)
  set_property(TEST unit.file_output_double_byte APPEND PROPERTY ENVIRONMENT LC_ALL=ja_JP.UTF-8)
endif()

# They announce a viewer, and then every process of the machine logs to channels: one at a time.
set_property(TEST unit.sm_output unit.breakpoint_hold unit.logview_objects APPEND PROPERTY
             RESOURCE_LOCK log_viewer)

foreach(name file_output_memory log_config logview_objects share_memory sm_output)
  target_link_libraries(unit.${name} PRIVATE mirqos_failing_allocation)
endforeach()

# Operations are called by their place in the table of virtual functions. GCC's C++ ABI puts two
# destructors before the first, MSVC's puts one.
set(destructor_entries 2)
if(MSVC)
  set(destructor_entries 1)
endif()
foreach(name log_message share_memory sm_output)
  target_compile_definitions(unit.${name} PRIVATE MIRQOS_DESTRUCTOR_ENTRIES=${destructor_entries})
endforeach()
# MSVC's also turns the order of overloads round, here of the two writes, in slots 2 and 3.
set(narrow_write_slot 2)
if(MSVC)
  set(narrow_write_slot 3)
endif()
target_compile_definitions(unit.sm_output PRIVATE MIRQOS_NARROW_WRITE_SLOT=${narrow_write_slot})

foreach(name block command edit report)
  target_link_libraries(unit.logctl_${name} PRIVATE mirqos_log_control)
endforeach()
foreach(name command input input_lines lines objects output table)
  target_link_libraries(unit.logview_${name} PRIVATE mirqos_log_view)
endforeach()
# the console is that of all programs
target_link_libraries(unit.console PRIVATE mirqos_log_view)

# It looks for the version of its own executable.
add_library(unit.machine_facts_version OBJECT ${CMAKE_CURRENT_LIST_DIR}/machine_facts.rc)
target_sources(unit.machine_facts PRIVATE $<TARGET_OBJECTS:unit.machine_facts_version>)

# The logging library alone: the module log would have made the instance.
mirqos_test(unit.log_config_instance win32/log_config_instance.cpp LIBS mirqos_dbg LABELS unit)

# The logging library alone: the module log would read the registry before the test has laid it out.
set(support ${CMAKE_SOURCE_DIR}/tests/support/win32)
mirqos_test(unit.file_output_installed win32/file_output_installed.cpp ${support}/FileOutputTest.cpp
            ${support}/LogFolder.cpp ${support}/OutsideConfig.cpp ${support}/PrivateRegistry.cpp
            ${support}/TraceRecording.cpp LIBS mirqos_dbg LABELS unit)

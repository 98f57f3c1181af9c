# What tests of this platform need beyond the library's parts.

# they look at the files as they are built
set(version_files "\"$<TARGET_FILE:MIRQOS>\"" "\"$<TARGET_FILE:mirqos_program>\""
                  "\"$<TARGET_FILE:mirqos_logctl>\"")
target_compile_definitions(unit.version_resource PRIVATE MIRQOS_LIBRARY="$<TARGET_FILE:MIRQOS>"
                           MIRQOS_FILES=$<JOIN:${version_files},$<COMMA>>
                           MIRQOS_VERSION="${PROJECT_VERSION}")
target_link_libraries(unit.version_resource PRIVATE version)
add_dependencies(unit.version_resource MIRQOS mirqos_program mirqos_logctl)

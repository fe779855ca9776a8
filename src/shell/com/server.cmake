# Brindlewort.dll, the automation server, and its type library.
enable_language(RC)
find_program(WIDL x86_64-w64-mingw32-widl REQUIRED)
# The interfaces that every automation interface builds on. For widl alone: the compiler has its own.
find_path(WIDL_IMPORTS oaidl.idl PATHS /usr/include/wine/wine/windows REQUIRED NO_CMAKE_FIND_ROOT_PATH)
find_path(WIDL_LIBRARIES stdole2.tlb PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows REQUIRED
  NO_CMAKE_FIND_ROOT_PATH)

set(AUTOMATION_DIR "${CMAKE_BINARY_DIR}/automation")
set(TYPE_LIBRARY "${AUTOMATION_DIR}/Brindlewort.tlb")
set(STRING_TABLE "${AUTOMATION_DIR}/help_texts.rc")
file(MAKE_DIRECTORY "${AUTOMATION_DIR}")

# A fixed time makes the type library the same file on every build.
set(widl "${CMAKE_COMMAND}" -E env WIDL_TIME_OVERRIDE=0 "${WIDL}" "-I${WIDL_IMPORTS}" "-L${WIDL_LIBRARIES}")
add_custom_command(
  OUTPUT "${TYPE_LIBRARY}" "${AUTOMATION_DIR}/brindlewort_com.h" "${AUTOMATION_DIR}/brindlewort_com_i.c"
  COMMAND ${widl} -t -o "${TYPE_LIBRARY}" brindlewort.idl
  COMMAND ${widl} -h -o "${AUTOMATION_DIR}/brindlewort_com.h" brindlewort.idl
  COMMAND ${widl} -u -o "${AUTOMATION_DIR}/brindlewort_com_i.c" brindlewort.idl
  # widl writes the name of its source into what it makes, so it is called where that name is short.
  WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/shell/com"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/shell/com/brindlewort.idl" COMMENT "Compiling the automation interfaces" VERBATIM)
add_custom_command(OUTPUT "${STRING_TABLE}"
  COMMAND "${CMAKE_COMMAND}" "-DTEXTS=${CMAKE_CURRENT_SOURCE_DIR}/shell/help/texts" "-DOUTPUT=${STRING_TABLE}"
    -P "${PROJECT_SOURCE_DIR}/cmake/string_table.cmake"
  DEPENDS ${help_texts} "${PROJECT_SOURCE_DIR}/cmake/string_table.cmake"
  COMMENT "Making the string table of the help texts" VERBATIM)
add_custom_target(automation_interfaces
  DEPENDS "${TYPE_LIBRARY}" "${AUTOMATION_DIR}/brindlewort_com.h" "${AUTOMATION_DIR}/brindlewort_com_i.c")

# The interfaces' numbers, for the server and for hosts in C++.
add_library(bw_automation_ids OBJECT "${AUTOMATION_DIR}/brindlewort_com_i.c")
target_include_directories(bw_automation_ids SYSTEM PUBLIC "${AUTOMATION_DIR}")
add_dependencies(bw_automation_ids automation_interfaces)

# Its files share the system's headers, not those that the other layers share.
set(BRINDLEWORT_PRECOMPILE OFF)
brindlewort_layer(shell/com services/output services/backtest services/alert services/validate shell/help)
target_precompile_headers(bw_shell_com PRIVATE <windows.h> <oleauto.h> <olectl.h> <wrl/client.h> <string> <vector>)
target_link_libraries(bw_shell_com PUBLIC bw_automation_ids)
add_dependencies(bw_shell_com automation_interfaces)

configure_file(shell/com/brindlewort.rc.in "${AUTOMATION_DIR}/brindlewort.rc" @ONLY)
set_source_files_properties("${AUTOMATION_DIR}/brindlewort.rc" PROPERTIES
  INCLUDE_DIRECTORIES "${CMAKE_CURRENT_SOURCE_DIR}/shell/com"
  OBJECT_DEPENDS "${TYPE_LIBRARY};${STRING_TABLE}")

get_property(layers GLOBAL PROPERTY BRINDLEWORT_LAYERS)
# The help texts, which other programs have in their code, are in the string table here.
list(REMOVE_ITEM layers bw_shell_c bw_shell_help)
add_library(brindlewort_server SHARED
  shell/help/help_ids.cpp "${AUTOMATION_DIR}/brindlewort.rc" shell/com/exports.def)
set_target_properties(brindlewort_server PROPERTIES PREFIX "" OUTPUT_NAME Brindlewort)
target_link_libraries(brindlewort_server PRIVATE ${layers} bw_automation_ids ole32 oleaut32 uuid advapi32 kernel32)
# No library of the compiler travels with it, and nothing that it does not use is in it.
target_link_options(brindlewort_server PRIVATE -static LINKER:--gc-sections LINKER:--no-insert-timestamp -s)

add_custom_target(host_package
  COMMAND "${CMAKE_COMMAND}" -DVERSION=${PROJECT_VERSION} "-DBUILD=${CMAKE_BINARY_DIR}" "-DOUTPUT=${CMAKE_BINARY_DIR}"
    -P "${PROJECT_SOURCE_DIR}/packaging/windows/package.cmake"
  DEPENDS brindlewort_server COMMENT "Packing what a host on Windows needs" VERBATIM)

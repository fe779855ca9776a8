# Whether the package holds what it should, in its order.
#
#   cmake -DBUILD=build/windows -DSCRATCH=folder -P packaging/windows/package_test.cmake
cmake_minimum_required(VERSION 3.22)

set(name Brindlewort-0.0.0-windows-x64)
file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -DVERSION=0.0.0 "-DBUILD=${BUILD}" "-DOUTPUT=${SCRATCH}"
    -P "${CMAKE_CURRENT_LIST_DIR}/package.cmake"
  COMMAND_ERROR_IS_FATAL ANY)

execute_process(COMMAND "${CMAKE_COMMAND}" -E tar tf "${SCRATCH}/${name}.zip"
  OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE samples RELATIVE "${CMAKE_CURRENT_LIST_DIR}" "${CMAKE_CURRENT_LIST_DIR}/samples/*")
list(SORT samples)
set(wanted Brindlewort.dll Brindlewort.tlb README.md LICENSE.txt include/brindlewort_com.h include/brindlewort_com_i.c ${samples})
list(TRANSFORM wanted PREPEND "${name}/")
list(JOIN wanted "\n" wanted)
if(NOT found STREQUAL wanted)
  message(FATAL_ERROR "The package holds\n${found}\n\nand not\n${wanted}")
endif()

file(ARCHIVE_EXTRACT INPUT "${SCRATCH}/${name}.zip" DESTINATION "${SCRATCH}")
foreach(file bin/Brindlewort.dll automation/Brindlewort.tlb)
  get_filename_component(packed "${file}" NAME)
  file(SHA256 "${SCRATCH}/${name}/${packed}" is)
  file(SHA256 "${BUILD}/${file}" should_be)
  if(NOT is STREQUAL should_be)
    message(FATAL_ERROR "${packed} is another file than that of the build")
  endif()
endforeach()
file(READ "${SCRATCH}/${name}/LICENSE.txt" licence)
if(NOT licence MATCHES "MIT License.*The Brindlewort developers")
  message(FATAL_ERROR "LICENSE.txt is not the licence")
endif()
foreach(file include/brindlewort_com.h include/brindlewort_com_i.c)
  file(READ "${SCRATCH}/${name}/${file}" text)
  if(NOT text MATCHES "IID_IScriptOutput" OR text MATCHES " from [^ \n]*/")
    message(FATAL_ERROR "${file} lacks the interfaces, or tells of a folder of this machine")
  endif()
endforeach()
file(REMOVE_RECURSE "${SCRATCH}")
message(STATUS "The package is right")

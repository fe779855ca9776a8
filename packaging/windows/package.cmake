# Makes the package for Windows hosts: Brindlewort-<version>-windows-x64.zip in OUTPUT.
#
#   cmake -DVERSION=1.2.3 -DBUILD=build/windows -DOUTPUT=build/windows -P packaging/windows/package.cmake
#
# The order of the files is that of the list below, and all have one time.
cmake_minimum_required(VERSION 3.22)

foreach(needed VERSION BUILD OUTPUT)
  if(NOT ${needed})
    message(FATAL_ERROR "-D${needed}=... is missing")
  endif()
  get_filename_component(${needed}_PATH "${${needed}}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
endforeach()

# What is in the archive, and where it comes from.
set(contents
  Brindlewort.dll "${BUILD_PATH}/bin/Brindlewort.dll"
  Brindlewort.tlb "${BUILD_PATH}/automation/Brindlewort.tlb"
  README.md "${CMAKE_CURRENT_LIST_DIR}/README.md"
  LICENSE.txt "${CMAKE_CURRENT_LIST_DIR}/../../LICENSE"
  include/brindlewort_com.h "${BUILD_PATH}/automation/brindlewort_com.h"
  include/brindlewort_com_i.c "${BUILD_PATH}/automation/brindlewort_com_i.c")
foreach(sample cpp/alert.cpp cpp/backtest.cpp cpp/output.cpp jscript/alert.js jscript/backtest.js jscript/output.js
        jscript/validate.js vbscript/alert.vbs vbscript/backtest.vbs vbscript/live.vbs vbscript/output.vbs
        vbscript/validate.vbs)
  list(APPEND contents "samples/${sample}" "${CMAKE_CURRENT_LIST_DIR}/samples/${sample}")
endforeach()

set(name "Brindlewort-${VERSION}-windows-x64")
set(archive "${OUTPUT_PATH}/${name}.zip")
set(stage "${OUTPUT_PATH}/package")
file(REMOVE_RECURSE "${stage}")
file(REMOVE "${archive}")

set(files "")
while(contents)
  list(POP_FRONT contents file source)
  if(NOT EXISTS "${source}")
    message(FATAL_ERROR "${source} is missing: build the server first")
  endif()
  get_filename_component(folder "${stage}/${name}/${file}" DIRECTORY)
  file(MAKE_DIRECTORY "${folder}")
  configure_file("${source}" "${stage}/${name}/${file}" COPYONLY)
  file(CHMOD "${stage}/${name}/${file}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  list(APPEND files "${name}/${file}")
endwhile()

execute_process(
  COMMAND "${CMAKE_COMMAND}" -E env TZ=UTC
    "${CMAKE_COMMAND}" -E tar cf "${archive}" --format=zip "--mtime=2000-01-01 00:00:00 UTC" -- ${files}
  WORKING_DIRECTORY "${stage}" RESULT_VARIABLE result)
file(REMOVE_RECURSE "${stage}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${archive} cannot be written")
endif()
message(STATUS "${archive}")

# Turns a folder of help texts (NNN.txt, NNN being the entry's number) into the string table of a resource script. Run
# as a script:
#   cmake -DTEXTS=<folder> -DOUTPUT=<file.rc> -P string_table.cmake
# A text loses the line feeds at its end; those within it become escapes.
cmake_minimum_required(VERSION 3.22)

file(GLOB files "${TEXTS}/*.txt")
list(SORT files COMPARE NATURAL)
set(entries "")
foreach(file IN LISTS files)
  get_filename_component(id "${file}" NAME_WE)
  file(READ "${file}" text)
  if(text MATCHES "[^\n -~]")
    message(FATAL_ERROR "${file}: a help text is plain ASCII, so that every code page shows it alike")
  endif()
  string(REGEX REPLACE "[\r\n]+$" "" text "${text}")
  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\"\"" text "${text}")
  string(REPLACE "\n" "\\n" text "${text}")
  string(APPEND entries "  ${id} \"${text}\"\n")
endforeach()

file(WRITE "${OUTPUT}" "// Written by cmake/string_table.cmake; not to be edited.
STRINGTABLE
BEGIN
${entries}END
")

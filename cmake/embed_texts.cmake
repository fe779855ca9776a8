# Turns a folder of help texts (NNN.txt, NNN being the entry's number) into one source file with the table of
# shell/help/help_texts.hpp. Run as a script:
#   cmake -DTEXTS=<folder> -DOUTPUT=<file.cpp> -P embed_texts.cmake
# A text loses the line feeds at its end. It becomes one raw string, so it must stay below the 16 KiB that every
# compiler takes.
cmake_minimum_required(VERSION 3.22)

file(GLOB files "${TEXTS}/*.txt")
list(SORT files COMPARE NATURAL)
set(entries "")
foreach(file IN LISTS files)
  get_filename_component(id "${file}" NAME_WE)
  if(NOT id MATCHES "^[1-9][0-9]*$")
    message(FATAL_ERROR "${file}: a help text is named after its entry's number")
  endif()
  file(READ "${file}" text)
  string(REGEX REPLACE "[\r\n]+$" "" text "${text}")
  string(LENGTH "${text}" length)
  if(length EQUAL 0 OR length GREATER 10000)
    message(FATAL_ERROR "${file}: a help text has 1 to 10000 characters, not ${length}")
  endif()
  string(FIND "${text}" ")help\"" closing)
  if(NOT closing EQUAL -1)
    message(FATAL_ERROR "${file}: holds the mark that ends a raw string, )help\"")
  endif()
  string(APPEND entries "    {${id}, R\"help(${text})help\"},\n")
endforeach()

set(source "// Written by cmake/embed_texts.cmake; not to be edited.
#include \"shell/help/help_texts.hpp\"

namespace brindlewort {

namespace {

constexpr HelpText kHelpTexts[] = {
${entries}};

}  // namespace

std::span<const HelpText> helpTexts() {
  return kHelpTexts;
}

}  // namespace brindlewort
")
file(WRITE "${OUTPUT}" "${source}")

# Compile flags of every target. Results are the same bits on every build, so the compiler may neither
# contract a*b+c into one rounding nor reorder additions. That no floating-point exception traps and that nobody
# reads errno changes no result; it lets loops with a select in them use vector instructions.
add_library(brindlewort_flags INTERFACE)
target_compile_options(brindlewort_flags INTERFACE
  -Wall -Wextra -Wpedantic -ffp-contract=off -fno-fast-math -fno-trapping-math -fno-math-errno
  # GCC 12 sees overlaps and overflows in string concatenation that are not there.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-stringop-overflow -Wno-array-bounds>)
if(BRINDLEWORT_WERROR)
  target_compile_options(brindlewort_flags INTERFACE -Werror)
endif()
if(BRINDLEWORT_SANITIZE)
  target_compile_options(brindlewort_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(brindlewort_flags INTERFACE -fsanitize=address,undefined)
endif()
if(BRINDLEWORT_SANITIZE_THREADS)
  target_compile_options(brindlewort_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(brindlewort_flags INTERFACE -fsanitize=thread)
endif()
if(BRINDLEWORT_COVERAGE)
  target_compile_options(brindlewort_flags INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(brindlewort_flags INTERFACE -fprofile-instr-generate)
elseif(BRINDLEWORT_FUZZ)
  # The fuzzer sees which way each input takes through all of the library. What is compared there it need not see, since
  # inputs are made of the language's own words; that would cost a third of the speed.
  target_compile_options(brindlewort_flags INTERFACE -fsanitize-coverage=inline-8bit-counters,pc-table)
endif()

# brindlewort_precompile(<layer>): the standard headers, compiled with the first layer that asks. A build without it
# shows whether each file includes what it uses.
function(brindlewort_precompile target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fpch-preprocess)  # so that ccache sees what was compiled before
  endif()
  get_property(owner GLOBAL PROPERTY BRINDLEWORT_PRECOMPILED)
  if(owner)
    target_precompile_headers(${target} REUSE_FROM ${owner})
  else()
    target_precompile_headers(${target} PRIVATE <algorithm> <array> <bit> <charconv> <cmath> <cstdint> <functional>
      <limits> <memory> <optional> <span> <string> <string_view> <unordered_map> <utility> <vector>)
    set_property(GLOBAL PROPERTY BRINDLEWORT_PRECOMPILED ${target})
  endif()
endfunction()

# brindlewort_layer(<folder> [<lower layer>...]): one object library per folder of src/. A layer sees only
# the include roots of the layers it names, so an upward include is a compile error. Headers are reached
# as "series/bar.hpp".
function(brindlewort_layer name)
  string(REPLACE "/" "_" target "${name}")
  set(target "bw_${target}")
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp")
  add_library(${target} OBJECT ${sources})
  set_property(GLOBAL APPEND PROPERTY BRINDLEWORT_LAYERS ${target})

  # A forwarding include root holding nothing but this layer's folder.
  set(root "${PROJECT_BINARY_DIR}/layers/${target}")
  get_filename_component(parent "${root}/${name}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}/${name}" "${root}/${name}" SYMBOLIC)
  target_include_directories(${target} PUBLIC "${root}")
  target_link_libraries(${target} PUBLIC brindlewort_flags)
  if(BRINDLEWORT_PRECOMPILE)
    brindlewort_precompile(${target})
  endif()
  foreach(lower IN LISTS ARGN)
    string(REPLACE "/" "_" lower_target "${lower}")
    target_link_libraries(${target} PUBLIC "bw_${lower_target}")
  endforeach()
endfunction()

# How this project compiles: flags, and the function that turns a folder of src/ into a target.

# Release is CMake's -O3: measured a fifth to a third faster than -O2 on arrays of quantiles and on single calls.
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release or RelWithDebInfo" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Programs and libraries side by side: on Windows a program finds the DLL there.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")

# ccache gives up where it cannot write its folder (a build without a home): it is tried before it is trusted.
find_program(PRAL_CCACHE ccache)
if(PRAL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(trial "${PROJECT_BINARY_DIR}/CMakeFiles/ccache_trial")
  file(WRITE "${trial}.cpp" "int main() {}\n")
  execute_process(COMMAND "${PRAL_CCACHE}" "${CMAKE_CXX_COMPILER}" -c "${trial}.cpp" -o "${trial}.o"
    RESULT_VARIABLE ccache_fails OUTPUT_QUIET ERROR_QUIET)
  if(ccache_fails)
    message(STATUS "ccache does not work here (HOME or CCACHE_DIR not writable?): building without it")
  endif()
endif()
if(PRAL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER AND NOT ccache_fails)
  set(CMAKE_C_COMPILER_LAUNCHER "${PRAL_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${PRAL_CCACHE}")
endif()

# What every file of this project is compiled with. Contraction into fused multiply-adds is off and fast-math is never on:
# results must agree on both platforms to the last bit where the runtimes do. Nobody reads errno after a call of the
# runtime's mathematics, and without it sqrt is one instruction.
add_library(pral_options INTERFACE)
target_include_directories(pral_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(pral_options INTERFACE
  -ffp-contract=off -fno-math-errno
  -Wall -Wextra -Wpedantic -Wshadow=local -Wundef -Wmissing-declarations
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  -Werror=return-type -Werror=uninitialized -Werror=format -Werror=switch -Werror=array-bounds)
if(WIN32)
  target_compile_definitions(pral_options INTERFACE _WIN32_WINNT=0x0601)  # Windows 7 and later
endif()
if(PRAL_WARNINGS_AS_ERRORS)
  target_compile_options(pral_options INTERFACE -Werror)
endif()
if(PRAL_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(PRAL_SANITIZE)
  # For every target: a plain program cannot load a library that needs the sanitizers' runtime. The check of casts is not in
  # "undefined": a double that does not fit its integer gives different numbers on different processors.
  add_compile_options(-fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Hardening, for every target: the library lives in a process that opens other people's files. Some of it is a compiler's
# default somewhere; here it does not depend on whose compiler it is. The sanitizers look closer and stand alone.
if(WIN32)
  add_link_options(LINKER:--dynamicbase LINKER:--high-entropy-va LINKER:--nxcompat)
elseif(NOT PRAL_SANITIZE)
  add_compile_options(-fstack-protector-strong "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()

# Nobody asks for floating-point exceptions; without them a comparison may become part of a vector loop.
foreach(source numerics/each numerics/each_normal distributions/arrays distributions/combined
    distributions/univariate)
  set_source_files_properties("${PROJECT_SOURCE_DIR}/src/${source}.cpp" PROPERTIES
    COMPILE_OPTIONS -fno-trapping-math)
endforeach()
set_source_files_properties("${PROJECT_SOURCE_DIR}/src/classic/version.cpp" PROPERTIES
  COMPILE_DEFINITIONS PRAL_VERSION="${PROJECT_VERSION}")

define_property(GLOBAL PROPERTY PRAL_SUBSYSTEMS BRIEF_DOCS "The subsystems that have sources, lowest first")

# pral_subsystem(name [subsystems it stands on...] [LIBRARIES targets...] [APART folder]): the object library pral_<name> of
# src/<name>/. APART: a folder of src/ of its own, inside another subsystem's, whose code is no part of the shared library.
# A folder without sources makes no target and is left out wherever it is named.
function(pral_subsystem name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "APART" "LIBRARIES")
  set(folder ${name})
  if(arg_APART)
    set(folder ${arg_APART})
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp")
  if(NOT arg_APART)
    list(FILTER sources EXCLUDE REGEX "/src/numerics/classical/")
  endif()
  # What it stands on, the whole way down, whether or not the folder itself has sources yet.
  set(below)
  foreach(lower IN LISTS arg_UNPARSED_ARGUMENTS)
    get_property(closure GLOBAL PROPERTY PRAL_CLOSURE_${lower})
    list(APPEND below ${closure})
  endforeach()
  set(closure ${below})
  if(sources)
    add_library(pral_${name} OBJECT ${sources})
    target_compile_definitions(pral_${name} PRIVATE PRAL_CORE_BUILD)
    target_link_libraries(pral_${name} PUBLIC pral_options ${arg_LIBRARIES})
    list(APPEND closure ${name})
    if(NOT arg_APART)
      set_property(GLOBAL APPEND PROPERTY PRAL_SUBSYSTEMS ${name})
    endif()
  endif()
  list(REMOVE_DUPLICATES closure)
  set_property(GLOBAL PROPERTY PRAL_CLOSURE_${name} ${closure})
endfunction()

# pral_link_subsystems(target names...): the objects of the named subsystems and of all they stand on.
function(pral_link_subsystems target)
  set(all)
  foreach(name IN LISTS ARGN)
    get_property(closure GLOBAL PROPERTY PRAL_CLOSURE_${name})
    list(APPEND all ${closure})
  endforeach()
  list(REMOVE_DUPLICATES all)
  foreach(name IN LISTS all)
    target_link_libraries(${target} PRIVATE pral_${name})
  endforeach()
  if(WIN32)
    target_link_libraries(${target} PRIVATE oleaut32)
  endif()
endfunction()

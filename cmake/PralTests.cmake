# Test programs and their CTest entries.

if(CMAKE_CROSSCOMPILING)
  # Debian's sources of GoogleTest: there is no package of it for Windows.
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  add_subdirectory(/usr/src/googletest "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
  if(NOT TARGET GTest::gtest)
    add_library(GTest::gtest ALIAS gtest)
  endif()
else()
  find_package(GTest REQUIRED)
endif()

set(PRAL_TESTS_DIR "${PROJECT_SOURCE_DIR}/tests")

if(CMAKE_CROSSCOMPILING)
  # Wine's services are started before the first program and ended after the last.
  add_test(NAME wine.start COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} --start)
  add_test(NAME wine.stop COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} --stop)
  set_tests_properties(wine.start PROPERTIES FIXTURES_SETUP wine TIMEOUT 300)
  set_tests_properties(wine.stop PROPERTIES FIXTURES_CLEANUP wine TIMEOUT 60)
endif()

# incomplete_gamma_test.cpp -> IncompleteGamma
function(pral_suite_prefix file result)
  get_filename_component(stem "${file}" NAME_WE)
  string(REGEX REPLACE "_test$" "" stem "${stem}")
  string(REPLACE "_" ";" words "${stem}")
  set(prefix)
  foreach(word IN LISTS words)
    string(SUBSTRING "${word}" 0 1 head)
    string(SUBSTRING "${word}" 1 -1 tail)
    string(TOUPPER "${head}" head)
    string(APPEND prefix "${head}${tail}")
  endforeach()
  set(${result} "${prefix}" PARENT_SCOPE)
endfunction()

# pral_test_entry(name command...): one CTest entry, run in tests/.
function(pral_test_entry name)
  add_test(NAME ${name} COMMAND ${ARGN} WORKING_DIRECTORY "${PRAL_TESTS_DIR}")
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
  if(CMAKE_CROSSCOMPILING)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine)
  endif()
endfunction()

# pral_add_tests(folder [SUBSYSTEMS names...] [LIBRARIES targets...]): the program <folder>_tests of tests/<folder>/**_test.cpp
# and one entry <folder>.<kin> per file; a C file there is a program and an entry of its own. An empty folder is skipped.
function(pral_add_tests folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SUBSYSTEMS;LIBRARIES")
  file(GLOB_RECURSE files CONFIGURE_DEPENDS "${PRAL_TESTS_DIR}/${folder}/*_test.cpp")
  if(files)
    set(program ${folder}_tests)
    add_executable(${program} ${files} "${PRAL_TESTS_DIR}/support/main.cpp")
    target_include_directories(${program} PRIVATE "${PRAL_TESTS_DIR}")
    target_link_libraries(${program} PRIVATE pral_options ${arg_LIBRARIES} GTest::gtest)
    if(arg_SUBSYSTEMS)
      pral_link_subsystems(${program} ${arg_SUBSYSTEMS})
      # The objects define the exports, so nothing is imported.
      target_compile_definitions(${program} PRIVATE PRAL_CORE_BUILD)
    endif()
    if(WIN32)
      target_link_options(${program} PRIVATE -static)
    endif()
    set(prefixes)
    foreach(file IN LISTS files)
      pral_suite_prefix("${file}" prefix)
      list(APPEND prefixes ${prefix})
    endforeach()
    foreach(file prefix IN ZIP_LISTS files prefixes)
      # Where one file's prefix begins another's (Gamma, GammaInverse), the longer one keeps its suites for itself.
      set(filter "${prefix}*:*/${prefix}*")
      set(longer)
      foreach(other IN LISTS prefixes)
        if(other MATCHES "^${prefix}." )
          list(APPEND longer "${other}*" "*/${other}*")
        endif()
      endforeach()
      if(longer)
        list(JOIN longer ":" longer)
        string(APPEND filter "-${longer}")
      endif()
      get_filename_component(stem "${file}" NAME_WE)
      string(REGEX REPLACE "_test$" "" stem "${stem}")
      pral_test_entry(${folder}.${stem} ${program} "--gtest_filter=${filter}" --gtest_brief=1)
    endforeach()
    list(JOIN prefixes "," prefixes)
    pral_test_entry(${folder}.every_suite_has_its_file ${program} "--suite-prefixes=${prefixes}")
  endif()

  file(GLOB c_files CONFIGURE_DEPENDS "${PRAL_TESTS_DIR}/${folder}/*.c")
  foreach(file IN LISTS c_files)
    get_filename_component(stem "${file}" NAME_WE)
    add_executable(${folder}_${stem} "${file}")
    target_compile_options(${folder}_${stem} PRIVATE -Wall -Wextra -pedantic -pedantic-errors -Werror)
    target_link_libraries(${folder}_${stem} PRIVATE ${arg_LIBRARIES})
    set_target_properties(${folder}_${stem} PROPERTIES LINKER_LANGUAGE C)
    pral_test_entry(${folder}.${stem} ${folder}_${stem})
  endforeach()
endfunction()

find_package(Python3 REQUIRED COMPONENTS Interpreter)

# pral_library_entry(name what [arguments...]): one check of the built library's tables, or of the file after --library.
function(pral_library_entry name what)
  add_test(NAME ${name} COMMAND "${Python3_EXECUTABLE}" "${PRAL_TESTS_DIR}/exports/check_library.py" ${what}
    --library "$<TARGET_FILE:pral_core>" --header "${PROJECT_SOURCE_DIR}/src/classic/core_api.h" "${PROJECT_SOURCE_DIR}/src/objects/objects.h"
    --compiler "${CMAKE_CXX_COMPILER}" --nm "${CMAKE_NM}" --objdump "${CMAKE_OBJDUMP}" ${ARGN})
  set_tests_properties(${name} PROPERTIES TIMEOUT 60)
endfunction()

# pral_install_entry(install.<how>): installs into a staging folder, and builds and runs tests/install from there.
function(pral_install_entry name)
  string(REPLACE "install." "" how "${name}")
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "|" emulator)  # one argument
  pral_test_entry(${name} "${CMAKE_COMMAND}"
    -D HOW=${how}
    -D BUILD_DIR=${PROJECT_BINARY_DIR}
    -D WORK_DIR=${PROJECT_BINARY_DIR}/${name}
    -D OUTSIDE_PROJECT=${PRAL_TESTS_DIR}/install
    -D LIBRARY_DIR=${CMAKE_INSTALL_LIBDIR}
    -D C_COMPILER=${CMAKE_C_COMPILER}
    -D TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
    -D EMULATOR=${emulator}
    -P "${PRAL_TESTS_DIR}/install/run.cmake")
endfunction()

# GSL and ALGLIB: Debian's libraries on Linux; on Windows static ones, cross-compiled by scripts/windows-deps.sh from
# Debian's sources of the same versions and kept outside the tree.

if(CMAKE_CROSSCOMPILING AND WIN32)
  if(NOT PRAL_WINDOWS_DEPS)
    message(STATUS "Looking for the Windows dependencies (built once, some minutes)")
    execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/windows-deps.sh"
      OUTPUT_VARIABLE PRAL_WINDOWS_DEPS OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  endif()
  message(STATUS "Windows dependencies: ${PRAL_WINDOWS_DEPS}")
  include("${PROJECT_SOURCE_DIR}/cmake/WindowsDependencies.cmake")
else()
  find_package(GSL REQUIRED)
  find_path(ALGLIB_INCLUDE_DIR ap.h PATH_SUFFIXES libalglib alglib REQUIRED)
  find_library(ALGLIB_LIBRARY alglib REQUIRED)
  add_library(ALGLIB::ALGLIB UNKNOWN IMPORTED)
  set_target_properties(ALGLIB::ALGLIB PROPERTIES
    IMPORTED_LOCATION "${ALGLIB_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${ALGLIB_INCLUDE_DIR}")
  if(PRAL_BUILD_CLI)
    find_package(CLI11 REQUIRED)
    find_package(nlohmann_json REQUIRED)
    find_package(fmt REQUIRED)
  endif()
endif()

# The shared library pral_core, made of all subsystems, and its installation.

get_property(subsystems GLOBAL PROPERTY PRAL_SUBSYSTEMS)
file(GLOB public_headers CONFIGURE_DEPENDS
  "${PROJECT_SOURCE_DIR}/src/boundary/core_api.h" "${PROJECT_SOURCE_DIR}/src/boundary/automation.h")
set(empty_source "${PROJECT_BINARY_DIR}/pral_core.cpp")  # a library needs one source of its own, to have a language
file(CONFIGURE OUTPUT "${empty_source}" CONTENT "// All of the library is in its object libraries.\n")

add_library(pral_core SHARED "${empty_source}")
add_library(pral::pral_core ALIAS pral_core)
pral_link_subsystems(pral_core ${subsystems})
target_link_libraries(pral_core PRIVATE GSL::gsl ALGLIB::ALGLIB)
target_include_directories(pral_core INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(pral_core PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)

if(WIN32)
  # pral_core.dll, without "lib": the name that the spreadsheet loads.
  set_target_properties(pral_core PROPERTIES PREFIX "" IMPORT_PREFIX "lib" IMPORT_SUFFIX ".dll.a")
  set_target_properties(pral_core PROPERTIES DLL_NAME_WITH_SOVERSION OFF)
  target_link_options(pral_core PRIVATE
    -static "LINKER:--output-def,${PROJECT_BINARY_DIR}/pral_core.def" LINKER:--exclude-all-symbols)
else()
  set(version_script "${PROJECT_SOURCE_DIR}/cmake/exports.map")
  target_link_options(pral_core PRIVATE "LINKER:--version-script=${version_script}" LINKER:--as-needed)
  set_target_properties(pral_core PROPERTIES LINK_DEPENDS "${version_script}")
  if(NOT PRAL_SANITIZE)
    target_link_options(pral_core PRIVATE LINKER:--no-undefined)
  endif()
endif()

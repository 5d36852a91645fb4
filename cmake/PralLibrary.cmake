# The shared library pral_core, made of all subsystems, and its installation.

get_property(subsystems GLOBAL PROPERTY PRAL_SUBSYSTEMS)
set(empty_source "${PROJECT_BINARY_DIR}/pral_core.cpp")  # a library needs one source of its own, to have a language
file(CONFIGURE OUTPUT "${empty_source}" CONTENT "// All of the library is in its object libraries.\n")

add_library(pral_core SHARED "${empty_source}")
add_library(pral::pral_core ALIAS pral_core)
pral_link_subsystems(pral_core ${subsystems})
target_link_libraries(pral_core PRIVATE GSL::gsl ALGLIB::ALGLIB)
# In the build tree the public headers are found by the names that they have once installed.
set(public_headers src/classic/core_api.h src/classic/automation.h src/objects/objects.h src/objects/objects.hpp)
foreach(header IN LISTS public_headers)
  get_filename_component(name "${header}" NAME)
  configure_file("${PROJECT_SOURCE_DIR}/${header}" "${PROJECT_BINARY_DIR}/include/pral_core/${name}" COPYONLY)
endforeach()
target_include_directories(pral_core INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
add_custom_target(product DEPENDS pral_core)  # what a user gets; the programs add themselves
set_target_properties(pral_core PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX)

if(WIN32)
  # pral_core.dll, without "lib": the name that the spreadsheet loads.
  set_target_properties(pral_core PROPERTIES PREFIX "" IMPORT_PREFIX "lib" IMPORT_SUFFIX ".dll.a")
  target_link_options(pral_core PRIVATE $<$<CONFIG:Release>:-s>
    -static "LINKER:--output-def,${PROJECT_BINARY_DIR}/pral_core.def" LINKER:--exclude-all-symbols)
else()
  set(version_script "${PROJECT_SOURCE_DIR}/cmake/exports.map")
  target_link_options(pral_core PRIVATE "LINKER:--version-script=${version_script}" LINKER:--as-needed)
  set_target_properties(pral_core PROPERTIES LINK_DEPENDS "${version_script}")
  if(NOT PRAL_SANITIZE)
    target_link_options(pral_core PRIVATE LINKER:--no-undefined)
  endif()
endif()

# What `make install` puts in place: the library, its public headers, and what CMake and pkg-config need to find it.
include(CMakePackageConfigHelpers)
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/pral_core")
file(RELATIVE_PATH pkgconfig_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/pral_core.pc.in" "${PROJECT_BINARY_DIR}/pral_core.pc" @ONLY)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/pral_coreConfigVersion.cmake" COMPATIBILITY SameMajorVersion)

install(TARGETS pral_core EXPORT pral_core
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES ${public_headers} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/pral_core")
install(EXPORT pral_core NAMESPACE pral:: FILE pral_coreConfig.cmake DESTINATION "${package_dir}")
install(FILES "${PROJECT_BINARY_DIR}/pral_coreConfigVersion.cmake" DESTINATION "${package_dir}")
install(FILES "${PROJECT_BINARY_DIR}/pral_core.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")
if(WIN32)
  install(FILES "${PROJECT_BINARY_DIR}/pral_core.def" DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endif()

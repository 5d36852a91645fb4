# The targets of what scripts/windows-deps.sh has put into PRAL_WINDOWS_DEPS.

function(pral_staged_library target archive)
  add_library(${target} STATIC IMPORTED)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION "${PRAL_WINDOWS_DEPS}/lib/${archive}"
    INTERFACE_INCLUDE_DIRECTORIES "${PRAL_WINDOWS_DEPS}/include"
    INTERFACE_LINK_LIBRARIES "${ARGN}")
endfunction()

pral_staged_library(GSL::gsl libgsl.a)
pral_staged_library(ALGLIB::ALGLIB libalglib.a)
target_include_directories(ALGLIB::ALGLIB SYSTEM INTERFACE "${PRAL_WINDOWS_DEPS}/include/libalglib")

# Used as headers alone.
foreach(target CLI11::CLI11 nlohmann_json::nlohmann_json fmt::fmt-header-only)
  add_library(${target} INTERFACE IMPORTED)
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${PRAL_WINDOWS_DEPS}/include")
endforeach()
target_compile_definitions(fmt::fmt-header-only INTERFACE FMT_HEADER_ONLY=1)

# Installs the build into a staging folder, builds the outside project against it (HOW: cmake_package or pkg_config) and
# runs what came out, under EMULATOR (words separated by |) where there is one.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
set(stage "${WORK_DIR}/stage")
set(outside "${WORK_DIR}/build")
file(MAKE_DIRECTORY "${outside}")

run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${stage}")

if(TOOLCHAIN_FILE)
  set(suffix .exe)
  set(toolchain "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE}" "-DCMAKE_FIND_ROOT_PATH=${stage}")
  # A Windows program finds the DLL beside itself.
  file(COPY "${stage}/bin/pral_core.dll" DESTINATION "${outside}")
endif()

if(HOW STREQUAL "cmake_package")
  run("${CMAKE_COMMAND}" -G Ninja -S "${OUTSIDE_PROJECT}" -B "${outside}" "-DCMAKE_PREFIX_PATH=${stage}"
    "-DCMAKE_C_COMPILER=${C_COMPILER}" ${toolchain})
  run("${CMAKE_COMMAND}" --build "${outside}")
else()
  set(ENV{PKG_CONFIG_LIBDIR} "${stage}/${LIBRARY_DIR}/pkgconfig")
  run(pkg-config --cflags --libs pral_core)
  separate_arguments(flags UNIX_COMMAND "${output}")
  run("${C_COMPILER}" -std=c11 -Wall -Wextra -pedantic -Werror "${OUTSIDE_PROJECT}/outside.c" -o "${outside}/outside${suffix}"
    ${flags})
  set(ENV{LD_LIBRARY_PATH} "${stage}/${LIBRARY_DIR}")
endif()

string(REPLACE "|" ";" emulator "${EMULATOR}")
run(${emulator} "${outside}/outside${suffix}")
message("${output}")

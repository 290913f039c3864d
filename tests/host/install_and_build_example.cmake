# Installs the built project to a fresh prefix, then configures and builds
# examples/minimal-host against it, as a host project outside this tree would.
# Variables: BUILD_DIR (this project's build), EXAMPLE_DIR, WORK_DIR, GENERATOR, BUILD_TYPE.
foreach(var BUILD_DIR EXAMPLE_DIR WORK_DIR GENERATOR)
    if(NOT DEFINED ${var})
        message(FATAL_ERROR "${var} is not set")
    endif()
endforeach()

file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")

function(run step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${step} failed (${result}):\n${out}\n${err}")
    endif()
endfunction()

run("Installing" "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
foreach(file
        include/DashlonViewer/control/dlviewer.h
        include/DashlonViewer/webdata/webvariant.h
        include/DashlonViewer/common/ordereddict.h)
    if(NOT EXISTS "${prefix}/${file}")
        message(FATAL_ERROR "The installed package lacks ${file}")
    endif()
endforeach()

run("Configuring the example" "${CMAKE_COMMAND}" -S "${EXAMPLE_DIR}" -B "${WORK_DIR}/build"
    -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}")
run("Building the example" "${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
message(STATUS "minimal-host builds against the package installed in ${prefix}")

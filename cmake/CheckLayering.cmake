# Checks the include rule between the source folders: a folder includes only from itself and the
# layers below it, so nothing runs from a lower layer up to control/ (or from the non-GUI library
# up to the widget code).
#
#   cmake -DSOURCE_DIR=<folder holding common/, webdata/, ...> -P CheckLayering.cmake
#
# Fails with one line per offending include.

cmake_minimum_required(VERSION 3.24)

if(NOT SOURCE_DIR)
    message(FATAL_ERROR "CheckLayering: pass -DSOURCE_DIR=<source folder>")
endif()
get_filename_component(SOURCE_DIR "${SOURCE_DIR}" ABSOLUTE)

# Each layer and the folders it may include from (itself first).
set(allowed_common   common)
set(allowed_webdata  webdata common)
set(allowed_model    model webdata common)
set(allowed_ui       ui model webdata common)
set(allowed_views    views model webdata common)
set(allowed_profiles profiles views ui model webdata common)
set(allowed_control  control profiles views ui model webdata common)
set(layers common webdata model ui views profiles control)

set(violations "")
set(checked 0)
foreach(layer IN LISTS layers)
    file(GLOB_RECURSE sources LIST_DIRECTORIES false
        "${SOURCE_DIR}/${layer}/*.h" "${SOURCE_DIR}/${layer}/*.cpp")
    foreach(source IN LISTS sources)
        math(EXPR checked "${checked} + 1")
        file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"][a-z]+/")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*[<\"]([a-z]+)/.*" "\\1" target "${line}")
            # Only the project's own folders count (Qt and the system use other names).
            if(NOT target IN_LIST layers AND NOT target STREQUAL "host")
                continue()
            endif()
            if(NOT target IN_LIST allowed_${layer})
                file(RELATIVE_PATH shown "${SOURCE_DIR}" "${source}")
                string(STRIP "${line}" line)
                list(JOIN allowed_${layer} ", " allowed)
                list(APPEND violations "${shown}: ${line} (${layer}/ may include only ${allowed})")
            endif()
        endforeach()
    endforeach()
endforeach()

if(checked EQUAL 0)
    message(FATAL_ERROR "CheckLayering: no sources under ${SOURCE_DIR}")
endif()
if(violations)
    list(LENGTH violations count)
    list(JOIN violations "\n  " text)
    message(FATAL_ERROR "${count} include(s) against the layering:\n  ${text}")
endif()
message(STATUS "Layering kept: ${checked} files checked")

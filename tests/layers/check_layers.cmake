cmake_minimum_required(VERSION 3.23)

# Holds the floors of the house: a floor includes only itself and floors below it, and everything
# is included from the source root.
#   cmake -DSOURCE=... -P check_layers.cmake

get_filename_component(SOURCE "${SOURCE}" ABSOLUTE)

set(ALLOWED_Tools Tools)
set(ALLOWED_Math Math ${ALLOWED_Tools})
set(ALLOWED_ImageProcessing ImageProcessing ${ALLOWED_Math})
set(ALLOWED_Calibrate Calibrate ${ALLOWED_ImageProcessing})
set(ALLOWED_FingerCoding FingerCoding ${ALLOWED_ImageProcessing})
set(ALLOWED_TessarinCalibrateSDK TessarinCalibrateSDK FingerCoding ${ALLOWED_Calibrate})

file(GLOB_RECURSE files RELATIVE "${SOURCE}" "${SOURCE}/*.h" "${SOURCE}/*.cpp")
list(LENGTH files count)
if(count LESS 50)
    message(FATAL_ERROR "only ${count} files found below ${SOURCE}")
endif()
foreach(file IN LISTS files)
    string(REGEX REPLACE "/.*" "" floor "${file}")
    file(STRINGS "${SOURCE}/${file}" includes REGEX "^#include \"")
    foreach(line IN LISTS includes)
        string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" path "${line}")
        string(REGEX REPLACE "/.*" "" target "${path}")
        if(NOT target IN_LIST ALLOWED_${floor})
            message(SEND_ERROR "${file} includes ${path}")
        endif()
    endforeach()
    # A kernel knows no image.
    if(file MATCHES "^ImageProcessing/Kernels/" AND "${includes}" MATCHES "FpImage|/Ip[A-Z]")
        message(SEND_ERROR "the kernel ${file} includes an image or an operator")
    endif()
endforeach()
message(STATUS "${count} files keep to their floors")

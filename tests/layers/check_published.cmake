cmake_minimum_required(VERSION 3.23)

# Holds that no processor is forgotten: each processor class of src/ImageProcessing and
# src/FingerCoding is named in one of the tests that compare published parameters and the common
# answers of a processor.
#   cmake -DROOT=... -P check_published.cmake

file(GLOB tests "${ROOT}/tests/ImageProcessing/Published*Test.cpp"
    "${ROOT}/tests/FingerCoding/Published*Test.cpp")
set(tested "")
foreach(test IN LISTS tests)
    file(READ "${test}" text)
    string(APPEND tested "${text}")
endforeach()

file(GLOB headers "${ROOT}/src/ImageProcessing/Ip*.h" "${ROOT}/src/FingerCoding/Ip*.h")
set(count 0)
foreach(header IN LISTS headers)
    file(READ "${header}" text)
    if(NOT text MATCHES "ClProcessorBase\\* Create\\(\\) override")
        continue()
    endif()
    get_filename_component(class "${header}" NAME_WE)
    math(EXPR count "${count} + 1")
    if(NOT tested MATCHES "Cl${class}[^A-Za-z0-9]")
        message(SEND_ERROR "no published parameters are compared for Cl${class}")
    endif()
endforeach()
if(count LESS 25)
    message(FATAL_ERROR "only ${count} processors found below ${ROOT}/src")
endif()
message(STATUS "${count} processors are compared")

cmake_minimum_required(VERSION 3.23)

# Holds that no processor is forgotten: each processor class of src/ImageProcessing and
# src/FingerCoding is named in one of the tests that compare published parameters and the common
# answers of a processor, and each processor class of all in the table of runs.
#   cmake -DROOT=... -P check_published.cmake

file(GLOB tests "${ROOT}/tests/ImageProcessing/Published*Test.cpp"
    "${ROOT}/tests/FingerCoding/Published*Test.cpp")
set(tested "")
foreach(test IN LISTS tests)
    file(READ "${test}" text)
    string(APPEND tested "${text}")
endforeach()
file(READ "${ROOT}/tests/processors/ProcessorRuns.cpp" runs)

# expect_named(<text> <folder>... ): each processor of the folders stands in the text; sets `count`.
function(expect_named text what)
    set(number 0)
    foreach(folder IN LISTS ARGN)
        file(GLOB headers "${ROOT}/src/${folder}/Ip*.h")
        foreach(header IN LISTS headers)
            file(READ "${header}" content)
            if(NOT content MATCHES "ClProcessorBase\\* Create\\(\\) override")
                continue()
            endif()
            get_filename_component(class "${header}" NAME_WE)
            math(EXPR number "${number} + 1")
            if(NOT text MATCHES "Cl${class}[^A-Za-z0-9]")
                message(SEND_ERROR "${what} Cl${class}")
            endif()
        endforeach()
    endforeach()
    set(count ${number} PARENT_SCOPE)
endfunction()

expect_named("${tested}" "no published parameters are compared for" ImageProcessing FingerCoding)
if(count LESS 25)
    message(FATAL_ERROR "only ${count} processors found below ${ROOT}/src")
endif()
message(STATUS "${count} processors are compared")

string(REGEX MATCHALL "Row<[A-Za-z0-9]+>" rows "${runs}")
expect_named("${rows}" "no run is told for"
    ImageProcessing FingerCoding Calibrate TessarinCalibrateSDK)
message(STATUS "${count} processors are run")

cmake_minimum_required(VERSION 3.23)

# Compares what the Debian packages say of the library with the library: every exported symbol has a
# line, no other has one, and the newest entry of the changelog is of the project's version.
#   cmake -DLIBRARY=... -DNM=... -DDEBIAN=... -DVERSION=... -P check_debian.cmake

execute_process(COMMAND "${NM}" --dynamic --defined-only --format=posix "${LIBRARY}"
    OUTPUT_VARIABLE table RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${NM} failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "[^\n]+" rows "${table}")
list(TRANSFORM rows REPLACE " .*" "" OUTPUT_VARIABLE exported)

file(STRINGS "${DEBIAN}/libtessarincalibratesdk1.symbols" rows REGEX "^ ")
set(listed)
foreach(row IN LISTS rows)
    if(NOT row MATCHES "^ ([A-Za-z_]+)@Base ([0-9]+\\.[0-9]+\\.[0-9]+)$")
        message(SEND_ERROR "no symbol with the version that brought it: ${row}")
    elseif(CMAKE_MATCH_2 VERSION_GREATER VERSION)
        message(SEND_ERROR "a symbol of a later version than ${VERSION}: ${row}")
    endif()
    list(APPEND listed "${CMAKE_MATCH_1}")
endforeach()

foreach(symbol IN LISTS exported)
    if(NOT symbol IN_LIST listed)
        message(SEND_ERROR "exported, but not in the list of the package: ${symbol}")
    endif()
endforeach()
foreach(symbol IN LISTS listed)
    if(NOT symbol IN_LIST exported)
        message(SEND_ERROR "in the list of the package, but not exported: ${symbol}")
    endif()
endforeach()

file(STRINGS "${DEBIAN}/changelog" newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^tessarincalibratesdk \\(([0-9.]+)-0team[0-9]+\\) ")
    message(SEND_ERROR "no entry of the usual form: ${newest}")
elseif(NOT CMAKE_MATCH_1 VERSION_EQUAL VERSION)
    message(SEND_ERROR "the newest entry is of ${CMAKE_MATCH_1}, the project has ${VERSION}")
endif()
list(LENGTH listed count)
message(STATUS "${count} symbols, version ${VERSION}")

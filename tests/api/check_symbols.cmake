cmake_minimum_required(VERSION 3.23)

# Compares the dynamic symbol table of the shared library with the list of exported symbols.
#   cmake -DLIBRARY=... -DNM=... -DLIST=... -P check_symbols.cmake

execute_process(COMMAND "${NM}" -D --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE table RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${NM} failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "[^\n]+" lines "${table}")
set(exported)
foreach(line IN LISTS lines)
    string(REGEX REPLACE ".* " "" symbol "${line}")
    list(APPEND exported "${symbol}")
endforeach()

file(STRINGS "${LIST}" documented REGEX "^[A-Za-z]")

foreach(symbol IN LISTS exported)
    if(NOT symbol IN_LIST documented)
        message(SEND_ERROR "exported, but not documented: ${symbol}")
    endif()
endforeach()
foreach(symbol IN LISTS documented)
    if(NOT symbol IN_LIST exported)
        message(SEND_ERROR "documented, but not exported: ${symbol}")
    endif()
endforeach()
list(LENGTH exported count)
message(STATUS "${count} symbols exported")

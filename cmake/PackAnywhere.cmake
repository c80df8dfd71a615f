# Where an archive will be unpacked is not known when it is packed: its file of pkg-config tells the
# prefix from where it lies itself, which pkg-config escapes, so that nothing is quoted.

set(prefix "${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}")
file(GLOB_RECURSE files "${prefix}/*.pc")
foreach(file IN LISTS files)
    get_filename_component(folder "${file}" DIRECTORY)
    file(RELATIVE_PATH up "${folder}" "${prefix}")
    string(REGEX REPLACE "/$" "" up "${up}")
    file(READ "${file}" text)
    string(REGEX REPLACE "^prefix=[^\n]*" "prefix=\${pcfiledir}/${up}" text "${text}")
    string(REPLACE "\"" "" text "${text}")
    file(WRITE "${file}" "${text}")
endforeach()

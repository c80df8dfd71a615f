# What an installation holds: headers, both libraries, the CMake package and the pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS TessarinCalibrateSDK
    EXPORT TessarinCalibrateSDKTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS TessarinCalibrateSDK_static
    EXPORT TessarinCalibrateSDKTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES
    "${PROJECT_SOURCE_DIR}/include/TessarinCalibrateSDK.h"
    "${PROJECT_SOURCE_DIR}/include/TessarinCalibrateSDK.hpp"
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(TESSARIN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TessarinCalibrateSDK)
# Not where find_package() looks: without the targets, which are only made for an installation, a build
# is no package.
set(TESSARIN_CMAKE_FILES "${PROJECT_BINARY_DIR}/CMakeFiles/package")
install(EXPORT TessarinCalibrateSDKTargets
    NAMESPACE TessarinCalibrateSDK::
    DESTINATION ${TESSARIN_CMAKE_DIR})
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/TessarinCalibrateSDKConfig.cmake.in"
    "${TESSARIN_CMAKE_FILES}/TessarinCalibrateSDKConfig.cmake"
    INSTALL_DESTINATION ${TESSARIN_CMAKE_DIR})
write_basic_package_version_file(
    "${TESSARIN_CMAKE_FILES}/TessarinCalibrateSDKConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${TESSARIN_CMAKE_FILES}/TessarinCalibrateSDKConfig.cmake"
    "${TESSARIN_CMAKE_FILES}/TessarinCalibrateSDKConfigVersion.cmake"
    DESTINATION ${TESSARIN_CMAKE_DIR})

# The prefix is known when it is installed, not before. Folders below it are told by it, so that it can
# be changed in one place.
foreach(folder LIBDIR INCLUDEDIR)
    set(PC_${folder} "\\\${prefix}/${CMAKE_INSTALL_${folder}}")
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
        set(PC_${folder} "${CMAKE_INSTALL_${folder}}")
    endif()
endforeach()
install(CODE "
    get_filename_component(PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
    set(PC_LIBDIR \"${PC_LIBDIR}\")
    set(PC_INCLUDEDIR \"${PC_INCLUDEDIR}\")
    set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
    set(PROJECT_VERSION \"${PROJECT_VERSION}\")
    configure_file(\"${PROJECT_SOURCE_DIR}/packaging/TessarinCalibrateSDK.pc.in\"
        \"${PROJECT_BINARY_DIR}/TessarinCalibrateSDK.pc\" @ONLY)")
install(FILES "${PROJECT_BINARY_DIR}/TessarinCalibrateSDK.pc"
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# An archive for systems without a package of their own; those of Debian are in packaging/debian. What a
# larger project packs is its own affair.
if(PROJECT_IS_TOP_LEVEL)
    set(CPACK_GENERATOR TGZ)
    set(CPACK_PACKAGE_NAME libtessarincalibratesdk)
    set(CPACK_SYSTEM_NAME "${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
    set(CPACK_PACKAGE_CONTACT "The QK7 calibration team <qk7@example.org>")
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/PackAnywhere.cmake")
    include(CPack)
endif()

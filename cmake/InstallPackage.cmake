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
install(EXPORT TessarinCalibrateSDKTargets
    NAMESPACE TessarinCalibrateSDK::
    DESTINATION ${TESSARIN_CMAKE_DIR})
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/TessarinCalibrateSDKConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/TessarinCalibrateSDKConfig.cmake"
    INSTALL_DESTINATION ${TESSARIN_CMAKE_DIR})
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/TessarinCalibrateSDKConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/TessarinCalibrateSDKConfig.cmake"
    "${PROJECT_BINARY_DIR}/TessarinCalibrateSDKConfigVersion.cmake"
    DESTINATION ${TESSARIN_CMAKE_DIR})

# The prefix is known when it is installed, not before.
install(CODE "
    set(PC_LIBDIR \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\")
    set(PC_INCLUDEDIR \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_INCLUDEDIR}\")
    set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
    set(PROJECT_VERSION \"${PROJECT_VERSION}\")
    configure_file(\"${PROJECT_SOURCE_DIR}/packaging/TessarinCalibrateSDK.pc.in\"
        \"${PROJECT_BINARY_DIR}/TessarinCalibrateSDK.pc\" @ONLY)")
install(FILES "${PROJECT_BINARY_DIR}/TessarinCalibrateSDK.pc"
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# An archive for systems without a package of their own; those of Debian are in packaging/debian.
set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_NAME libtessarincalibratesdk)
set(CPACK_SYSTEM_NAME "${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_PACKAGE_CONTACT "The QK7 calibration team <qk7@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)

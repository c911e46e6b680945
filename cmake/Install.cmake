# SPDX-License-Identifier: MIT
# What is installed where: the plug-in in a separate folder, since hosts open it by path and no linker should find it;
# the interface header as the CMake target DataProviderInterface::DataProviderInterface and for pkg-config; host, example
# and documents.
#
# The components `runtime` and `dev` go into the Debian packages of these kinds. The rest is for other installations:
# Debian has its own files and folders for licence, changes and the example of the -dev package.
include(CMakePackageConfigHelpers)

set(OFP_PACKAGE_NAME "openfoam-data-provider")
set(OFP_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/${OFP_PACKAGE_NAME}")
set(OFP_INCLUDE_DIR "${CMAKE_INSTALL_INCLUDEDIR}/${OFP_PACKAGE_NAME}")
set(OFP_CONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/DataProviderInterface")
set(OFP_DOC_DIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/${OFP_PACKAGE_NAME}")

install(TARGETS OpenFoamPlugin LIBRARY DESTINATION "${OFP_PLUGIN_DIR}" COMPONENT runtime)
if(OFP_BUILD_HOST)
    install(TARGETS ddphost RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
endif()
install(FILES README.md CONTRIBUTING.md SECURITY.md DESTINATION "${OFP_DOC_DIR}" COMPONENT runtime)
install(DIRECTORY docs DESTINATION "${OFP_DOC_DIR}" COMPONENT runtime)
install(DIRECTORY examples/cavity DESTINATION "${OFP_DOC_DIR}/examples" COMPONENT runtime)

install(TARGETS DataProviderInterface EXPORT DataProviderInterfaceTargets
        FILE_SET HEADERS DESTINATION "${OFP_INCLUDE_DIR}" COMPONENT dev)
install(EXPORT DataProviderInterfaceTargets NAMESPACE DataProviderInterface:: DESTINATION "${OFP_CONFIG_DIR}"
        FILE DataProviderInterfaceConfig.cmake COMPONENT dev)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/DataProviderInterfaceConfigVersion.cmake" VERSION 7.0
                                 COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES "${PROJECT_BINARY_DIR}/DataProviderInterfaceConfigVersion.cmake" DESTINATION "${OFP_CONFIG_DIR}"
        COMPONENT dev)

# Written by the installation, which alone knows the prefix: --prefix changes it.
install(CODE "
    set(name [[${OFP_PACKAGE_NAME}]])
    set(description [[${PROJECT_DESCRIPTION}]])
    set(version [[${PROJECT_VERSION}]])
    set(includedir [[${OFP_INCLUDE_DIR}]])
    set(plugindir [[${OFP_PLUGIN_DIR}]])
    configure_file([[${CMAKE_CURRENT_LIST_DIR}/${OFP_PACKAGE_NAME}.pc.in]]
                   [[${PROJECT_BINARY_DIR}/${OFP_PACKAGE_NAME}.pc]] @ONLY)" COMPONENT dev)
install(FILES "${PROJECT_BINARY_DIR}/${OFP_PACKAGE_NAME}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT dev)

install(FILES CHANGELOG.md LICENSE DESTINATION "${OFP_DOC_DIR}")
install(DIRECTORY examples/minimal_host DESTINATION "${OFP_DOC_DIR}/examples")

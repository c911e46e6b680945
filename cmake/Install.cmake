# SPDX-License-Identifier: MIT
# What is installed where: the plug-in in a separate folder, since hosts open it by path and no linker should find it;
# the interface header as the CMake target DataProviderInterface::DataProviderInterface; host, example and documents.
include(CMakePackageConfigHelpers)

set(OFP_PACKAGE_NAME "openfoam-data-provider")
set(OFP_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/${OFP_PACKAGE_NAME}")
set(OFP_CONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/DataProviderInterface")
set(OFP_DOC_DIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/${OFP_PACKAGE_NAME}")

install(TARGETS OpenFoamPlugin LIBRARY DESTINATION "${OFP_PLUGIN_DIR}")
install(TARGETS DataProviderInterface EXPORT DataProviderInterfaceTargets FILE_SET HEADERS
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${OFP_PACKAGE_NAME}")
install(EXPORT DataProviderInterfaceTargets NAMESPACE DataProviderInterface:: DESTINATION "${OFP_CONFIG_DIR}"
        FILE DataProviderInterfaceConfig.cmake)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/DataProviderInterfaceConfigVersion.cmake" VERSION 7.0
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/DataProviderInterfaceConfigVersion.cmake" DESTINATION "${OFP_CONFIG_DIR}")

if(OFP_BUILD_HOST)
    install(TARGETS ddphost RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

install(FILES README.md SECURITY.md CONTRIBUTING.md CHANGELOG.md LICENSE DESTINATION "${OFP_DOC_DIR}")
install(DIRECTORY docs examples DESTINATION "${OFP_DOC_DIR}")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME "${OFP_PACKAGE_NAME}")
set(CPACK_PACKAGE_CONTACT "The maintainers <maintainers@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/PackagingTools.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/PackageDepends.cmake")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
# Otherwise the package and its staging folder go to the caller's folder.
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
include(CPack)

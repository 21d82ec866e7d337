# What a program finds after installation: the CMake package, the pkg-config file, .deb packages.

include(CMakePackageConfigHelpers)

set(thePackageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/vx)
install(EXPORT vxTargets NAMESPACE vx:: DESTINATION ${thePackageFolder} COMPONENT development)
configure_package_config_file(cmake/vxConfig.cmake.in ${PROJECT_BINARY_DIR}/vxConfig.cmake
    INSTALL_DESTINATION ${thePackageFolder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vxConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vxConfig.cmake ${PROJECT_BINARY_DIR}/vxConfigVersion.cmake
    DESTINATION ${thePackageFolder} COMPONENT development)

# The prefix is relative to the file, so that the installed tree can be moved.
file(RELATIVE_PATH VX_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/vx.pc.in ${PROJECT_BINARY_DIR}/vx.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vx.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(PROJECT_IS_TOP_LEVEL)
    set(CPACK_PACKAGE_NAME libvx)
    set(CPACK_PACKAGE_CONTACT "libvx developers")
    set(CPACK_COMPONENTS_ALL runtime development)
    set(CPACK_DEB_COMPONENT_INSTALL ON)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvx${PROJECT_VERSION_MAJOR})
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvx-dev)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
        "libvx${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
    include(CPack)
endif()

# Two Debian packages, one for each component: varkel and varkel-simulator. "cpack" in the build directory of the preset
# "package" makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME varkel)
set(CPACK_PACKAGE_CONTACT "The Varkel developers <varkel@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL varkel simulator)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_COMPONENT_VARKEL_DESCRIPTION
    "Calls, short messages, phonebooks and a data link over a 3G/GSM modem on a
serial port, on a touch screen of 800 by 480 or without one. With a client for
other programs of the unit.")
set(CPACK_DEBIAN_VARKEL_PACKAGE_NAME varkel)
set(CPACK_DEBIAN_VARKEL_PACKAGE_SECTION comm)
set(CPACK_DEBIAN_VARKEL_PACKAGE_DEPENDS
    "systemd | systemd-standalone-sysusers, fontconfig-config, fonts-dejavu-core, fonts-droid-fallback")
set(CPACK_DEBIAN_VARKEL_PACKAGE_RECOMMENDS "dbus, ppp")
set(CPACK_DEBIAN_VARKEL_PACKAGE_SUGGESTS "espeak-ng, varkel-simulator")
set(CPACK_DEBIAN_VARKEL_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/data/debian/postinst
    ${PROJECT_SOURCE_DIR}/data/debian/prerm
    ${PROJECT_SOURCE_DIR}/data/debian/postrm
    ${PROJECT_SOURCE_DIR}/data/debian/conffiles)

set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION
    "The simulated unit: a modem on a pseudo-terminal with a SIM and a network,
callers, messages, faults and scenarios, for trying and testing without
hardware.")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME varkel-simulator)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION comm)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS "varkel, dbus")
include(CPack)

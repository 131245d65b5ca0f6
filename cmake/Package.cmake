# `make package`: a Debian package built by CPack, its dependencies found by dpkg-shlibdeps.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillon)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Quillon developers <developers@quillon.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "open files, applications and scripts at scheduled times")
set(CPACK_PACKAGE_DESCRIPTION "Quillon keeps a list of applications, documents, scripts and
folders, each with a launch date and time, and opens them when their time
comes. It repeats, wakes the machine before a launch and can announce every
launch by e-mail.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://quillon.org/")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# libsecret comes with the shared libraries dpkg-shlibdeps finds; these are loaded or run by name.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, qt6-qpa-plugins, qt6-wayland, shared-mime-info, xdg-utils")
# A keyring daemon is what libsecret talks to; polkit lets the active session use the wake service.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gnome-keyring | kwalletmanager | keepassxc, polkitd")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
include(CPack)

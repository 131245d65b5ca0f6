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
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, libsecret-1-0, qt6-qpa-plugins, qt6-wayland, shared-mime-info, xdg-utils")
# The keyring library is loaded at run time; a keyring daemon is what it talks to.
# polkit lets the active session use the wake service.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gnome-keyring | kwalletmanager | keepassxc, polkitd")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)

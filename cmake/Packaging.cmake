# What `cmake --install` lays besides the programs, and the .deb that `cpack` makes of it for hosts: no
# service and no maintainer script, so that installing it starts and changes nothing.
# The daemon and the applier know the scripts by this path, whatever the prefix.
install(PROGRAMS hooks/init.sh hooks/commit.sh hooks/reload.sh hooks/nvram.sh
    DESTINATION /etc/qorcfg.d)
install(FILES packaging/qorcfg.conf DESTINATION /etc/qorcfg)
install(FILES docs/man/qorctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES docs/man/qorcfg.conf.5 docs/man/qorcfg-batch.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES docs/man/qorcfg.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
install(FILES packaging/bash-completion/qorctl
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON) # packing takes what is built, and builds nothing
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The qorcfg developers <qorcfg@localhost>")
set(CPACK_SET_DESTDIR ON) # some of the paths are absolute
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/packaging/deb/conffiles)
include(CPack)

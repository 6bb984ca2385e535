# What is installed where, and the two Debian packages: txinspect, the desktop programs, and txinspect-tools, the
# programs that need no display. Every file belongs to one of the two components.
include(GNUInstallDirs)

set(TX_HOMEPAGE "https://txinspect.example.org" CACHE STRING "Where the packages say that the project is at home")
set(TX_AUTHOR "The authors of txinspect" CACHE STRING "Who makes the packages")
set(TX_MAINTAINER "${TX_AUTHOR} <packages@txinspect.example.org>" CACHE STRING "Whom to write to about the packages")

string(TIMESTAMP TX_DATE "%Y-%m-%d" UTC) # of SOURCE_DATE_EPOCH, where that is set
string(TIMESTAMP TX_RFC_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(made ${CMAKE_CURRENT_BINARY_DIR}/packaging)

# Configures a file that holds the version or the date; packed files are those that Debian wants so.
function(tx_made source target)
    configure_file(packaging/${source} ${made}/${target} @ONLY)
endfunction()
function(tx_packed source target)
    tx_made(${source} ${target})
    execute_process(COMMAND gzip -9 -n -f -k ${target} WORKING_DIRECTORY ${made} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(tx_package component)
    install(TARGETS ${ARGN} COMPONENT ${component})
    tx_packed(debian/changelog.in ${component}/changelog)
    install(FILES ${made}/${component}/changelog.gz packaging/debian/copyright
            DESTINATION share/doc/${component} COMPONENT ${component})
    install(FILES packaging/debian/${component}.lintian-overrides RENAME ${component}
            DESTINATION share/lintian/overrides COMPONENT ${component})
    foreach(program ${ARGN})
        tx_packed(man/${program}.1.in ${program}.1)
        install(FILES ${made}/${program}.1.gz DESTINATION share/man/man1 COMPONENT ${component})
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/completions/_${program})
            install(FILES packaging/completions/${program}.bash RENAME ${program}
                    DESTINATION share/bash-completion/completions COMPONENT ${component})
            install(FILES packaging/completions/_${program}
                    DESTINATION share/zsh/vendor-completions COMPONENT ${component})
        endif()
    endforeach()
endfunction()

tx_package(txinspect txinspect txstart)
install(FILES packaging/org.txinspect.TxInspect.desktop DESTINATION share/applications COMPONENT txinspect)
tx_made(org.txinspect.TxInspect.metainfo.xml.in org.txinspect.TxInspect.metainfo.xml)
install(FILES ${made}/org.txinspect.TxInspect.metainfo.xml DESTINATION share/metainfo COMPONENT txinspect)
install(FILES packaging/icons/txinspect.svg DESTINATION share/icons/hicolor/scalable/apps COMPONENT txinspect)
foreach(size 16 22 24 32 48 64 128 256)
    install(FILES packaging/icons/txinspect-${size}.png RENAME txinspect.png
            DESTINATION share/icons/hicolor/${size}x${size}/apps COMPONENT txinspect)
endforeach()

tx_package(txinspect-tools txcheck txsample)
install(FILES packaging/systemd/txcheck@.service packaging/systemd/txcheck@.timer
        DESTINATION lib/systemd/system COMPONENT txinspect-tools)
install(PROGRAMS packaging/systemd/kept-check DESTINATION libexec/txinspect COMPONENT txinspect-tools)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGE_NAME txinspect)
set(CPACK_PACKAGE_CONTACT "${TX_MAINTAINER}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL txinspect txinspect-tools)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${TX_HOMEPAGE}")
set(CPACK_DEBIAN_TXINSPECT_PACKAGE_NAME txinspect)
set(CPACK_DEBIAN_TXINSPECT_PACKAGE_DEPENDS "fonts-liberation") # for the two faces that the windows ask for
set(CPACK_DEBIAN_TXINSPECT_PACKAGE_RECOMMENDS "qt6-wayland")
set(CPACK_DEBIAN_TXINSPECT_PACKAGE_SUGGESTS "txinspect-tools")
set(CPACK_DEBIAN_TXINSPECT-TOOLS_PACKAGE_NAME txinspect-tools)
set(CPACK_DEBIAN_TXINSPECT-TOOLS_PACKAGE_SUGGESTS "txinspect")
set(CPACK_DEBIAN_TXINSPECT-TOOLS_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/tools/prerm
                                                       ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/tools/postrm)
set(CPACK_DEBIAN_TXINSPECT-TOOLS_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENT_TXINSPECT_DESCRIPTION "check and repair a database of laboratory experiments
A database of laboratory experiments is a directory tree of small files
in which entries and experiment results are tied together by a text key.
The inspection finds keys that are used twice, entries without a key,
experiments without an entry and damaged files, and solves these problems.
.
This package has the desktop program and its start-up program.")
set(CPACK_COMPONENT_TXINSPECT-TOOLS_DESCRIPTION "check a database of laboratory experiments without a display
A database of laboratory experiments is a directory tree of small files
in which entries and experiment results are tied together by a text key.
The check finds keys that are used twice, entries without a key,
experiments without an entry and damaged files, and solves these problems.
.
This package has the check for scripts, cron and remote machines, with a
weekly timer, and a program that makes sample databases.")
include(CPack)

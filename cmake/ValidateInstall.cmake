# Installs into a scratch folder and runs desktop-file-validate and appstreamcli on what landed there.
set(stage ${BINARY_DIR}/validate-stage)
file(REMOVE_RECURSE ${stage})
set(ENV{DESTDIR} ${stage})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix /usr RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "install failed")
endif()
foreach(path usr/bin/quillon usr/libexec/quillon/quillon-wake-service usr/lib/systemd/system/quillon-wake.service
             usr/share/dbus-1/system-services/org.quillon.Wake1.service usr/share/dbus-1/system.d/org.quillon.Wake1.conf
             usr/share/polkit-1/actions/org.quillon.wake.policy usr/share/applications/org.quillon.Quillon.desktop
             usr/share/metainfo/org.quillon.Quillon.metainfo.xml usr/share/icons/hicolor/scalable/apps/org.quillon.Quillon.svg
             usr/share/icons/hicolor/48x48/apps/org.quillon.Quillon.png usr/share/quillon/translations/quillon_de.qm
             usr/share/quillon/help/index.html usr/share/man/man1/quillon.1.gz usr/share/bash-completion/completions/quillon
             usr/share/zsh/vendor-completions/_quillon usr/share/fish/vendor_completions.d/quillon.fish
             usr/share/dbus-1/services/org.quillon.Quillon.service)
    if(NOT EXISTS ${stage}/${path})
        message(FATAL_ERROR "not installed: /${path}")
    endif()
endforeach()
execute_process(COMMAND desktop-file-validate ${stage}/usr/share/applications/org.quillon.Quillon.desktop RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "desktop-file-validate failed")
endif()
execute_process(COMMAND appstreamcli validate --no-net ${stage}/usr/share/metainfo/org.quillon.Quillon.metainfo.xml RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "appstreamcli validate failed")
endif()
# The man page has the verbs of --help, and the shell completes them.
execute_process(COMMAND gzip -dc ${stage}/usr/share/man/man1/quillon.1.gz OUTPUT_VARIABLE man)
foreach(verb "upcoming" "export FILE.ics" "FILES" "Quillon.conf")
    string(FIND "${man}" "${verb}" at)
    if(at LESS 0)
        message(FATAL_ERROR "the man page does not say ${verb}")
    endif()
endforeach()
execute_process(COMMAND bash -c "source '${stage}/usr/share/bash-completion/completions/quillon'; COMP_WORDS=(quillon re); COMP_CWORD=1; _quillon; echo \${COMPREPLY[*]}; COMP_WORDS=(quillon add x --repeat we); COMP_CWORD=4; _quillon; echo \${COMPREPLY[*]}"
                OUTPUT_VARIABLE completed)
if(NOT completed STREQUAL "remove repeat\nweekdays weekends weekly\n")
    message(FATAL_ERROR "bash completes '${completed}'")
endif()
message(STATUS "installed files: 1 passed, 0 failed")

# quillon_add_test(<name> SOURCES <files...> [LIBS <targets...>] [RUN <wrapper command...>] [PROGRAM] [MAIL_SERVER])
# Every test links the fakes. PROGRAM: the test drives the real quillon (QUILLON_BINARY).
# MAIL_SERVER: it talks to the loopback SMTP server of the mail tests.
function(quillon_add_test name)
    cmake_parse_arguments(T "PROGRAM;MAIL_SERVER" "" "SOURCES;LIBS;RUN" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE Qt6::Test ${T_LIBS} QuillonPlatformFakes)
    add_dependencies(${name} quillon_lrelease)
    if(T_PROGRAM)
        # The program, and a service file for a private session bus to start it by.
        target_compile_definitions(${name} PRIVATE QUILLON_BINARY="$<TARGET_FILE:quillon>" QUILLON_SERVICE_DATA="${CMAKE_BINARY_DIR}/test-data")
        add_dependencies(${name} quillon)
    endif()
    if(T_MAIL_SERVER)
        target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src/mail/tests)
        target_compile_definitions(${name} PRIVATE SMTP_SERVER_SCRIPT="${PROJECT_SOURCE_DIR}/src/mail/tests/smtp_server.py")
    endif()
    add_test(NAME ${name} COMMAND ${T_RUN} $<TARGET_FILE:${name}>)
    set(env "QT_QPA_PLATFORM=offscreen")
    if(QUILLON_SANITIZE)
        # Libraries below us (fontconfig, GLib's type system) keep allocations for the process's life.
        list(APPEND env "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0"
                         "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
    endif()
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${env}")
endfunction()

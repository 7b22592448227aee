# A Debian package of the installation: cpack --config out/release/CPackConfig.cmake. It lies in a folder of its own, for
# kv and kvt find the rest of it beside themselves; what the system looks for elsewhere leads there.
find_program(GZIP gzip)
if(WIN32 OR NOT GZIP)
    return()
endif()

set(MAINTAINER "The Korvel team <team@korvel.invalid>")
set(PACKAGED ${CMAKE_BINARY_DIR}/debian)
file(REMOVE_RECURSE ${PACKAGED})

# Has a file under /usr as it is, or compressed, as the system wants manual pages and changes.
function(package_file input name)
    get_filename_component(folder ${PACKAGED}/${name} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    if(name MATCHES "\\.gz$")
        execute_process(COMMAND ${GZIP} -9nc ${input} OUTPUT_FILE ${PACKAGED}/${name})
    else()
        configure_file(${input} ${PACKAGED}/${name} COPYONLY)
    endif()
endfunction()
function(package_link name target)
    get_filename_component(folder ${PACKAGED}/${name} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    file(CREATE_LINK ${target} ${PACKAGED}/${name} SYMBOLIC)
endfunction()

foreach(program ${KORVEL_PROGRAMS})
    package_link(bin/${program} ../lib/korvel/bin/${program})
    package_file(${PROJECT_SOURCE_DIR}/docs/man/${program}.1 share/man/man1/${program}.1.gz)
endforeach()
if(TARGET kv)
    package_link(share/bash-completion/completions/kv ../../../lib/korvel/share/bash-completion/completions/kv)
    package_link(share/zsh/vendor-completions/_kv ../../../lib/korvel/share/zsh/site-functions/_kv)
    package_link(share/fish/vendor_completions.d/kv.fish
        ../../../lib/korvel/share/fish/vendor_completions.d/kv.fish)
endif()
package_file(${PROJECT_SOURCE_DIR}/LICENSE share/doc/korvel/copyright)
package_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md share/doc/korvel/changelog.gz)
file(WRITE ${PACKAGED}.changes "korvel (${PROJECT_VERSION}-1) unstable; urgency=medium\n\n  * Changes are in changelog.gz.\n
 -- ${MAINTAINER}  Sun, 22 Nov 2026 09:00:00 +0000\n")
package_file(${PACKAGED}.changes share/doc/korvel/changelog.Debian.gz)
# Both programs start in half the time when they are linked statically, which is why they are; the lines typed to `kv debug`
# take a library of the system's. No list of wishes is closed by a package that is no part of Debian.
file(WRITE ${PACKAGED}/share/lintian/overrides/korvel "korvel: statically-linked-binary *
korvel: embedded-library ncurses *
korvel: initial-upload-closes-no-bugs *
")
install(DIRECTORY ${PACKAGED}/ DESTINATION /usr COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvel)
set(CPACK_PACKAGE_VENDOR "The Korvel team")
set(CPACK_PACKAGE_CONTACT "${MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "compiler for Korvel, a line-oriented BASIC, by way of C++")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Korvel has Types, Elements, Sequences, timers and tables that are
worked out while a program is compiled. kvt translates it into readable
C++11; kv translates, compiles and runs a program in one go, formats
sources and tells what is wrong with them.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr/lib/korvel)
set(CPACK_COMPONENTS_ALL Unspecified debian)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "g++ | c++-compiler")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
include(CPack)

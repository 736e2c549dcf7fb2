# What `make install` puts in place, below the prefix (PREFIX of the
# Makefile, DESTDIR honoured):
#
#   bin/melkora, bin/melkora-cli                 the programs
#   share/melkora/                               the data files of data/
#   share/icons/hicolor/*/apps/melkora-browser.* the program icon
#                                                (melkora_program_icon)
#   share/applications/<id>.desktop              the desktop entry
#   share/metainfo/<id>.metainfo.xml             the AppStream metainfo
#   share/man/man1/melkora.1, melkora-cli.1      the manual pages
#
# The program finds its data files from its own place: <bin>/../share/melkora.
# The build tree has the same shape (build/bin, build/share/melkora), so a
# program run from the build finds them as an installed one does.

set(MELKORA_APP_ID io.github.melkora.MelkoraBrowser)
set(MELKORA_HOMEPAGE "https://github.com/melkora/melkora-browser"
    CACHE STRING "The project's home page, named in the AppStream metainfo")
set(MELKORA_SCREENSHOTS "https://raw.githubusercontent.com/melkora/melkora-browser/main/docs"
    CACHE STRING "Where the pictures of docs/ are published, for the metainfo's screenshots")
# The date of the release of PROJECT_VERSION, for the metainfo's release notes.
set(MELKORA_RELEASE_DATE 2026-11-25)

foreach(program melkora melkora-cli)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION bin)
    endif()
endforeach()

# Data files: whatever the data/ folder holds (the welcome and help pages and
# guide.css, the style sheet both link by a relative address).
set(melkora_data_dir ${CMAKE_SOURCE_DIR}/data)
if(IS_DIRECTORY ${melkora_data_dir})
    install(DIRECTORY ${melkora_data_dir}/ DESTINATION share/melkora)
    file(GLOB_RECURSE melkora_data_files CONFIGURE_DEPENDS ${melkora_data_dir}/*)
    set(melkora_data_stamp ${CMAKE_BINARY_DIR}/share/melkora.stamp)
    add_custom_command(OUTPUT ${melkora_data_stamp}
                       COMMAND ${CMAKE_COMMAND} -E remove_directory ${CMAKE_BINARY_DIR}/share/melkora
                       COMMAND ${CMAKE_COMMAND} -E copy_directory ${melkora_data_dir}
                               ${CMAKE_BINARY_DIR}/share/melkora
                       COMMAND ${CMAKE_COMMAND} -E touch ${melkora_data_stamp}
                       DEPENDS ${melkora_data_files}
                       COMMENT "Copying data/ to share/melkora of the build tree")
    add_custom_target(melkora_data ALL DEPENDS ${melkora_data_stamp})
endif()

# The desktop entry, the metainfo and the manual pages; the last two carry
# the version.
set(melkora_packaging ${CMAKE_SOURCE_DIR}/packaging)
set(melkora_packaging_out ${CMAKE_BINARY_DIR}/packaging)
configure_file(${melkora_packaging}/${MELKORA_APP_ID}.metainfo.xml.in
               ${melkora_packaging_out}/${MELKORA_APP_ID}.metainfo.xml @ONLY)
configure_file(${melkora_packaging}/man/melkora.1 ${melkora_packaging_out}/man/melkora.1 @ONLY)
configure_file(${melkora_packaging}/man/melkora-cli.1 ${melkora_packaging_out}/man/melkora-cli.1 @ONLY)
install(FILES ${melkora_packaging}/${MELKORA_APP_ID}.desktop DESTINATION share/applications)
install(FILES ${melkora_packaging_out}/${MELKORA_APP_ID}.metainfo.xml DESTINATION share/metainfo)
install(FILES ${melkora_packaging_out}/man/melkora.1 ${melkora_packaging_out}/man/melkora-cli.1
        DESTINATION share/man/man1)

# make uninstall: removes every file of install_manifest.txt (DESTDIR
# honoured), then the folders of ours that it left empty.
add_custom_target(uninstall
                  COMMAND ${CMAKE_COMMAND} -DMANIFEST=${CMAKE_BINARY_DIR}/install_manifest.txt
                          -P ${CMAKE_SOURCE_DIR}/cmake/Uninstall.cmake
                  COMMENT "Removing what make install put in place")

# The checks of what is installed: the entry and the metainfo validate, and
# a whole install into a temporary DESTDIR works, runs and is removed again.
if(MELKORA_TESTS)
    find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
    if(DESKTOP_FILE_VALIDATE)
        add_test(NAME install_desktop_entry_valid
                 COMMAND ${DESKTOP_FILE_VALIDATE} ${melkora_packaging}/${MELKORA_APP_ID}.desktop)
    endif()
    find_program(APPSTREAMCLI appstreamcli)
    if(APPSTREAMCLI)
        add_test(NAME install_metainfo_valid
                 COMMAND ${APPSTREAMCLI} validate --no-net
                         ${melkora_packaging_out}/${MELKORA_APP_ID}.metainfo.xml)
    endif()
    if(TARGET melkora AND TARGET melkora-cli)
        add_test(NAME install_tree
                 COMMAND sh ${CMAKE_SOURCE_DIR}/tests/install/install_tree_test.sh ${CMAKE_BINARY_DIR}
                         ${CMAKE_SOURCE_DIR} ${MELKORA_APP_ID} ${PROJECT_VERSION})
        set_tests_properties(install_tree PROPERTIES TIMEOUT 120 RUN_SERIAL TRUE)
    endif()
endif()

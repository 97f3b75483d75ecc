# Installs the Linux program as a desktop application and packages it as a
# .deb with CPack (scripts/package): the program, its desktop entry, icons in
# the hicolor theme, AppStream metadata, a D-Bus service file (so a client
# call can start it), and Debian's copyright and changelog files.
include(GNUInstallDirs)

set(hg_app_id app.hushgremlin.HushGremlin)
set(hg_pkg ${PROJECT_SOURCE_DIR}/packaging/linux)
set(hg_gen ${PROJECT_BINARY_DIR}/packaging)
# HG_PACKAGE_BINARY (the top CMakeLists.txt) is where the package puts the
# program; the D-Bus service file names it there.

install(TARGETS hushgremlin RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${hg_pkg}/${hg_app_id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)

configure_file(${hg_pkg}/${hg_app_id}.metainfo.xml.in ${hg_gen}/${hg_app_id}.metainfo.xml @ONLY)
install(FILES ${hg_gen}/${hg_app_id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
configure_file(${hg_pkg}/${hg_app_id}.service.in ${hg_gen}/${hg_app_id}.service @ONLY)
install(FILES ${hg_gen}/${hg_app_id}.service DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/services)

# The icon: the artwork itself, plus PNGs at the usual sizes for desktops
# that do not draw SVG icons.
set(hg_icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${PROJECT_SOURCE_DIR}/resources/images/AppIcon.svg
        DESTINATION ${hg_icons}/scalable/apps RENAME ${hg_app_id}.svg)
find_program(HG_RSVG_CONVERT rsvg-convert)
if(HG_RSVG_CONVERT)
  set(hg_pngs)
  foreach(size 16 32 48 64 128 256)
    set(png ${hg_gen}/icons/${size}/${hg_app_id}.png)
    add_custom_command(OUTPUT ${png}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${hg_gen}/icons/${size}
      COMMAND ${HG_RSVG_CONVERT} -w ${size} -h ${size} -o ${png}
              ${PROJECT_SOURCE_DIR}/resources/images/AppIcon.svg
      DEPENDS ${PROJECT_SOURCE_DIR}/resources/images/AppIcon.svg VERBATIM)
    list(APPEND hg_pngs ${png})
    install(FILES ${png} DESTINATION ${hg_icons}/${size}x${size}/apps)
  endforeach()
  add_custom_target(hushgremlin_icons ALL DEPENDS ${hg_pngs})
endif()

# The manual page and Debian's own documentation files, compressed
# reproducibly.
add_custom_command(OUTPUT ${hg_gen}/hushgremlin.1.gz
  COMMAND gzip -9nc ${hg_pkg}/hushgremlin.1 > ${hg_gen}/hushgremlin.1.gz
  DEPENDS ${hg_pkg}/hushgremlin.1)
add_custom_target(hushgremlin_manual ALL DEPENDS ${hg_gen}/hushgremlin.1.gz)
install(FILES ${hg_gen}/hushgremlin.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
set(hg_doc ${CMAKE_INSTALL_DATADIR}/doc/hushgremlin)
install(FILES ${hg_pkg}/copyright DESTINATION ${hg_doc})
configure_file(${hg_pkg}/changelog.Debian.in ${hg_gen}/changelog.Debian @ONLY)
add_custom_command(OUTPUT ${hg_gen}/changelog.Debian.gz
  COMMAND gzip -9nc ${hg_gen}/changelog.Debian > ${hg_gen}/changelog.Debian.gz
  DEPENDS ${hg_gen}/changelog.Debian)
add_custom_target(hushgremlin_changelog ALL DEPENDS ${hg_gen}/changelog.Debian.gz)
install(FILES ${hg_gen}/changelog.Debian.gz DESTINATION ${hg_doc})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hushgremlin)
set(CPACK_PACKAGE_VENDOR "The HushGremlin developers")
set(CPACK_PACKAGE_CONTACT "The HushGremlin developers <${HG_ABOUT_EMAIL}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "microphone mute control for Zoom and Tuple in the system tray")
set(CPACK_PACKAGE_DESCRIPTION
    "HushGremlin shows the microphone mute state of the call you are in (Zoom,
through the desktop's accessibility interface, and Tuple, through its
command-line tool) in the system tray, with a push-to-talk shortcut.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr) # as HG_PACKAGE_BINARY says
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The first Debian revision of each release: its changelog says the same.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Reading other applications needs the desktop's accessibility bus, which no
# library dependency names.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "at-spi2-core")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)

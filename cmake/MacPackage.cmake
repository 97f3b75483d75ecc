# A disk image of the macOS program (on a Mac: cpack -G DragNDrop): the
# bundle next to a link to /Applications, to drag it onto.
install(TARGETS HushGremlin BUNDLE DESTINATION .)
set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_NAME HushGremlin)
set(CPACK_PACKAGE_VENDOR "The HushGremlin developers")
set(CPACK_DMG_VOLUME_NAME HushGremlin)
set(CPACK_DMG_FORMAT UDZO)
set(CPACK_PACKAGE_FILE_NAME HushGremlin-${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
include(CPack)

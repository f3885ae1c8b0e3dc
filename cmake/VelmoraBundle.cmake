# Makes Velmora.app of the program: what only macOS has.

set(bundle_icon ${CMAKE_SOURCE_DIR}/packaging/macos/Velmora.icns)
target_sources(velmora PRIVATE ${bundle_icon})
set_source_files_properties(${bundle_icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(
  velmora
  PROPERTIES MACOSX_BUNDLE ON
             OUTPUT_NAME Velmora
             MACOSX_BUNDLE_INFO_PLIST ${CMAKE_SOURCE_DIR}/packaging/macos/Info.plist.in
             MACOSX_BUNDLE_GUI_IDENTIFIER com.velmora.app
             MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION}
             MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
             MACOSX_BUNDLE_ICON_FILE Velmora.icns)
install(TARGETS velmora BUNDLE DESTINATION .)

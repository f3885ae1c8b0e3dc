# What `cmake --install` puts where on Linux, and the Debian package that CPack makes of it.

if(VELMORA_SANITIZE)
  return()  # such a build is not installed
endif()
find_program(GZIP NAMES gzip REQUIRED)

set(application com.velmora.app)
set(packaging ${CMAKE_SOURCE_DIR}/packaging/linux)
set(made ${CMAKE_BINARY_DIR}/packaging)
set(icon ${CMAKE_SOURCE_DIR}/src/ui/icons/velmora.svg)
set(icon_sides 16 22 24 32 48 64 128 256 512)
set(package_revision 1)
set(package_maintainer "The Velmora developers <packages@velmora.com>")
file(MAKE_DIRECTORY ${made})

# The pictures of the icon, drawn by the library that draws it in the program.
add_executable(velmora_icon_renderer ${packaging}/IconRenderer.cpp)
target_link_libraries(velmora_icon_renderer PRIVATE velmora_flags Qt6::Svg)
list(TRANSFORM icon_sides REPLACE "(.+)" "${made}/\\1.png" OUTPUT_VARIABLE icon_files)
add_custom_command(
  OUTPUT ${icon_files}
  COMMAND velmora_icon_renderer ${icon} ${made} ${icon_sides}
  DEPENDS velmora_icon_renderer ${icon}
  VERBATIM)

# velmora_changelog(output format sources…): the changelog in the form of cmake/changelog/FORMAT.cmake.
function(velmora_changelog output format)
  set(script ${CMAKE_SOURCE_DIR}/cmake/GenerateChangelog.cmake)
  set(input ${CMAKE_SOURCE_DIR}/CHANGELOG.md)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DFORMAT=${format} -DINPUT=${input} -DOUTPUT=${output} -DVERSION=${PROJECT_VERSION}
            -DTEMPLATE=${packaging}/${application}.metainfo.xml.in -DPACKAGE=${PROJECT_NAME}
            -DREVISION=${package_revision} -DMAINTAINER=${package_maintainer} -P ${script}
    DEPENDS ${input} ${script} ${CMAKE_SOURCE_DIR}/cmake/changelog/${format}.cmake ${ARGN}
    VERBATIM)
endfunction()
velmora_changelog(${made}/${application}.metainfo.xml appstream ${packaging}/${application}.metainfo.xml.in)
velmora_changelog(${made}/changelog.Debian debian)

# Manual page and changelogs are installed compressed, without a time in them.
configure_file(${packaging}/velmora.1.in ${made}/velmora.1 @ONLY)
configure_file(${CMAKE_SOURCE_DIR}/CHANGELOG.md ${made}/changelog COPYONLY)
foreach(name IN ITEMS velmora.1 changelog changelog.Debian)
  add_custom_command(
    OUTPUT ${made}/${name}.gz
    COMMAND ${GZIP} -9 --no-name --keep --force ${made}/${name}
    DEPENDS ${made}/${name}
    VERBATIM)
endforeach()

add_custom_target(
  velmora_packaging ALL DEPENDS ${icon_files} ${made}/${application}.metainfo.xml ${made}/velmora.1.gz
                                ${made}/changelog.gz ${made}/changelog.Debian.gz)

install(TARGETS velmora RUNTIME)
install(FILES ${packaging}/${application}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(side IN LISTS icon_sides)
  install(FILES ${made}/${side}.png DESTINATION ${icons}/${side}x${side}/apps RENAME ${application}.png)
endforeach()
install(FILES ${icon} DESTINATION ${icons}/scalable/apps RENAME ${application}.svg)
install(FILES ${packaging}/${application}-symbolic.svg DESTINATION ${icons}/symbolic/apps)
install(FILES ${made}/${application}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${made}/velmora.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${packaging}/copyright ${made}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${made}/changelog.Debian.gz DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};velmora;ALL;/" "${CMAKE_BINARY_DIR};velmora;debian;/")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "desktop tray application that keeps SSH tunnels up")
set(CPACK_PACKAGE_DESCRIPTION
    "Velmora sits in the tray, starts one ssh for each host that was described in
its windows, shows how every tunnel is doing, and brings back what drops.
.
Local, Remote and Dynamic forwardings go through the OpenSSH client, with the
user's own configuration, keys, agent and jump hosts. Passwords live in the
desktop's keyring. A proxy script sends a browser's requests for chosen hosts
through the SOCKS forwardings.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${package_revision})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${package_maintainer})
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://velmora.com/")
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The libraries of all programs and modules that are installed, and the program that is started.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS openssh-client)
# For updates, for passwords, and for the texts of Qt's own dialogs.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "ca-certificates, libarchive-tools, gnome-keyring | libkf5wallet-bin | keepassxc, qt6-translations-l10n")
include(CPack)

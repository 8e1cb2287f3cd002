# Installing the game as a Linux desktop application: the program, its sounds, the desktop entry, the
# AppStream metainfo, the icons of the hicolor theme, the man page and the package documents, all
# through GNUInstallDirs; and a .deb made by CPack from the same install rules.
# Debian keeps games in /usr/games (and /usr/local/games), both on its users' PATH; a distribution
# without them passes -DCMAKE_INSTALL_BINDIR=bin.
set(CMAKE_INSTALL_BINDIR games CACHE PATH "Folder for the game's executable, under the prefix")
include(GNUInstallDirs)

# The hardening a Debian package build gets (stack protector, fortified libc calls, read-only
# relocations bound at start; the compiler makes position-independent executables already), asked of
# dpkg-buildflags so that the .deb carries the distribution's own choice. Only where the code is
# optimised, since fortify needs it, and not under the sanitizers (the sanitize preset, the fuzzers),
# which replace those checks; the optimisation and debug flags stay the build type's.
find_program(ZB_DPKG_BUILDFLAGS dpkg-buildflags)
if(ZB_DPKG_BUILDFLAGS AND NOT ZB_SANITIZE AND NOT ZB_FUZZ
   AND CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  foreach(kind CPPFLAGS CFLAGS CXXFLAGS LDFLAGS)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env DEB_BUILD_MAINT_OPTIONS=hardening=+all
                            ${ZB_DPKG_BUILDFLAGS} --get ${kind}
                    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    list(FILTER flags EXCLUDE REGEX "^-(O|g|ffile-prefix-map=)")
    list(JOIN flags " " ZB_DEB_${kind})
  endforeach()
  string(APPEND CMAKE_C_FLAGS " ${ZB_DEB_CPPFLAGS} ${ZB_DEB_CFLAGS}")
  string(APPEND CMAKE_CXX_FLAGS " ${ZB_DEB_CPPFLAGS} ${ZB_DEB_CXXFLAGS}")
  string(APPEND CMAKE_EXE_LINKER_FLAGS " ${ZB_DEB_LDFLAGS}")
  set(ZB_HARDENED ON)  # the install test holds the package to these flags
endif()

# One reverse-DNS id names the desktop entry, the metainfo, the icon and the window's class, so that a
# desktop can match the running window to its launcher and its software-centre listing.
set(ZB_APP_ID "io.github.zindlebop.zindlebop")
set(ZB_SOUND_INSTALL_DIR "${CMAKE_INSTALL_DATADIR}/zindlebop")
# Sounds are looked up from the executable's own folder, so that a whole installed tree can move.
file(RELATIVE_PATH ZB_SOUNDS_FROM_EXECUTABLE "${CMAKE_INSTALL_FULL_BINDIR}"
     "${CMAKE_INSTALL_PREFIX}/${ZB_SOUND_INSTALL_DIR}")
target_compile_definitions(zb_platform PRIVATE ZB_SOUNDS_FROM_EXECUTABLE="${ZB_SOUNDS_FROM_EXECUTABLE}")
target_compile_definitions(zb_platform_sdl PRIVATE ZB_APP_ID="${ZB_APP_ID}")

# Every picture of the icon comes from the one SVG, converted at build time, so none can drift.
find_program(ZB_RSVG_CONVERT rsvg-convert REQUIRED)
set(ZB_ICON_SOURCE "${PROJECT_SOURCE_DIR}/assets/${ZB_APP_ID}.svg")
set(ZB_ICON_THEME "${CMAKE_BINARY_DIR}/icons/hicolor")
# The window's own icon: big enough for a task switcher, small enough for one X property.
set(ZB_WINDOW_ICON_SIZE 128)
set(ZB_GENERATED_FILES)
foreach(size 48 128 256)
  set(folder "${ZB_ICON_THEME}/${size}x${size}/apps")
  add_custom_command(OUTPUT "${folder}/${ZB_APP_ID}.png"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${folder}"
    COMMAND ${ZB_RSVG_CONVERT} --width=${size} --height=${size} "--output=${folder}/${ZB_APP_ID}.png" "${ZB_ICON_SOURCE}"
    DEPENDS "${ZB_ICON_SOURCE}"
    COMMENT "Drawing the ${size} px icon"
    VERBATIM)
  list(APPEND ZB_GENERATED_FILES "${folder}/${ZB_APP_ID}.png")
  install(FILES "${folder}/${ZB_APP_ID}.png" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps")
endforeach()

set(ZB_WINDOW_ICON_CODE "${CMAKE_BINARY_DIR}/generated/window_icon_png.cpp")
set(ZB_WINDOW_ICON_PNG "${ZB_ICON_THEME}/${ZB_WINDOW_ICON_SIZE}x${ZB_WINDOW_ICON_SIZE}/apps/${ZB_APP_ID}.png")
add_custom_command(OUTPUT "${ZB_WINDOW_ICON_CODE}"
  COMMAND ${CMAKE_COMMAND} "-DPNG=${ZB_WINDOW_ICON_PNG}" "-DOUTPUT=${ZB_WINDOW_ICON_CODE}"
          -P "${PROJECT_SOURCE_DIR}/cmake/EmbedWindowIcon.cmake"
  DEPENDS "${ZB_WINDOW_ICON_PNG}" "${PROJECT_SOURCE_DIR}/cmake/EmbedWindowIcon.cmake"
  COMMENT "Embedding the window icon"
  VERBATIM)
target_sources(zb_platform_sdl PRIVATE "${ZB_WINDOW_ICON_CODE}")

# Manual page and package documents, compressed the way Debian expects them.
set(ZB_COMPRESSED_DOCS
  "assets/zindlebop.6|man/zindlebop.6.gz"
  "packaging/changelog|doc/changelog.gz")
foreach(pair IN LISTS ZB_COMPRESSED_DOCS)
  string(REPLACE "|" ";" pair "${pair}")
  list(GET pair 0 source)
  list(GET pair 1 output)
  add_custom_command(OUTPUT "${CMAKE_BINARY_DIR}/${output}"
    COMMAND sh -c "mkdir -p \"$(dirname \"$2\")\" && gzip -9nc \"$1\" > \"$2\"" sh
            "${PROJECT_SOURCE_DIR}/${source}" "${CMAKE_BINARY_DIR}/${output}"
    DEPENDS "${PROJECT_SOURCE_DIR}/${source}"
    VERBATIM)
  list(APPEND ZB_GENERATED_FILES "${CMAKE_BINARY_DIR}/${output}")
endforeach()
add_custom_target(zb_install_files ALL DEPENDS ${ZB_GENERATED_FILES})

install(TARGETS zindlebop RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES ${ZB_SOUND_FILES} DESTINATION "${ZB_SOUND_INSTALL_DIR}")
install(FILES "assets/${ZB_APP_ID}.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "assets/${ZB_APP_ID}.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES "${ZB_ICON_SOURCE}" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
install(FILES "${CMAKE_BINARY_DIR}/man/zindlebop.6.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man6")
install(FILES packaging/copyright "${CMAKE_BINARY_DIR}/doc/changelog.gz" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

# cpack -G DEB in the build folder. Dependencies come from the shared libraries the game links
# (dpkg-shlibdeps); the font is read at run time, so no library names it.
set(CPACK_PACKAGE_NAME zindlebop)
set(CPACK_PACKAGE_VENDOR "Zindlebop developers")
# Debian wants a mail address here; the way to reach the project is its issue tracker, named in the
# package's copyright file as the upstream contact.
set(CPACK_PACKAGE_CONTACT "Zindlebop developers <zindlebop@users.noreply.github.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "endless runner drawn in lines")
set(CPACK_PACKAGE_DESCRIPTION "A stick figure runs along a ground line while boxes, barrels and planes
come from the right. Jump and duck to survive; the game speeds up as the
score grows, and the palette changes as it goes. Played with the keyboard
or the mouse.")
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://github.com/zindlebop/zindlebop")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
include(CPack)

if(ZB_TESTS)
  enable_testing()
  add_subdirectory(tests/install)
endif()

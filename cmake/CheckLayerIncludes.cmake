# Run by each library's build (see zb_check_layer_includes in Layers.cmake): fails when a source of
# the library includes a header its links do not let it see. RULES names the file with the library's
# folders and what it may see; STAMP is touched when all is well.
cmake_minimum_required(VERSION 3.25)
include("${RULES}")

# The system headers each linked package brings, by the start of their names; the first match wins,
# so SDL_mixer comes before SDL.
set(PACKAGE_HEADERS
  "SDL_mixer=SDL2_MIXER" "SDL=SDL2" "X11/=X11" "cairo=CAIRO" "pixman=PIXMAN" "pango=PANGO"
  "fontconfig/=PANGO" "glib=GLIB" "gio/=GIO")

set(problems)
foreach(file IN LISTS FILES)
  file(STRINGS "${file}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<]")
  file(RELATIVE_PATH shown "${SOURCE_DIR}" "${file}")
  foreach(line IN LISTS lines)
    if(line MATCHES "#[ \t]*include[ \t]*\"([^/\"]+)/[^\"]*\"")
      set(folder "${CMAKE_MATCH_1}")
      if(folder IN_LIST ALL_FOLDERS AND NOT folder IN_LIST ALLOWED_FOLDERS)
        list(APPEND problems "${shown}: ${line}: ${LIBRARY} does not link the library of src/${folder}")
      endif()
    elseif(line MATCHES "#[ \t]*include[ \t]*<([^>]+)>")
      set(header "${CMAKE_MATCH_1}")
      foreach(pair IN LISTS PACKAGE_HEADERS)
        string(REPLACE "=" ";" pair "${pair}")
        list(GET pair 0 start)
        list(GET pair 1 package)
        string(FIND "${header}" "${start}" at)
        if(at EQUAL 0)
          if(NOT package IN_LIST ALLOWED_PACKAGES)
            list(APPEND problems "${shown}: ${line}: ${LIBRARY} does not link ${package}")
          endif()
          break()
        endif()
      endforeach()
    endif()
  endforeach()
endforeach()

if(problems)
  list(JOIN problems "\n  " listed)
  message(FATAL_ERROR "Includes across a layer boundary (link the library in CMakeLists.txt, or move the code):\n  ${listed}")
endif()
file(TOUCH "${STAMP}")

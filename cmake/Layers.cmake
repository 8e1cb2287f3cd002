# The game's code is a stack of layers, one folder of src/ each (the game itself spans several
# folders). zb_library makes a folder's library from every source in it, so a new file needs no
# CMake edit; a folder's main.cpp is its program's entry point and stays out of the library.
function(zb_library target)
  set(patterns)
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns "${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp")
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  add_library(${target} STATIC ${sources})
  # Headers are named from src/ ("render/renderer.hpp"); which of them a library may name is drawn by
  # what it links (see zb_check_layer_includes).
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  set_target_properties(${target} PROPERTIES ZB_FOLDERS "${ARGN}")
  set_property(GLOBAL APPEND PROPERTY ZB_LIBRARIES ${target})
endfunction()

# What `item` lets a library that links it see: for one of our libraries its folders and, through its
# public links, theirs; for an imported package the package itself. Link-only entries show nothing.
function(zb_visible_through item folders_out packages_out)
  set(folders)
  set(packages)
  if(item MATCHES "^PkgConfig::(.+)$")
    list(APPEND packages ${CMAKE_MATCH_1})
  elseif(TARGET ${item})
    get_target_property(own ${item} ZB_FOLDERS)
    if(own)
      list(APPEND folders ${own})
      get_target_property(public ${item} INTERFACE_LINK_LIBRARIES)
      foreach(next IN LISTS public)
        if(next MATCHES "^\\$<LINK_ONLY:")
          continue()
        endif()
        zb_visible_through(${next} next_folders next_packages)
        list(APPEND folders ${next_folders})
        list(APPEND packages ${next_packages})
      endforeach()
    endif()
  endif()
  set(${folders_out} ${folders} PARENT_SCOPE)
  set(${packages_out} ${packages} PARENT_SCOPE)
endfunction()

# Every library's build first checks its sources' #include lines against its links, and fails on a
# header it may not see: another folder's header it does not link, or a system library's header
# (SDL, cairo, pango, GLib, ...) it does not link. Call after every target_link_libraries.
function(zb_check_layer_includes)
  get_property(libraries GLOBAL PROPERTY ZB_LIBRARIES)
  set(all_folders)
  foreach(library IN LISTS libraries)
    get_target_property(own ${library} ZB_FOLDERS)
    list(APPEND all_folders ${own})
  endforeach()
  foreach(library IN LISTS libraries)
    get_target_property(own ${library} ZB_FOLDERS)
    get_target_property(links ${library} LINK_LIBRARIES)
    set(allowed_folders ${own})
    set(allowed_packages)
    foreach(link IN LISTS links)
      zb_visible_through(${link} folders packages)
      list(APPEND allowed_folders ${folders})
      list(APPEND allowed_packages ${packages})
    endforeach()
    list(REMOVE_DUPLICATES allowed_folders)
    list(REMOVE_DUPLICATES allowed_packages)

    set(files)
    foreach(folder IN LISTS own)
      file(GLOB folder_files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp"
           "${PROJECT_SOURCE_DIR}/src/${folder}/*.hpp")
      list(APPEND files ${folder_files})
    endforeach()
    set(rules "${CMAKE_BINARY_DIR}/layer_includes/${library}.cmake")
    file(CONFIGURE OUTPUT "${rules}" CONTENT [[
set(LIBRARY "@library@")
set(SOURCE_DIR "@PROJECT_SOURCE_DIR@")
set(FILES "@files@")
set(ALL_FOLDERS "@all_folders@")
set(ALLOWED_FOLDERS "@allowed_folders@")
set(ALLOWED_PACKAGES "@allowed_packages@")
]] @ONLY)
    set(stamp "${CMAKE_BINARY_DIR}/layer_includes/${library}.checked")
    add_custom_command(OUTPUT "${stamp}"
      COMMAND ${CMAKE_COMMAND} "-DRULES=${rules}" "-DSTAMP=${stamp}"
              -P "${PROJECT_SOURCE_DIR}/cmake/CheckLayerIncludes.cmake"
      DEPENDS ${files} "${rules}" "${PROJECT_SOURCE_DIR}/cmake/CheckLayerIncludes.cmake"
      COMMENT "Checking that ${library} includes only what it links"
      VERBATIM)
    add_custom_target(${library}_includes DEPENDS "${stamp}")
    add_dependencies(${library} ${library}_includes)
  endforeach()
endfunction()

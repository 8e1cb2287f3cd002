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
  # what it links.
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  set_target_properties(${target} PROPERTIES ZB_FOLDERS "${ARGN}")
  set_property(GLOBAL APPEND PROPERTY ZB_LIBRARIES ${target})
endfunction()


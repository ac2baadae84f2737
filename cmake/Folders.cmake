# korvane_folder(NAME [QUICK] [USES other...]): the static library of one folder of src/ with all its rooms. Its headers
# are reached as "NAME/room/header.h" through an include directory that holds that one folder alone, so that an include of
# a folder which is not named under USES (or by those) does not compile. The order of the rooms inside a folder is
# checked by tools/check-layers. Files frm_* hold windows and are left to <name>_forms, files *_main.cpp to the
# programs. QUICK: its tests compute little, so that under the sanitizers it is compiled without optimization, in less
# than half the time. KORVANE_FOLDERS lists the folders declared so far.
function(korvane_folder name)
  cmake_parse_arguments(ARG "QUICK" "" "USES" ${ARGN})
  set(KORVANE_FOLDERS ${KORVANE_FOLDERS} ${name} PARENT_SCOPE)
  set(root ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${name} ${root}/${name} SYMBOLIC)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/(frm_[^/]*|[^/]*_main\\.cpp)$")
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${root})
    target_link_libraries(${name} PUBLIC ${ARG_USES} PRIVATE korvane_options)
    korvane_unity(${name} 60)
    if(ARG_QUICK AND KORVANE_SANITIZE AND KORVANE_UNITY)
      target_compile_options(${name} PRIVATE -O0)
    endif()
    korvane_tidy(${name})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${root})
    target_link_libraries(${name} INTERFACE ${ARG_USES})
  endif()
endfunction()

# korvane_forms(NAME [USES other...]): the static library <name>_forms of the windows of one folder, its files frm_*
# in whatever room, with the pictures of its icons/*.qrc, the folder's own library and the windows of the folders
# named. Nothing where Qt is missing: the core and the command line program need none.
function(korvane_forms name)
  cmake_parse_arguments(ARG "" "" "USES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/frm_*.cpp)
  if(NOT sources OR NOT TARGET Qt6::Widgets)
    return()
  endif()
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/frm_*.h)
  file(GLOB pictures CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/icons/*.qrc)
  add_library(${name}_forms STATIC ${sources} ${headers} ${pictures})
  set_target_properties(${name}_forms PROPERTIES AUTOMOC ON AUTORCC ON)
  set(used)
  foreach(other IN LISTS ARG_USES)
    if(TARGET ${other})
      list(APPEND used ${other})
    endif()
  endforeach()
  target_link_libraries(${name}_forms PUBLIC ${name} ${used} Qt6::Widgets Qt6::Svg PRIVATE korvane_options)
  korvane_unity(${name}_forms 60)
  if(KORVANE_UNITY)
    # A window waits for its user and for Qt; without optimization its tests wait half as long for the compiler.
    target_compile_options(${name}_forms PRIVATE -O0)
  endif()
  korvane_tidy(${name}_forms)
endfunction()

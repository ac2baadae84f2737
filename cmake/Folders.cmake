# korvane_folder(NAME [USES other...]): the static library of one folder of src/. Its headers are reached as
# "NAME/header.h" through an include directory that holds that one folder alone, so that an include of a
# folder which is not named under USES (or by those) does not compile. Files frm_* hold windows and are left
# to <name>_forms, files *_main.cpp to the programs. KORVANE_FOLDERS lists the folders declared so far.
function(korvane_folder name)
  cmake_parse_arguments(ARG "" "" "USES" ${ARGN})
  set(KORVANE_FOLDERS ${KORVANE_FOLDERS} ${name} PARENT_SCOPE)
  set(root ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${name} ${root}/${name} SYMBOLIC)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp ${CMAKE_SOURCE_DIR}/src/${name}/*/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/(frm_[^/]*|[^/]*_main\\.cpp)$")
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${root})
    target_link_libraries(${name} PUBLIC ${ARG_USES} PRIVATE korvane_options)
    korvane_tidy(${name})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${root})
    target_link_libraries(${name} INTERFACE ${ARG_USES})
  endif()
endfunction()

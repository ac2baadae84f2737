# Tests that are no test programs: the layers, the words, the names, and what must not compile.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

korvane_driver(NAME layers.TheTreeKeepsToItsLayers COMMAND ${CMAKE_SOURCE_DIR}/tools/check-layers)
korvane_driver(NAME layers.AWrongArrowAndACycleAreFound
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/tools/check_layers_test.py ${CMAKE_SOURCE_DIR})

korvane_driver(NAME words.TheTreeKeepsToPlainWords COMMAND ${CMAKE_SOURCE_DIR}/tools/check-words)
korvane_driver(NAME words.OddWordsAreFoundWhereTheyAreRead
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/tools/check_words_test.py ${CMAKE_SOURCE_DIR})

korvane_driver(NAME words.TheScriptsHaveEnglishNames COMMAND ${CMAKE_SOURCE_DIR}/tools/check-names)
korvane_driver(NAME words.ItalianNamesOfScriptsAreFound
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/tools/check_names_test.py ${CMAKE_SOURCE_DIR})

# No test hangs for long, whatever it started.
korvane_driver(NAME tools.ADriverThatHangsEndsAndSaysWhatHung
  COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/tools/within_test.py ${CMAKE_BINARY_DIR})

korvane_driver(NAME host.AShopIsShownFromACopy
  COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/tools/view_copy_test.py ${CMAKE_SOURCE_DIR})

# korvane_must_not_compile(NAME FOLDER SOURCE EXPECTED): SOURCE, compiled as a file of FOLDER, fails with the text
# EXPECTED. The same file without KORVANE_WRONG compiles, so that it fails for no other reason.
function(korvane_must_not_compile name folder source expected)
  foreach(kind right wrong)
    set(target ${name}_${kind})
    add_library(${target} OBJECT EXCLUDE_FROM_ALL ${CMAKE_CURRENT_SOURCE_DIR}/tools/${source})
    target_link_libraries(${target} PRIVATE ${folder} korvane_options)
    set_target_properties(${target} PROPERTIES CXX_COMPILER_LAUNCHER "" EXPORT_COMPILE_COMMANDS OFF)
    korvane_driver(NAME layers.${target} COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target ${target})
    # Two builds in one folder at a time would wait for each other's lock.
    set_tests_properties(layers.${target} PROPERTIES RESOURCE_LOCK build_folder)
  endforeach()
  target_compile_definitions(${name}_wrong PRIVATE KORVANE_WRONG)
  set_tests_properties(layers.${name}_wrong PROPERTIES PASS_REGULAR_EXPRESSION "${expected}")
endfunction()

korvane_must_not_compile(PlatformDoesNotSeeTheStore platform includes_store.cpp
  "store/shop/session.h: No such file or directory")
korvane_must_not_compile(TagsDoNotSeeTheBuilder tags includes_builder.cpp
  "builder/run/make_pages.h: No such file or directory")

# The core has no windows: it configures where Qt cannot be found.
korvane_driver(NAME layers.TheCoreConfiguresWithoutQt
  COMMAND ${CMAKE_COMMAND} -S ${CMAKE_SOURCE_DIR} -B ${CMAKE_CURRENT_BINARY_DIR}/without-qt -G ${CMAKE_GENERATOR}
    -DCMAKE_DISABLE_FIND_PACKAGE_Qt5=ON -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON -DKORVANE_TESTS=OFF)

korvane_driver(NAME access.AWayLeadsToEveryWindow COMMAND ${CMAKE_SOURCE_DIR}/tools/check-accessibility --ways)

# The running window as a screen reader sees it. The sanitizers look at the windows in test_forms.
if(TARGET korvane AND NOT KORVANE_SANITIZE)
  korvane_driver(NAME access.EveryControlHasANameAndIsReachedByTab
    COMMAND ${CMAKE_SOURCE_DIR}/tools/check-accessibility ${CMAKE_BINARY_DIR}/bin)
  set_tests_properties(access.EveryControlHasANameAndIsReachedByTab PROPERTIES COST 200)
endif()

# The wanted parts of the golden cases, computed a second time without the program.
file(GLOB golden_cases CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/golden/build/*.txt)
korvane_driver(NAME golden.TheWantedPartsAreWhatTheRulesGive
  COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/golden/oracle/derive.py --check ${golden_cases})

# The same of what the dialogs of the payment modules write; PHP reads each of these files.
file(GLOB account_cases CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/golden/gateways/*.txt)
korvane_driver(NAME golden.TheFilledAccountsAreWhatTheRulesGive
  COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/golden/oracle/accounts.py --check ${account_cases})

# Files that would take all memory, given to the program as it is handed out.
if(NOT KORVANE_SANITIZE)
  korvane_driver(NAME tools.FilesThatSwellAreRefusedWithinABoundOfMemory
    COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/tools/bounded_memory_test.py ${CMAKE_BINARY_DIR}/bin)
endif()

# The pictures of the program's windows.
if(TARGET korvane-screenshots AND TARGET test_forms AND NOT KORVANE_SANITIZE)
  add_dependencies(program_tests korvane-screenshots)
  korvane_driver(NAME tools.EveryWindowLeavesAPictureOfItsSize
    COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/tools/screenshots_test.py ${CMAKE_SOURCE_DIR}
      ${CMAKE_BINARY_DIR}/bin)
  set_tests_properties(tools.EveryWindowLeavesAPictureOfItsSize PROPERTIES COST 200)
endif()

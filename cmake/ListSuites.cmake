# cmake -DPROGRAM=... -DPREFIX=... -DRESULTS=FOLDER -DOUT=FILE -DPROPERTIES=... -P ListSuites.cmake: writes OUT, in which
# each suite of the GoogleTest program is a test of CTest. What its cases gave goes to RESULTS as XML, so that they can
# be counted one by one.
execute_process(COMMAND ${PROGRAM} --gtest_list_tests OUTPUT_VARIABLE listing RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} does not list its tests: ${status}\n${listing}")
endif()
string(REGEX REPLACE "[][;#]" "_" listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")
set(text "")
set(suite "")
set(cases 0)

# The suite read last. Suites over parameters run longest and begin first; then, the more cases, the earlier.
macro(write_suite)
  if(suite)
    if(suite MATCHES "/")
      math(EXPR cases "${cases} + 1000")
    endif()
    string(MAKE_C_IDENTIFIER "${suite}" file)
    string(APPEND text "add_test([=[${PREFIX}.${suite}]=] [=[${PROGRAM}]=] [=[--gtest_filter=${suite}.*]=] "
      "--gtest_brief=1 [=[--gtest_output=xml:${RESULTS}/${PREFIX}.${file}.xml]=])\n"
      "set_tests_properties([=[${PREFIX}.${suite}]=] PROPERTIES COST ${cases} ${PROPERTIES})\n")
  endif()
endmacro()

foreach(line IN LISTS lines)
  if(line MATCHES "^([A-Za-z0-9_/]+)\\.")
    set(name "${CMAKE_MATCH_1}")
    write_suite()
    set(suite "${name}")
    set(cases 0)
  elseif(line MATCHES "^  ")
    math(EXPR cases "${cases} + 1")
  endif()
endforeach()
write_suite()
file(WRITE ${OUT} "${text}")

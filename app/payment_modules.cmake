# The payment modules as they are shipped, filled from their templates once new/ is packed. Included by
# app/CMakeLists.txt after the rules of the static folders; the stamp of the rule joins `stamps`.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(done ${CMAKE_CURRENT_BINARY_DIR}/payment_modules.stamp)
add_custom_command(OUTPUT ${done} DEPENDS ${stamps} ${CMAKE_CURRENT_LIST_DIR}/fill_modules.py VERBATIM
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/fill_modules.py ${share}/new/code
  COMMAND ${CMAKE_COMMAND} -E touch ${done} COMMENT "Filling the payment modules")
list(APPEND stamps ${done})

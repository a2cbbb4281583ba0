# Compiles dropped_results.cpp once as it is, which must succeed, then once per dropped result, which must
# fail with a diagnostic about the discarded value.
# Usage: cmake -DCOMPILER=<c++> -DINCLUDE_DIR=<include> -DGENERATED_INCLUDE_DIR=<build/include> -DCASES=<n>
#        -P check.cmake
set(source ${CMAKE_CURRENT_LIST_DIR}/dropped_results.cpp)
set(command ${COMPILER} -std=c++20 -fsyntax-only -Wall -Werror -I${INCLUDE_DIR} -I${GENERATED_INCLUDE_DIR} ${source})

execute_process(COMMAND ${command} RESULT_VARIABLE status ERROR_VARIABLE output)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "the snippet does not compile even with every result used:\n${output}")
endif()

foreach(case RANGE 1 ${CASES})
  execute_process(COMMAND ${command} -DDROP_${case} RESULT_VARIABLE status ERROR_VARIABLE output)
  if(status EQUAL 0 OR NOT output MATCHES "nodiscard|unused-result|unused result")
    message(FATAL_ERROR "dropping result ${case} of dropped_results.cpp compiles without an error:\n${output}")
  endif()
endforeach()
message(STATUS "every one of the ${CASES} dropped results fails to compile")

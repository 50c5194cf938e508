# Fails when any tracked C++ source differs from what clang-format would write. One clang-format
# run checks every file (starting it once per file cost more than the checking itself).
# Usage: cmake -DCLANG_FORMAT=clang-format -DROOT=<source dir> -P CheckFormat.cmake
file(GLOB_RECURSE files
  ${ROOT}/core/*.cpp ${ROOT}/core/*.h ${ROOT}/platform/*.cpp ${ROOT}/platform/*.h
  ${ROOT}/app/*.cpp ${ROOT}/app/*.h ${ROOT}/ui/*.cpp ${ROOT}/ui/*.h
  ${ROOT}/cli/*.cpp ${ROOT}/cli/*.h ${ROOT}/helper/*.cpp ${ROOT}/helper/*.h
  ${ROOT}/tests/*.cpp ${ROOT}/tests/*.h ${ROOT}/bench/*.cpp ${ROOT}/bench/*.h)
execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${files}
  RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE report)
if(NOT result EQUAL 0)
  # Each finding starts "<file>:<line>:<column>: error: ..."; list every file once.
  string(REGEX MATCHALL "[^\n]+:[0-9]+:[0-9]+: (error|warning)" findings "${report}")
  set(bad "")
  foreach(finding IN LISTS findings)
    string(REGEX REPLACE ":[0-9]+:[0-9]+: (error|warning)$" "" file "${finding}")
    list(APPEND bad ${file})
  endforeach()
  list(REMOVE_DUPLICATES bad)
  if(NOT bad)
    message(FATAL_ERROR "clang-format failed:\n${report}")
  endif()
  string(REPLACE ";" "\n  " pretty "${bad}")
  message(FATAL_ERROR "Not clang-formatted (run scripts/format):\n  ${pretty}")
endif()
list(LENGTH files count)
message(STATUS "All ${count} sources formatted")

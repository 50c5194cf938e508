# Fails when any tracked C++ source differs from what clang-format would write.
# Usage: cmake -DCLANG_FORMAT=clang-format -DROOT=<source dir> -P CheckFormat.cmake
file(GLOB_RECURSE files
  ${ROOT}/core/*.cpp ${ROOT}/core/*.h ${ROOT}/platform/*.cpp ${ROOT}/platform/*.h
  ${ROOT}/app/*.cpp ${ROOT}/app/*.h ${ROOT}/ui/*.cpp ${ROOT}/ui/*.h
  ${ROOT}/cli/*.cpp ${ROOT}/cli/*.h ${ROOT}/helper/*.cpp ${ROOT}/helper/*.h
  ${ROOT}/tests/*.cpp ${ROOT}/tests/*.h ${ROOT}/bench/*.cpp ${ROOT}/bench/*.h)
set(bad "")
foreach(file IN LISTS files)
  execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${file}
    RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(NOT result EQUAL 0)
    list(APPEND bad ${file})
  endif()
endforeach()
if(bad)
  string(REPLACE ";" "\n  " pretty "${bad}")
  message(FATAL_ERROR "Not clang-formatted (run scripts/format):\n  ${pretty}")
endif()
message(STATUS "All sources formatted")

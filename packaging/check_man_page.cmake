# Renders a manual page with groff's warnings on and fails on any warning or an empty page.
# Usage: cmake -DPAGE=sondrel-cli.1 -P check_man_page.cmake
cmake_policy(VERSION 3.25)
find_program(GROFF groff)
if(NOT GROFF)
  message(FATAL_ERROR "groff is needed to check ${PAGE}")
endif()
execute_process(COMMAND ${GROFF} -man -Tutf8 -P-cbou -ww -rLL=80n ${PAGE}
  OUTPUT_VARIABLE text ERROR_VARIABLE warnings RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR NOT warnings STREQUAL "")
  message(FATAL_ERROR "groff failed on ${PAGE} (${status}):\n${warnings}")
endif()
foreach(heading NAME SYNOPSIS DESCRIPTION OPTIONS)
  if(NOT text MATCHES "\n${heading}\n")
    message(FATAL_ERROR "${PAGE} has no ${heading} section:\n${text}")
  endif()
endforeach()

# Renders a manual page with groff's warnings on and fails on any warning or an empty page.
# With CLI, also runs `CLI --help` and `CLI COMMAND --help` for every command it lists, and fails
# when an option any of them prints (--name) is missing from the rendered page.
# Usage: cmake -DPAGE=sondrel-cli.1 [-DCLI=path/to/sondrel-cli] -P check_man_page.cmake
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

if(NOT CLI)
  return()
endif()
# A Qt program must not look for a display just to print its help.
set(ENV{QT_QPA_PLATFORM} offscreen)
function(help_text out_var)
  execute_process(COMMAND ${CLI} ${ARGN} --help
    OUTPUT_VARIABLE help ERROR_VARIABLE errors RESULT_VARIABLE status ENCODING UTF-8)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${CLI} ${ARGN} --help failed (${status}):\n${errors}")
  endif()
  set(${out_var} "${help}" PARENT_SCOPE)
endfunction()

help_text(help)
set(helps "${help}")
# The commands: the first word of each line of the "Commands:" block.
string(REGEX MATCH "\nCommands:\n(  [^\n]*\n)+" commands_block "${help}")
string(REGEX MATCHALL "\n  [a-z][a-z0-9-]*" commands "${commands_block}")
foreach(command IN LISTS commands)
  string(STRIP "${command}" command)
  help_text(command_help ${command})
  string(APPEND helps "\n${command_help}")
endforeach()

# One long line per paragraph and no hyphenation, so that no option is split; groff writes a
# minus sign (\-) as U+2212 on some systems and as a hyphen-minus on others.
execute_process(COMMAND ${GROFF} -man -Tutf8 -P-cbou -rLL=4000n -rHY=0 ${PAGE}
  OUTPUT_VARIABLE wide ENCODING UTF-8)
string(REPLACE "−" "-" wide "${wide}")
string(REPLACE "‐" "-" wide "${wide}")
string(REGEX MATCHALL "--[a-z][a-z0-9-]*" options "${helps}")
list(REMOVE_DUPLICATES options)
set(wide " ${wide} ")
set(missing "")
foreach(option IN LISTS options)
  if(NOT wide MATCHES "[^a-z0-9-]${option}[^a-z0-9-]")
    list(APPEND missing "${option}")
  endif()
endforeach()
if(missing)
  list(JOIN missing " " missing)
  message(FATAL_ERROR "${PAGE} does not mention ${missing}, which ${CLI} --help texts print")
endif()
list(LENGTH options count)
message(STATUS "${PAGE}: all ${count} options of the --help texts are in the page")

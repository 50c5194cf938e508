# Writes the sondrel-cli(1) manual page from the program's own --help texts, so the page and the
# program never disagree: the overview from `sondrel-cli --help`, one entry per command from
# `sondrel-cli COMMAND --help`, the version from `sondrel-cli --version`.
# The desktop program's page comes from its Qt --help text the same way (run offscreen).
# Usage: cmake -DCLI=path/to/program -DOUT=program.1 [-DPROGRAM=name] -P generate_man_page.cmake

cmake_policy(VERSION 3.25)

if(NOT CLI OR NOT OUT)
  message(FATAL_ERROR "usage: cmake -DCLI=PROGRAM -DOUT=FILE [-DPROGRAM=name] -P generate_man_page.cmake")
endif()
if(NOT PROGRAM)
  get_filename_component(PROGRAM "${CLI}" NAME)
endif()
# A Qt program must not look for a display just to print its help.
set(ENV{QT_QPA_PLATFORM} offscreen)

function(run_cli out_var)
  execute_process(COMMAND ${CLI} ${ARGN}
    OUTPUT_VARIABLE text ERROR_VARIABLE errors RESULT_VARIABLE status ENCODING UTF-8)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ${ARGN} failed (${status}); no manual page written\n${errors}")
  endif()
  string(STRIP "${text}" text)
  set(${out_var} "${text}" PARENT_SCOPE)
endfunction()

# Square brackets and semicolons would split or join CMake list items; they travel as
# placeholders until a text is written.
function(protect out_var text)
  string(REPLACE "[" "@LSQB@" text "${text}")
  string(REPLACE "]" "@RSQB@" text "${text}")
  string(REPLACE ";" "@SEMI@" text "${text}")
  set(${out_var} "${text}" PARENT_SCOPE)
endfunction()

# Text made safe for roff: backslashes doubled as \e, hyphens as \- (they are all option dashes
# or literal minus signs here), a leading dot or quote kept from being read as a request.
function(roff out_var text)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REPLACE "-" "\\-" text "${text}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" text "${text}")
  string(REPLACE "@LSQB@" "[" text "${text}")
  string(REPLACE "@RSQB@" "]" text "${text}")
  string(REPLACE "@SEMI@" ";" text "${text}")
  set(${out_var} "${text}" PARENT_SCOPE)
endfunction()

run_cli(help --help)
protect(help "${help}")
run_cli(version_line --version)
string(REGEX REPLACE "^[^ ]+ " "" version "${version_line}")

# The --help text: a "Usage: PROGRAM ..." line, a description, then blocks headed "Commands:",
# "Options:" or "Arguments:" of indented "  name  text" lines, then closing sentences (the exit
# status). Both sondrel-cli's own layout and Qt's command-line parser's follow it.
string(REPLACE "\n" ";" lines "${help}")
set(section "")
set(synopsis "")
set(description "")
set(commands "")
set(options "")
set(arguments "")
set(trailer "")
foreach(line IN LISTS lines)
  if(line MATCHES "^Usage: [^ ]+ (.*)$")
    set(synopsis "${CMAKE_MATCH_1}")
    set(section description)
  elseif(line MATCHES "^(Commands|Options|Arguments):$")
    string(TOLOWER "${CMAKE_MATCH_1}" section)
  elseif(line STREQUAL "")
    if(section MATCHES "^(commands|options|arguments)$")
      set(section trailer)
    endif()
  elseif(section STREQUAL "description")
    string(APPEND description "${line}\n")
  elseif(section MATCHES "^(commands|options|arguments)$" AND line MATCHES "^  ([^ ].*[^ ]|[^ ])  +(.*)$")
    list(APPEND ${section} "${CMAKE_MATCH_1}|${CMAKE_MATCH_2}")
  elseif(section STREQUAL "trailer" OR section STREQUAL "")
    string(APPEND trailer "${line}\n")
  endif()
endforeach()
if(NOT synopsis OR NOT options)
  message(FATAL_ERROR "${PROGRAM} --help is not laid out as expected (Usage:, Options:)")
endif()

string(STRIP "${description}" description)
# The NAME line: the description's first line, without its full stop.
string(REGEX REPLACE "\n.*" "" name_line "${description}")
string(REGEX REPLACE "\\.$" "" name_line "${name_line}")
string(TOLOWER "${name_line}" name_line)
roff(name_line "${name_line}")
roff(description "${description}")
roff(synopsis "${synopsis}")
roff(program "${PROGRAM}")
string(TOUPPER "${program}" title)

# Writes one ".TP" entry per "name|text" item of `items`; "--home DIR" gets its value in italics.
function(append_entries page_var items)
  set(page "${${page_var}}")
  foreach(entry IN LISTS items)
    string(REGEX MATCH "^([^|]*)\\|(.*)$" _ "${entry}")
    set(term_text "${CMAKE_MATCH_1}")
    roff(text "${CMAKE_MATCH_2}")
    if(term_text MATCHES "^(.*[^ ]) ([A-Z][A-Z_]*)$")
      roff(flag "${CMAKE_MATCH_1}")
      set(term ".BI \"${flag} \" ${CMAKE_MATCH_2}")
    else()
      roff(flag "${term_text}")
      set(term ".B ${flag}")
    endif()
    string(APPEND page ".TP\n${term}\n${text}\n")
  endforeach()
  set(${page_var} "${page}" PARENT_SCOPE)
endfunction()

set(page ".\\\" Generated from the --help texts of ${PROGRAM} ${version}; do not edit.\n")
string(APPEND page ".TH ${title} 1 \"\" \"${PROGRAM} ${version}\" \"User Commands\"\n")
string(APPEND page ".SH NAME\n${program} \\- ${name_line}\n")
string(APPEND page ".SH SYNOPSIS\n.B ${program}\n${synopsis}\n")
string(APPEND page ".SH DESCRIPTION\n${description}\n")

if(commands)
  string(APPEND page ".SH COMMANDS\n")
endif()
foreach(entry IN LISTS commands)
  string(REGEX MATCH "^([^|]*)\\|(.*)$" _ "${entry}")
  set(command "${CMAKE_MATCH_1}")
  roff(summary "${CMAKE_MATCH_2}")
  # "Usage: PROGRAM USAGE" first, then the summary again.
  run_cli(command_help ${command} --help)
  protect(command_help "${command_help}")
  string(REGEX MATCH "^Usage: [^ ]+ ([^\n]*)" _ "${command_help}")
  if(NOT CMAKE_MATCH_1)
    message(FATAL_ERROR "${PROGRAM} ${command} --help gives no usage line")
  endif()
  roff(usage "${CMAKE_MATCH_1}")
  string(APPEND page ".TP\n.B ${program} ${usage}\n${summary}\n")
endforeach()

if(arguments)
  string(APPEND page ".SH ARGUMENTS\n")
  append_entries(page "${arguments}")
endif()
string(APPEND page ".SH OPTIONS\n")
append_entries(page "${options}")

string(STRIP "${trailer}" trailer)
if(trailer MATCHES "^Exit status: (.*)$")
  roff(status "${CMAKE_MATCH_1}")
  string(APPEND page ".SH EXIT STATUS\n${status}\n")
elseif(trailer)
  roff(trailer "${trailer}")
  string(APPEND page ".SH NOTES\n${trailer}\n")
endif()

file(WRITE "${OUT}" "${page}")

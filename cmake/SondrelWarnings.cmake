# Common compile options for every first-party target. -Wnull-dereference is left out: GCC 12
# reports false positives for it inside libstdc++'s istreambuf_iterator at -O2 (GCC bug 105580).
# -Wrestrict is off for GCC: at -O3 GCC 12 reports impossible overlaps inside libstdc++'s
# std::string copies (GCC bug 105329).
# Optimised builds (the ci and package presets among them) also fortify the C library's string
# and memory calls, as Debian builds its packages; fortification needs optimisation, so other
# builds and the test programs (always -O0, below, which takes it out again) go without.
set(SONDREL_FORTIFY $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)

# These targets hold no Qt meta-objects, so moc is not run over them (qt_standard_project_setup
# turns it on for every target); a target that needs it sets AUTOMOC after this call.
function(sondrel_target_defaults target)
  target_compile_options(${target} PRIVATE ${SONDREL_FORTIFY} -Wall -Wextra -Wpedantic -Wshadow
    -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
    -Woverloaded-virtual -Wimplicit-fallthrough $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(SONDREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)
endfunction()

# Test programs: their own code is compiled without optimisation in every build type (about a
# third faster to build; the code under test keeps its build type's flags), and so without
# fortification. Debug info stays.
function(sondrel_test_defaults target)
  get_target_property(options ${target} COMPILE_OPTIONS)
  if(NOT options)
    set(options "")
  endif()
  list(REMOVE_ITEM options ${SONDREL_FORTIFY})
  set_property(TARGET ${target} PROPERTY COMPILE_OPTIONS ${options} -O0)
endfunction()

# Same as above without the checks that Qt's generated code (moc, qmlcachegen) trips over.
function(sondrel_qt_target_defaults target)
  target_compile_options(${target} PRIVATE ${SONDREL_FORTIFY} -Wall -Wextra -Wshadow
    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(SONDREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

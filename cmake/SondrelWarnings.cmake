# Common compile options for every first-party target. -Wnull-dereference is left out: GCC 12
# reports false positives for it inside libstdc++'s istreambuf_iterator at -O2 (GCC bug 105580).
# -Wrestrict is off for GCC: at -O3 GCC 12 reports impossible overlaps inside libstdc++'s
# std::string copies (GCC bug 105329).
# These targets hold no Qt meta-objects, so moc is not run over them (qt_standard_project_setup
# turns it on for every target); a target that needs it sets AUTOMOC after this call.
function(sondrel_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
    -Wimplicit-fallthrough $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(SONDREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)
endfunction()

# Test programs: their own code is compiled without optimisation in every build type (about a
# third faster to build; the code under test keeps its build type's flags). Debug info stays.
function(sondrel_test_defaults target)
  target_compile_options(${target} PRIVATE -O0)
endfunction()

# Same as above without the checks that Qt's generated code (moc, qmlcachegen) trips over.
function(sondrel_qt_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(SONDREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

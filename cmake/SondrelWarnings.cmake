# Common compile options for every first-party target. -Wnull-dereference is left out: GCC 12
# reports false positives for it inside libstdc++'s istreambuf_iterator at -O2 (GCC bug 105580).
function(sondrel_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
    -Wimplicit-fallthrough)
  if(SONDREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# Same as above without the checks that Qt's generated code (moc, qmlcachegen) trips over.
function(sondrel_qt_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough)
  if(SONDREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# Warnings of our own code, as errors. An interface target that is never exported.
add_library(TqZelWarnings INTERFACE)
target_compile_options(TqZelWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wcast-align -Wcast-qual -Wconversion -Wdouble-promotion -Wformat=2 -Wnon-virtual-dtor -Wnull-dereference
  -Wold-style-cast -Woverloaded-virtual -Wshadow -Wsign-conversion -Wundef -Wunused
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>)

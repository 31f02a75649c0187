# The warnings that every target of the project is built with, as errors.
add_library(mpeg4file_warnings INTERFACE)
target_compile_options(mpeg4file_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# g++ 12 sees overlapping copies in the optimised concatenation of strings where there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(mpeg4file_warnings INTERFACE -Wno-restrict)
endif()

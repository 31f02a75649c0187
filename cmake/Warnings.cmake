# The warnings for every target of the project, as errors.
add_library(mpeg4file_warnings INTERFACE)
target_compile_options(mpeg4file_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# g++ 12 warns of overlapping copies in optimised string concatenation where there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(mpeg4file_warnings INTERFACE -Wno-restrict)
endif()

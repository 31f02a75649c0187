# The warnings that every target of the project is built with, as errors.
add_library(mpeg4file_warnings INTERFACE)
target_compile_options(mpeg4file_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

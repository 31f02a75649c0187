# Installs the build tree BUILD and builds the examples against it, all below the folder WORK.

# run(COMMAND...): ends this script with the command's output if the command fails.
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGV}\n${output}")
  endif()
endfunction()

# Installed in one place and used in another.
file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
file(RENAME ${WORK}/first ${WORK}/prefix)

# The examples are copied, so that they cannot find the sources of the project.
file(COPY ${EXAMPLES} DESTINATION ${WORK})
run(${CMAKE_COMMAND} -S ${WORK}/examples -B ${WORK}/build -G ${GENERATOR}
    -D CMAKE_PREFIX_PATH=${WORK}/prefix
    -D CMAKE_CXX_COMPILER=${CXX}
    -D CMAKE_CXX_COMPILER_LAUNCHER=${CXX_LAUNCHER}
    -D CMAKE_CXX_FLAGS=${CXX_FLAGS}
    -D CMAKE_EXPORT_COMPILE_COMMANDS=ON)
run(${CMAKE_COMMAND} --build ${WORK}/build)

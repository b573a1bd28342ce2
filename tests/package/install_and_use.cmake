# Installs a build, builds the project beside this file against what was installed, and runs both
# programs. Called by ctest with
#
#   BUILD     the build to install
#   FOLDER    a folder of our own: prefix/ and consumer/
#   MOVIE     a movie with three atoms at its top level, which is made here
#   OPTIONS   how the consumer is configured
#   INSPECTOR whether the inspector is in the build
set(prefix ${FOLDER}/prefix)
set(consumer ${FOLDER}/consumer)
set(source ${CMAKE_CURRENT_LIST_DIR})

function(run)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "PRINTS" "COMMAND")
  execute_process(COMMAND ${arg_COMMAND}
    OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE status
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT status EQUAL 0 OR (DEFINED arg_PRINTS AND NOT output MATCHES "${arg_PRINTS}"))
    list(JOIN arg_COMMAND " " command)
    message(FATAL_ERROR "${command}\nended with ${status} and printed\n${output}")
  endif()
endfunction()

# What an earlier run left would hide that something is installed no longer.
file(REMOVE_RECURSE ${FOLDER})
run(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
run(COMMAND ${CMAKE_COMMAND} -S ${source} -B ${consumer} -D CMAKE_PREFIX_PATH=${prefix}
  -D INSPECTOR=${INSPECTOR} ${OPTIONS})
run(COMMAND ${CMAKE_COMMAND} --build ${consumer})
run(COMMAND ${source}/../../scripts/make-demo-movie ${FOLDER}/demo.mov)
run(COMMAND ${consumer}/consumer ${FOLDER}/demo.mov PRINTS "^3$")
if(INSPECTOR)
  run(COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${consumer}/viewer PRINTS "^(.*\n)?600$")
endif()
if(EXISTS ${BUILD}/bin/vexqt)
  run(COMMAND ${prefix}/bin/vexqt outline ${FOLDER}/demo.mov PRINTS "moov")
endif()

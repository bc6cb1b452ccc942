# Programs for Windows as tests: each is one ctest, run under Wine in a prefix of the build folder. The first test
# makes the prefix and starts its server, the last one ends it; no test reaches the user's own files or display.
#
#   kq_wine_test(<target> [NAME <name>] [LOCALE <locale>] [ARGUMENTS <argument>...])
#
# Wine is asked for x64 programs only; those for x86 are built and not run.
find_program(KQ_WINE wine)
if(NOT KQ_WINE)
  message(FATAL_ERROR "The tests for Windows run under Wine, which is not installed; -DKQ_TESTS=OFF builds without.")
endif()
set(KQ_IN_WINE "${PROJECT_SOURCE_DIR}/tests/wine/in_wine")
set(KQ_WINE_PLACE "${PROJECT_BINARY_DIR}/wine")

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  add_test(NAME Wine.Starts COMMAND "${KQ_IN_WINE}" start "${KQ_WINE_PLACE}")
  set_tests_properties(Wine.Starts PROPERTIES FIXTURES_SETUP Wine TIMEOUT 180)
  add_test(NAME Wine.Ends COMMAND "${KQ_IN_WINE}" end "${KQ_WINE_PLACE}")
  set_tests_properties(Wine.Ends PROPERTIES FIXTURES_CLEANUP Wine TIMEOUT 60)
endif()

function(kq_wine_test target)
  cmake_parse_arguments(ARG "" "NAME;LOCALE" "ARGUMENTS" ${ARGN})
  if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
    return()
  endif()
  if(NOT ARG_NAME)
    set(ARG_NAME "${target}")
  endif()
  if(NOT ARG_LOCALE)
    set(ARG_LOCALE en_US)
  endif()
  add_test(NAME "Windows.${ARG_NAME}"
           COMMAND "${KQ_IN_WINE}" run "${KQ_WINE_PLACE}" "${ARG_LOCALE}" "$<TARGET_FILE:${target}>" ${ARG_ARGUMENTS})
  set_tests_properties("Windows.${ARG_NAME}" PROPERTIES FIXTURES_REQUIRED Wine TIMEOUT 180)
endfunction()

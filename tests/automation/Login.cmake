# The programs of this build and the DLL of the Windows build in one test, within that build's own fixtures.
add_test(NAME Windows.ScriptsLogInWithARealLoginServer
         COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/login_test.py"
                 "${PROJECT_SOURCE_DIR}/tests/wine/in_wine" "${KQ_WINDOWS_BUILD_DIR}/wine"
                 "$<TARGET_FILE:zebd>" "$<TARGET_FILE:zebctl>")
set_tests_properties(Windows.ScriptsLogInWithARealLoginServer PROPERTIES FIXTURES_REQUIRED "Wine;Automation" TIMEOUT 180)

add_executable(kqtypelib kqtypelib.cpp TypeLibraryText.cpp)
target_include_directories(kqtypelib PRIVATE "${PROJECT_SOURCE_DIR}/tests")
target_link_libraries(kqtypelib PRIVATE kq_base kq_idl_headers kq_settings ole32 oleaut32 uuid)
target_link_options(kqtypelib PRIVATE -static)

# Interfaces have no virtual destructor.
set(hosts ActivationTest.cpp DispatchTest.cpp EventsTest.cpp Host.cpp MembersTest.cpp ServerTest.cpp TypeLibraryTest.cpp
          TypeLibraryText.cpp)
set(session_hosts AnnouncementsTest.cpp RequestsTest.cpp SessionEvents.cpp SessionsTest.cpp SessionsTesting.cpp)
set_source_files_properties(${hosts} ${session_hosts} PartsTest.cpp kqtypelib.cpp relay/Relay.cpp PROPERTIES
                            COMPILE_OPTIONS -Wno-non-virtual-dtor)
get_target_property(manifest KQAppSessionLib KQ_MANIFEST)
kq_test(test_automation SOURCES ${hosts} LINKS kq_base kq_idl_headers ole32 oleaut32 uuid)

# What hosts under test need beside the DLL: a bus, and a machine that fails.
kq_library(kq_automation_testing SOURCES TestBus.cpp FailingAccept.cpp LINKS kq_xmlbus kq_platform_port)
target_include_directories(kq_automation_testing PUBLIC "${PROJECT_SOURCE_DIR}/tests")
kq_test(test_automation_sessions
  SOURCES ${session_hosts} Host.cpp
  LINKS kq_automation_testing kq_idl_headers ole32 oleaut32 uuid)
target_compile_definitions(test_automation_sessions PRIVATE KQ_DLL_VERSION="${PROJECT_VERSION}.0")
foreach(program test_automation test_automation_sessions)
  target_compile_definitions(${program} PRIVATE KQ_DLL="$<TARGET_FILE:KQAppSessionLib>" KQ_MANIFEST="${manifest}")
  add_dependencies(${program} KQAppSessionLib kq_idl)
endforeach()

# By itself too, where nothing before it has loaded what the proxies need.
kq_wine_test(test_automation NAME test_automation_from_other_threads ARGUMENTS --gtest_filter=Activation.CarriesCalls*)

kq_test(test_automation_parts SOURCES PartsTest.cpp LINKS kq_automation kq_string_resources)

enable_language(RC)
kq_test(test_depending SOURCES DependingTest.cpp depending.rc LINKS kq_idl_headers ole32 uuid)
set_source_files_properties(DependingTest.cpp PROPERTIES COMPILE_OPTIONS -Wno-non-virtual-dtor)
set_target_properties(test_depending PROPERTIES RUNTIME_OUTPUT_DIRECTORY "$<TARGET_FILE_DIR:KQAppSessionLib>")
add_dependencies(test_depending KQAppSessionLib kq_idl)

add_library(KQTestRelay SHARED relay/Relay.cpp relay/KQTestRelay.def)
target_include_directories(KQTestRelay PRIVATE "${PROJECT_SOURCE_DIR}/tests")
target_link_libraries(KQTestRelay PRIVATE kq_automation_testing kq_settings ole32 oleaut32 uuid advapi32)
target_link_options(KQTestRelay PRIVATE -static)
set_target_properties(KQTestRelay PROPERTIES PREFIX "")

# Registration. The machine's stands around the scripts, which find their objects by it.
add_executable(test_registration RegistrationTest.cpp)
target_link_libraries(test_registration PRIVATE kq_settings GTest::gmock_main advapi32)
target_compile_definitions(test_registration PRIVATE KQ_DLL="$<TARGET_FILE:KQAppSessionLib>")
target_link_options(test_registration PRIVATE -static)
add_dependencies(test_registration KQAppSessionLib)
kq_wine_test(test_registration ARGUMENTS --gtest_filter=Registration.*)
kq_wine_test(test_registration NAME registration_of_the_machine_begins ARGUMENTS --gtest_filter=MachineRegistrationBefore.*)
kq_wine_test(test_registration NAME registration_of_the_machine_ends ARGUMENTS --gtest_filter=MachineRegistrationAfter.*)

add_test(NAME Windows.TheDllNeedsNothingBesideTheSystem
         COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/imports_test.py" "${CMAKE_OBJDUMP}"
                 "$<TARGET_FILE:KQAppSessionLib>" pei-x86-64)

if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
  return()  # Wine runs x64 programs only
endif()
# A user's registration reaches into the machine's under Wine, so it comes and goes before; and a program that needs no
# registration finds none.
set_tests_properties(Windows.registration_of_the_machine_begins PROPERTIES
                     FIXTURES_SETUP Automation DEPENDS "Windows.test_registration;Windows.test_depending")
set_tests_properties(Windows.registration_of_the_machine_ends PROPERTIES FIXTURES_CLEANUP Automation)
add_test(NAME Windows.relay_is_registered
         COMMAND "${KQ_IN_WINE}" run "${KQ_WINE_PLACE}" en_US regsvr32 /s "$<TARGET_FILE:KQTestRelay>")
add_test(NAME Windows.relay_is_unregistered
         COMMAND "${KQ_IN_WINE}" run "${KQ_WINE_PLACE}" en_US regsvr32 /s /u "$<TARGET_FILE:KQTestRelay>")
set_tests_properties(Windows.relay_is_registered PROPERTIES FIXTURES_SETUP Automation FIXTURES_REQUIRED Wine)
set_tests_properties(Windows.relay_is_unregistered PROPERTIES FIXTURES_CLEANUP Automation FIXTURES_REQUIRED Wine)

# Every script is a test.
file(GLOB scripts CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/scripts/[a-z]*.vbs"
     "${CMAKE_CURRENT_SOURCE_DIR}/scripts/[a-z]*.js")
foreach(script IN LISTS scripts)
  cmake_path(GET script FILENAME name)
  cmake_path(GET script EXTENSION kind)
  add_test(NAME "Windows.script_${name}"
           COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/run_script" "${KQ_IN_WINE}" "${KQ_WINE_PLACE}"
                   "${CMAKE_CURRENT_SOURCE_DIR}/scripts/Testing${kind}" "${script}")
  set_tests_properties("Windows.script_${name}" PROPERTIES FIXTURES_REQUIRED "Wine;Automation" TIMEOUT 120)
endforeach()

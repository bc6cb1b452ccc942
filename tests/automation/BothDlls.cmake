# The DLL for x86 is inspected, not run; what is registered for the one is there in the other.
if(NOT KQ_WINDOWS_X86_BUILD_DIR)
  return()
endif()
set(x86 "${KQ_WINDOWS_X86_BUILD_DIR}/src/automation")
set(x64 "${KQ_WINDOWS_BUILD_DIR}/src/automation")
find_program(KQ_OBJDUMP objdump REQUIRED)
mark_as_advanced(KQ_OBJDUMP)
add_test(NAME Automation.TheX86DllNeedsNothingBesideTheSystem
         COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/imports_test.py" "${KQ_OBJDUMP}"
                 "${x86}/KQAppSessionLib.dll" pei-i386)
add_test(NAME Automation.BothDllsHaveTheSameIdentifiers
         COMMAND "${CMAKE_COMMAND}" -E compare_files "${x86}/KQAppSession.Automation.manifest"
                 "${x64}/KQAppSession.Automation.manifest")

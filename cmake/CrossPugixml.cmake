# pugixml::pugixml for the cross build: its source fetched into the build folder, compiled as a small static target.
set(folder "${CMAKE_BINARY_DIR}/pugixml")
if(NOT EXISTS "${folder}/source/src/pugixml.cpp")
  message(STATUS "Fetching pugixml's source")
  execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/fetch-pugixml" "${folder}"
                  RESULT_VARIABLE failed ERROR_VARIABLE reason)
  if(failed)
    string(STRIP "${reason}" reason)
    message(FATAL_ERROR "${reason}")
  endif()
endif()
add_library(kq_pugixml STATIC "${folder}/source/src/pugixml.cpp")
target_include_directories(kq_pugixml SYSTEM INTERFACE "${folder}/source/src")
add_library(pugixml::pugixml ALIAS kq_pugixml)

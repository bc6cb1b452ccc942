# Common settings of every target: language, warnings as errors, sanitizers, compiler cache.
#
#   kq_library(<target> SOURCES <file>... [LINKS <target>...] [PRECOMPILE <header>...])
#                                                                a room of src/, include paths start at src/; the
#                                                                headers are other people's that most sources include
#   kq_test(<name> SOURCES <file>... LINKS <target>...)          a GoogleTest program, every case its own ctest;
#                                                                for Windows one ctest, which runs it under Wine

find_program(KQ_CCACHE ccache)
if(KQ_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${KQ_CCACHE}")
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# The shared library shows what its public headers mark, no more. The DLL has a list of its exports.
if(NOT WIN32)
  set(CMAKE_CXX_VISIBILITY_PRESET hidden)
  set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
endif()
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

add_library(kq_settings INTERFACE)
target_compile_options(kq_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
                                             -Woverloaded-virtual -Werror)
# GCC 12 sees an overlap in concatenations of std::string that is not there, once it optimises.
target_compile_options(kq_settings INTERFACE
  $<$<AND:$<NOT:$<CONFIG:Debug>>,$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
target_include_directories(kq_settings INTERFACE
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>" "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>")
if(KQ_SANITIZE)
  target_compile_options(kq_settings INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
  target_link_options(kq_settings INTERFACE -fsanitize=address,undefined)
endif()

# One file to copy, on every Windows from 7 on.
if(MINGW)
  add_link_options(-static)
  add_compile_definitions(_WIN32_WINNT=0x0601)
endif()

function(kq_library target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRECOMPILE" ${ARGN})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_link_libraries(${target} PUBLIC ${ARG_LINKS} PRIVATE kq_settings)
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/src")
  if(KQ_SANITIZE)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined)
  endif()
  if(KQ_PRECOMPILE AND (ARG_PRECOMPILE OR target STREQUAL "kq_base"))
    target_precompile_headers(${target} PRIVATE <algorithm> <array> <chrono> <functional> <map> <memory> <optional> <string>
                                                <string_view> <vector> <kqappsession/APClient.h> ${ARG_PRECOMPILE})
  elseif(KQ_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM kq_base)
  endif()
endfunction()

function(kq_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} kq_settings GTest::gmock_main)
  target_compile_options(${name} PRIVATE -O0)  # compiling takes most of a test's time
  target_compile_definitions(${name} PRIVATE KQ_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                                             KQ_BINARY_DIR="${PROJECT_BINARY_DIR}")
  if(WIN32)
    kq_wine_test(${name})
  else()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 60)
  endif()
endfunction()

# Makes the pkg-config file for two kinds of folders and asks pkg-config where headers and libraries are.
set(CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../cmake")
include(PkgConfigFile)
set(PROJECT_VERSION 1)
set(CMAKE_INSTALL_INCLUDEDIR include)

foreach(CMAKE_INSTALL_LIBDIR lib lib/x86_64-linux-gnu)
  set(folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  kq_pkg_config_file("${CMAKE_CURRENT_LIST_DIR}/../../src/library/kqappsession.pc.in" "${folder}"
                     "${WORK}/${folder}/kqappsession.pc")
  foreach(variable includedir libdir)
    execute_process(COMMAND "${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${WORK}/${folder}"
                            pkg-config --variable=${variable} kqappsession
                    OUTPUT_VARIABLE ${variable} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    cmake_path(NORMAL_PATH ${variable})
  endforeach()
  if(NOT includedir STREQUAL "${WORK}/include" OR NOT libdir STREQUAL "${WORK}/${CMAKE_INSTALL_LIBDIR}")
    message(SEND_ERROR "In ${folder}: headers in ${includedir}, libraries in ${libdir}")
  endif()
endforeach()

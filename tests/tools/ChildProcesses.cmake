# kq_child_processes: programs as processes of a test or a benchmark. Stands apart from the tests, since a build
# without them has benchmarks.
include_guard(GLOBAL)
kq_library(kq_child_processes
  SOURCES "${PROJECT_SOURCE_DIR}/tests/tools/ChildProcess.cpp" "${PROJECT_SOURCE_DIR}/tests/tools/LoginServer.cpp"
          "${PROJECT_SOURCE_DIR}/tests/tools/Spawn.cpp")
target_include_directories(kq_child_processes PUBLIC "${PROJECT_SOURCE_DIR}/tests")

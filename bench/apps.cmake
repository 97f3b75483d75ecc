# The adapters and the watcher: one watcher tick on fakes, and the cost of
# running the Tuple tool through PosixProcessRunner against a bare spawn.
hg_add_bench(apps_bench
  SOURCES
    ${CMAKE_CURRENT_SOURCE_DIR}/apps/WatcherBench.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/apps/ProcessRunnerBench.cpp
  LIBS hushgremlin_core hushgremlin_fake hushgremlin_posix
)
target_compile_definitions(apps_bench PRIVATE
  HG_APPS_FIXTURE_DIR="${PROJECT_SOURCE_DIR}/tests/apps/fixtures")

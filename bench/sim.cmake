# The simulator: how long a script of several virtual hours takes. The goal
# is well under a second for four hours with Zoom and Tuple both running.
hg_add_bench(sim_bench
  SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/sim/SimRunBench.cpp
  LIBS hushgremlin_sim
)

hg_add_bench(hotkey_bench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/hotkey/GlobalHotkeyMonitorBench.cpp
  LIBS hushgremlin_core hushgremlin_fake
)

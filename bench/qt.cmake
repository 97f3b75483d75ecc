# The desktop program: the tap callback with the stored shortcut read from the
# QSettings-backed store (an INI file on Linux), as the real program reads it.
if(TARGET hushgremlin_qt)
  hg_add_bench(qt_bench
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/qt/QtDefaultsTapBench.cpp
    LIBS hushgremlin_qt hushgremlin_fake
  )
endif()

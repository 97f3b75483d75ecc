# Linux backends. The accessibility benchmark reads and toggles the fixture
# application on a private desktop, so it needs the test helpers (built with
# the tests and the desktop program).
if(TARGET hg_linux_desktop_session)
  hg_add_bench(linux_atspi_bench
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/linux/AtspiBench.cpp
    LIBS hg_linux_desktop_session hushgremlin_linux hushgremlin_core Qt6::Core Qt6::DBus
  )
endif()

# Linux backends. The accessibility benchmark reads and toggles the fixture
# application on a private desktop, so it needs the test helpers (built with
# the tests and the desktop program).
if(TARGET hg_linux_desktop_session)
  hg_add_bench(linux_atspi_bench
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/linux/AtspiBench.cpp
    LIBS hg_linux_desktop_session hushgremlin_linux hushgremlin_core Qt6::Core Qt6::DBus
  )
endif()

# The X11 shortcut tap: XTEST press to onDown on a private Xvfb.
if(TARGET hushgremlin_linux)
  pkg_check_modules(HG_XTEST IMPORTED_TARGET xcb-xtest)
endif()
if(TARGET PkgConfig::HG_XTEST AND TARGET hg_linux_desktop_session)
  hg_add_bench(linux_x11_tap_bench
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/linux/X11TapBench.cpp
    LIBS hg_linux_desktop_session hushgremlin_linux hushgremlin_fake Qt6::Gui
         PkgConfig::HG_X11_KEYBOARD PkgConfig::HG_XTEST
  )
endif()

# The system microphone on a private PipeWire: a reading while nothing
# changes, and one after a change.
if(TARGET hg_linux_audio_session)
  hg_add_bench(linux_microphone_bench
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/linux/PulseMicrophoneBench.cpp
    LIBS hg_linux_audio_session hushgremlin_linux hushgremlin_fake
  )
endif()

# The program's microphone mute seen from the audio server: join and end
# latencies, and the cases that must leave no input stuck muted or live
# (scripts/measure-microphone runs it).
if(TARGET hg_linux_audio_session)
  add_executable(microphone_mute_measure ${CMAKE_CURRENT_LIST_DIR}/linux/MicrophoneMuteMeasure.cpp)
  target_link_libraries(microphone_mute_measure PRIVATE hg_linux_audio_session hushgremlin_warnings)
endif()

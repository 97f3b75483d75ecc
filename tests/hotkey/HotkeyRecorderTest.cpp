#include "hotkey/HotkeyRecorder.hpp"

#include "KeyEvents.hpp"
#include "hotkey/GlobalHotkeyMonitor.hpp"
#include "platform/fake/BufferLineSink.hpp"
#include "platform/fake/FakeEventTap.hpp"
#include "platform/fake/FakeKeyboardLayout.hpp"
#include "platform/fake/FakeLocalKeyMonitor.hpp"
#include "platform/fake/FakeUserDefaults.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace hg {
namespace {

using namespace hg::test;

struct Rig {
    FakeUserDefaults defaults;
    FakeKeyboardLayout layout;
    FakeLocalKeyMonitor local;
    std::optional<HotkeyRecorder> recorder;

    HotkeyRecorder& make() { return recorder.emplace(defaults, layout, local); }
    [[nodiscard]] std::optional<Hotkey> stored() const {
        if (!defaults.dataForKey(Hotkey::defaultsKey)) {
            return std::nullopt;
        }
        return Hotkey::load(defaults);
    }
};

const std::string typeShortcut = "Type shortcut\xE2\x80\xA6";

TEST(HotkeyRecorder, RecordsWhatTheUserTypes) {
    struct Row {
        const char* name;
        std::vector<LocalKeyEvent> events; // after a click
        Hotkey stored;
        const char* shown;
    };
    const Row rows[] = {
        {"command-shift-K",
         {localFlags(key::command, cmd), localFlags(key::shift, cmd | shf),
          localDown(key::k, cmd | shf | capsLockFlag)},
         Hotkey{key::k, 0x120000},
         "⇧⌘K"},
        {"fn pressed and released",
         {localFlags(key::fn, fnb), localFlags(key::fn, 0)},
         Hotkey{Hotkey::noKey, 0x800000},
         "fn"},
        {"control, option, release option",
         {localFlags(key::control, ctl), localFlags(key::option, ctl | opt),
          localFlags(key::option, ctl)},
         Hotkey{Hotkey::noKey, ctl | opt},
         "⌃⌥"},
        {"shift released first still counts shift",
         {localFlags(key::shift, shf), localFlags(key::command, shf | cmd),
          localFlags(key::shift, cmd)},
         Hotkey{Hotkey::noKey, shf | cmd},
         "⇧⌘"},
        {"a modifier held before the click, then released",
         {localFlags(key::command, 0)},
         Hotkey{Hotkey::noKey, 0},
         "None"},
        {"K alone and caps lock are ignored, then control-K",
         {localDown(key::k, 0), localFlags(key::capsLock, capsLockFlag),
          localDown(key::k, capsLockFlag), localDown(key::k, ctl)},
         Hotkey{key::k, ctl},
         "⌃K"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Rig rig;
        auto& recorder = rig.make();
        recorder.click();
        for (const auto& event : row.events) {
            EXPECT_TRUE(rig.local.deliver(event)) << "consumed while recording";
        }
        EXPECT_FALSE(recorder.isRecording());
        EXPECT_EQ(rig.stored(), row.stored);
        EXPECT_EQ(recorder.hotkey(), row.stored);
        EXPECT_EQ(recorder.shownText(), row.shown);
        EXPECT_EQ(rig.local.handlerCount(), 0U);
        EXPECT_FALSE(rig.local.deliver(localDown(key::a, cmd))) << "no longer consumed";
    }
}

TEST(HotkeyRecorder, CancellingStoresNothing) {
    struct Row {
        const char* name;
        void (*cancel)(HotkeyRecorder&, FakeLocalKeyMonitor&);
    };
    const Row rows[] = {
        {"K alone, then Escape",
         [](HotkeyRecorder& r, FakeLocalKeyMonitor& local) {
             local.deliver(localDown(key::k, 0));
             EXPECT_TRUE(r.isRecording());
             local.deliver(localDown(key::escape, 0));
         }},
        {"command-Escape",
         [](HotkeyRecorder&, FakeLocalKeyMonitor& local) {
             local.deliver(localDown(key::escape, cmd));
         }},
        {"second click", [](HotkeyRecorder& r, FakeLocalKeyMonitor&) { r.click(); }},
        {"focus lost", [](HotkeyRecorder& r, FakeLocalKeyMonitor&) { r.focusLost(); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Rig rig;
        Hotkey{key::k, cmd}.save(rig.defaults);
        const int writes = rig.defaults.writeCount();
        auto& recorder = rig.make();
        EXPECT_EQ(recorder.shownText(), "⌘K");
        recorder.click();
        EXPECT_EQ(recorder.shownText(), typeShortcut);
        row.cancel(recorder, rig.local);
        EXPECT_FALSE(recorder.isRecording());
        EXPECT_EQ(recorder.shownText(), "⌘K");
        EXPECT_EQ(rig.defaults.writeCount(), writes);
        EXPECT_EQ(rig.local.handlerCount(), 0U);
    }
}

TEST(HotkeyRecorder, EachRecordingStartsWithNoModifiers) {
    Rig rig;
    auto& recorder = rig.make();
    recorder.click();
    rig.local.deliver(localFlags(key::control, ctl));
    EXPECT_EQ(recorder.recordedModifiers(), ctl);
    recorder.click();
    recorder.click();
    EXPECT_EQ(recorder.recordedModifiers(), 0U);
    EXPECT_EQ(rig.local.handlerCount(), 1U);
    rig.local.deliver(localFlags(key::option, opt));
    rig.local.deliver(localFlags(key::option, 0));
    EXPECT_EQ(rig.stored(), (Hotkey{Hotkey::noKey, opt}));
}

TEST(HotkeyRecorder, AnnouncesBeforeEveryChangeOfTheShownText) {
    Rig rig;
    auto& recorder = rig.make();
    std::vector<std::string> seenAtAnnouncement;
    auto subscription = recorder.objectWillChange().subscribe(
        [&] { seenAtAnnouncement.push_back(recorder.shownText()); });

    std::string shown = recorder.shownText();
    const auto expectAnnouncedIfChanged = [&](const char* what) {
        const std::string now = recorder.shownText();
        if (now != shown) {
            ASSERT_FALSE(seenAtAnnouncement.empty()) << what;
            EXPECT_EQ(seenAtAnnouncement.back(), shown) << what << ": announced before the change";
        }
        seenAtAnnouncement.clear();
        shown = now;
    };
    recorder.click();
    expectAnnouncedIfChanged("click");
    rig.local.deliver(localDown(key::k, cmd));
    expectAnnouncedIfChanged("command-K");
    EXPECT_EQ(shown, "⌘K");
    recorder.click();
    expectAnnouncedIfChanged("click again");
    recorder.focusLost();
    expectAnnouncedIfChanged("focus lost");
    EXPECT_EQ(shown, "⌘K");
}

TEST(HotkeyRecorder, DestroyedWhileRecordingLeavesNoHandler) {
    Rig rig;
    rig.make().click();
    EXPECT_EQ(rig.local.handlerCount(), 1U);
    rig.recorder.reset();
    EXPECT_EQ(rig.local.handlerCount(), 0U);
}

TEST(HotkeyRecorder, RecordedShortcutIsInForceAtTheNextKeyEvent) {
    Rig rig;
    FakeEventTap tap;
    BufferLineSink out;
    GlobalHotkeyMonitor monitor(tap, rig.defaults, out);
    int downs = 0;
    monitor.onDown = [&] { ++downs; };
    monitor.start();

    auto& recorder = rig.make();
    recorder.click();
    rig.local.deliver(localDown(key::k, ctl));
    EXPECT_EQ(tap.deliver(flags(key::fn, fnb)), TapDecision::pass) << "fn no longer the shortcut";
    EXPECT_EQ(tap.deliver(down(key::k, ctl)), TapDecision::remove);
    EXPECT_EQ(downs, 1);
}

} // namespace
} // namespace hg

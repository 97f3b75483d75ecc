#include "hotkey/HotkeyRecorder.hpp"

#include "KeyEvents.hpp"
#include "backends/fake/FakeKeyboardLayout.hpp"
#include "backends/fake/FakeLocalKeyMonitor.hpp"
#include "backends/fake/FakeUserDefaults.hpp"
#include "hotkey/GlobeKeyNote.hpp"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <variant>
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
};

// After the first click, the user either types (events reach the recorder only
// through the local monitor) or acts on the field.
using Input = std::variant<LocalKeyEvent, void (HotkeyRecorder::*)()>;
constexpr auto click = &HotkeyRecorder::click;

TEST(HotkeyRecorder, RecordsOrCancels) {
    const Hotkey commandK{key::k, cmd};
    struct Row {
        const char* name;
        std::vector<Input> inputs;
        Hotkey stored; // commandK, stored beforehand: nothing recorded
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
        {"a modifier held before the click, then released",
         {localFlags(key::command, 0)},
         Hotkey{Hotkey::noKey, 0},
         "None"},
        {"K alone and caps lock are ignored, then control-K",
         {localDown(key::k, 0), localFlags(key::capsLock, capsLockFlag),
          localDown(key::k, capsLockFlag), localFlags(key::capsLock, 0), localDown(key::k, ctl)},
         Hotkey{key::k, ctl},
         "⌃K"},
        {"control, cancel, record again: control forgotten",
         {localFlags(key::control, ctl), click, click, localFlags(key::option, opt),
          localFlags(key::option, 0)},
         Hotkey{Hotkey::noKey, opt},
         "⌥"},
        {"K alone, then Escape", {localDown(key::k, 0), localDown(key::escape, 0)}, commandK, "⌘K"},
        {"command-Escape", {localDown(key::escape, cmd)}, commandK, "⌘K"},
        {"second click", {click}, commandK, "⌘K"},
        {"focus lost", {&HotkeyRecorder::focusLost}, commandK, "⌘K"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Rig rig;
        commandK.save(rig.defaults);
        auto& recorder = rig.make();
        std::optional<std::string> announcedWhileShowing;
        auto subscription = recorder.objectWillChange().subscribe(
            [&] { announcedWhileShowing = recorder.shownText(); });
        const auto act = [&](const auto& action) {
            const std::string before = recorder.shownText();
            announcedWhileShowing.reset();
            action();
            if (recorder.shownText() != before) {
                EXPECT_EQ(announcedWhileShowing, before) << "announced before the change";
            }
        };
        EXPECT_EQ(recorder.shownText(), "⌘K");
        act([&] { recorder.click(); });
        EXPECT_EQ(recorder.shownText(), "Type shortcut\xE2\x80\xA6");
        for (const auto& input : row.inputs) {
            if (const auto* event = std::get_if<LocalKeyEvent>(&input)) {
                EXPECT_TRUE(recorder.isRecording());
                act([&] { EXPECT_TRUE(rig.local.deliver(*event)) << "consumed while recording"; });
            } else {
                act([&] { (recorder.*std::get<1>(input))(); });
            }
        }
        EXPECT_FALSE(recorder.isRecording());
        EXPECT_EQ(rig.defaults.writeCount(), row.stored == commandK ? 1 : 2);
        EXPECT_EQ(Hotkey::load(rig.defaults), row.stored);
        EXPECT_EQ(recorder.hotkey(), row.stored);
        EXPECT_EQ(recorder.shownText(), row.shown);
        EXPECT_FALSE(rig.local.deliver(localDown(key::a, cmd))) << "no longer consumed";
    }
}

TEST(HotkeyRecorder, TheGlobeKeyNoteFollowsTheShortcutAndTheSystemSetting) {
    Rig rig;
    HotkeyRecorder& recorder = rig.make();
    EXPECT_EQ(recorder.globeKeyNote(), std::nullopt) << "no system acts on fn here";
    rig.layout.globeKeyActs = true;
    EXPECT_EQ(recorder.globeKeyNote(), std::string(globeKeyNoteText)) << "fn, the default";
    // Recording fn with another modifier, or another key, leaves the Globe key alone.
    recorder.click();
    rig.local.deliver(localFlags(key::control, ctl));
    rig.local.deliver(localFlags(key::fn, ctl | fnb));
    rig.local.deliver(localFlags(key::fn, ctl));
    EXPECT_EQ(recorder.hotkey(), (Hotkey{Hotkey::noKey, ctl | fnb}));
    EXPECT_EQ(recorder.globeKeyNote(), std::nullopt);
}

TEST(HotkeyRecorder, DestroyedWhileRecordingLeavesNoHandler) {
    Rig rig;
    rig.make().click();
    rig.recorder.reset();
    EXPECT_EQ(rig.local.handlerCount(), 0U);
}

} // namespace
} // namespace hg

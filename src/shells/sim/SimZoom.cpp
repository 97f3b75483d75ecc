#include "shells/sim/SimZoom.hpp"

#include <algorithm>
#include <cctype>

namespace hg::sim {

namespace {

constexpr const char* muteAudio = "Mute Audio";
constexpr const char* unmuteAudio = "Unmute Audio";

std::vector<std::string> muteTitles(SimZoom::Meeting meeting) {
    switch (meeting) {
    case SimZoom::Meeting::muted:
        return {unmuteAudio};
    case SimZoom::Meeting::unmuted:
        return {muteAudio};
    case SimZoom::Meeting::both:
        return {muteAudio, unmuteAudio};
    case SimZoom::Meeting::off:
    case SimZoom::Meeting::neither:
        break;
    }
    return {};
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) ==
               std::tolower(static_cast<unsigned char>(y));
    });
}

bool isRenamable(const FakeAXElement& element) {
    return element.role == "AXMenuBarItem" || element.role == "AXMenuItem";
}

std::shared_ptr<FakeAXElement> findRenamable(const std::shared_ptr<FakeAXElement>& root,
                                             std::string_view title) {
    for (const auto& child : root->children) {
        if (isRenamable(*child) && child->title == title) {
            return child;
        }
        if (auto found = findRenamable(child, title)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

SimZoom::SimZoom(FakeAccessibility& accessibility, FakeRunningApplications& applications,
                 SimOutput& out)
    : accessibility_(accessibility), applications_(applications), out_(out) {
    accessibility_.onCall = [this](const FakeAccessibility::Call& call) {
        if (call.op == AXOp::press) {
            out_.observe("zoom press " + call.title);
        }
        // Nobody reads the record here; a long run would only pile it up.
        accessibility_.clearCalls();
    };
}

SimZoom::Element SimZoom::menuBarItem(const std::string& title,
                                      const std::vector<std::string>& items) {
    auto item = FakeAXElement::make("AXMenuBarItem", title);
    auto menu = item->add("AXMenu", title);
    for (const auto& entry : items) {
        menu->add("AXMenuItem", entry);
    }
    return item;
}

void SimZoom::start(ProcessId pid) {
    if (isRunning()) {
        stop();
    }
    pid_ = pid;
    application_ = FakeAXElement::make("AXApplication", "zoom.us");
    menuBar_ = FakeAXElement::make("AXMenuBar", "");
    application_->menuBar = menuBar_;
    menuBar_->add(menuBarItem("Apple", {"About This Mac"}));
    menuBar_->add(menuBarItem("zoom.us", {"About Zoom", "Quit Zoom"}));
    menuBar_->add(menuBarItem("Window", {"Minimize"}));
    accessibility_.setApplication(pid_, application_);
    applications_.add(std::string(bundleID), pid_);
}

void SimZoom::stop() {
    if (!isRunning()) {
        return;
    }
    application_->markStale();
    accessibility_.setUnresponsive(false);
    accessibility_.removeApplication(pid_);
    applications_.removePid(pid_);
    application_.reset();
    menuBar_.reset();
    meetingItem_.reset();
    meetingMenu_.reset();
    startVideo_.reset();
    muteItems_.clear();
    meeting_ = Meeting::off;
}

SimZoom::Element SimZoom::muteItem(const std::string& title) {
    auto item = FakeAXElement::make("AXMenuItem", title);
    FakeAXElement* raw = item.get(); // the hook lives in the item; no cycle
    item->onPress = [this, raw] {
        press(*raw);
        return ax::success;
    };
    return item;
}

void SimZoom::press(FakeAXElement& item) {
    // With both items, or a renamed one, Zoom does nothing.
    if (muteItems_.size() != 1 || muteItems_.front().get() != &item || !item.title) {
        return;
    }
    if (equalsIgnoringCase(*item.title, muteAudio)) {
        meeting_ = Meeting::muted;
        item.title = unmuteAudio;
    } else if (equalsIgnoringCase(*item.title, unmuteAudio)) {
        meeting_ = Meeting::unmuted;
        item.title = muteAudio;
    }
}

void SimZoom::setMeeting(Meeting meeting) {
    if (meeting == meeting_) {
        // Titles that a rename changed are put back; otherwise nothing moves.
        if (meeting != Meeting::off) {
            updateMuteItems();
        }
        return;
    }
    if (meeting == Meeting::off) {
        meetingItem_->markStale();
        std::erase(menuBar_->children, meetingItem_);
        meetingItem_.reset();
        meetingMenu_.reset();
        startVideo_.reset();
        muteItems_.clear();
        meeting_ = meeting;
        return;
    }
    const bool entering = meeting_ == Meeting::off;
    meeting_ = meeting;
    if (entering) {
        enterMeeting();
    } else {
        updateMuteItems();
    }
}

void SimZoom::enterMeeting() {
    meetingItem_ = FakeAXElement::make("AXMenuBarItem", "Meeting");
    meetingMenu_ = meetingItem_->add("AXMenu", "Meeting");
    startVideo_ = FakeAXElement::make("AXMenuItem", "Start Video");
    for (const auto& title : muteTitles(meeting_)) {
        muteItems_.push_back(muteItem(title));
    }
    meetingMenu_->children = muteItems_;
    meetingMenu_->children.push_back(startVideo_);
    // After "Apple" and "zoom.us", before "Window".
    const auto at = std::min<std::size_t>(2, menuBar_->children.size());
    menuBar_->children.insert(menuBar_->children.begin() + static_cast<std::ptrdiff_t>(at),
                              meetingItem_);
}

void SimZoom::updateMuteItems() {
    // Items that stay keep their element: first those already showing a
    // wanted title, then the others in order, retitled. New ones are made;
    // the rest go stale.
    const auto titles = muteTitles(meeting_);
    std::vector<Element> remaining = muteItems_;
    std::vector<Element> kept(titles.size());
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const auto it = std::find_if(remaining.begin(), remaining.end(),
                                     [&](const Element& e) { return e->title == titles[i]; });
        if (it != remaining.end()) {
            kept[i] = *it;
            remaining.erase(it);
        }
    }
    for (std::size_t i = 0; i < titles.size(); ++i) {
        if (!kept[i] && !remaining.empty()) {
            kept[i] = remaining.front();
            remaining.erase(remaining.begin());
            kept[i]->title = titles[i];
        }
        if (!kept[i]) {
            kept[i] = muteItem(titles[i]);
        }
    }
    for (const auto& gone : remaining) {
        gone->markStale();
    }
    muteItems_ = std::move(kept);
    meetingMenu_->children = muteItems_;
    meetingMenu_->children.push_back(startVideo_);
}

bool SimZoom::rename(std::string_view oldTitle, const std::string& newTitle) {
    if (!isRunning()) {
        return false;
    }
    const auto element = findRenamable(menuBar_, oldTitle);
    if (!element) {
        return false;
    }
    element->title = newTitle;
    return true;
}

} // namespace hg::sim

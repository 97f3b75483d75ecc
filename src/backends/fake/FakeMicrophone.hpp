#pragma once

#include "ports/Microphone.hpp"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace hg {

// Audio inputs whose recording state and mute a test or script sets. The
// default input, named `defaultName`, is the one the fields `recording` and
// `muted` describe; `others` holds the rest by name. With `failing` set it
// answers as an unreachable audio server does. Records every mute the
// application asks for.
class FakeMicrophone final : public Microphone {
public:
    struct Input {
        bool recording = false;
        bool muted = false;
    };

    std::string defaultName = "default";
    bool recording = false;
    bool muted = false;
    bool failing = false;
    std::map<std::string, Input, std::less<>> others;

    std::string defaultInput() override { return failing ? std::string() : defaultName; }
    std::optional<bool> isRecording(const std::string& input) override {
        const Input* found = find(input);
        return found != nullptr ? std::optional<bool>(found->recording) : std::nullopt;
    }
    std::optional<std::vector<std::string>> recordedInputs() override {
        if (failing) {
            return std::nullopt;
        }
        std::vector<std::string> names;
        if (recording) {
            names.push_back(defaultName);
        }
        for (const auto& [name, input] : others) {
            if (input.recording) {
                names.push_back(name);
            }
        }
        return names;
    }
    std::optional<bool> isMuted(const std::string& input) override {
        const Input* found = find(input);
        return found != nullptr ? std::optional<bool>(found->muted) : std::nullopt;
    }
    bool setMuted(const std::string& input, bool value) override {
        requests_.push_back(value);
        if (onSetMuted) {
            onSetMuted(value);
        }
        const Input* found = find(input);
        if (found == nullptr) {
            return false;
        }
        if (input == defaultName) {
            muted = value;
        } else {
            others[input].muted = value;
        }
        return true;
    }
    void setChangeHandler(std::function<void()> onChange) override {
        onChange_ = std::move(onChange);
    }

    // Makes `name` the default input; the old default keeps its state
    // among the others.
    void switchDefault(const std::string& name) {
        others[defaultName] = Input{recording, muted};
        const Input next = others[name];
        others.erase(name);
        defaultName = name;
        recording = next.recording;
        muted = next.muted;
    }

    // As the audio service reports a change.
    void announceChange() const {
        if (onChange_) {
            onChange_();
        }
    }

    // Each mute asked for, in order, whether or not it succeeded.
    [[nodiscard]] const std::vector<bool>& requests() const { return requests_; }

    // Called for each request, before it takes effect.
    std::function<void(bool)> onSetMuted;

private:
    // The state of `input`, or none when it is unknown or the service fails.
    const Input* find(const std::string& input) {
        if (failing) {
            return nullptr;
        }
        if (input == defaultName) {
            current_ = Input{recording, muted};
            return &current_;
        }
        const auto found = others.find(input);
        return found != others.end() ? &found->second : nullptr;
    }

    Input current_;
    std::vector<bool> requests_;
    std::function<void()> onChange_;
};

} // namespace hg

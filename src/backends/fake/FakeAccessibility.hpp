#pragma once

#include "ports/Accessibility.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace hg {

// The operations a caller can make fail, one per attribute or action.
enum class AXOp : std::uint8_t { menubar, children, role, title, press };

[[nodiscard]] std::string_view toString(AXOp op);

// One element of a scripted accessibility tree. An element keeps its identity
// for as long as the owner holds it: renaming it or changing its children does
// not make a new element, so a cached handle still presses the same item.
class FakeAXElement final : public AXElement {
public:
    FakeAXElement() = default;
    FakeAXElement(std::optional<std::string> roleValue, std::optional<std::string> titleValue)
        : role(std::move(roleValue)), title(std::move(titleValue)) {}

    static std::shared_ptr<FakeAXElement> make(std::optional<std::string> role,
                                               std::optional<std::string> title) {
        return std::make_shared<FakeAXElement>(std::move(role), std::move(title));
    }

    // Absent role or title: reading it fails with attributeUnsupported.
    std::optional<std::string> role;
    std::optional<std::string> title;
    std::vector<std::shared_ptr<FakeAXElement>> children;
    // Only application elements have one; null reads fail with noValue.
    std::shared_ptr<FakeAXElement> menuBar;
    // A stale element fails every read and press with invalidUIElement.
    bool stale = false;
    // Runs on a press that no failure stopped; its answer is the press's code.
    // Without one a press succeeds and changes nothing.
    std::function<AXError()> onPress;
    // Failures of this element only, with the same precedence as the global ones.
    std::map<AXOp, AXError> failures;
    // A read that succeeds with this value instead of the modelled one, so that
    // callers can be shown values of an unexpected kind.
    std::map<AXOp, AXValue> rawValues;

    // Appends a child and returns it.
    std::shared_ptr<FakeAXElement> add(std::shared_ptr<FakeAXElement> child);
    std::shared_ptr<FakeAXElement> add(std::optional<std::string> childRole,
                                       std::optional<std::string> childTitle) {
        return add(make(std::move(childRole), std::move(childTitle)));
    }

    // Marks this element, its menu bar and all descendants stale.
    void markStale();

    // The first element below this one, depth first (its menu bar, then its
    // children in order), whose title is exactly `wanted`; null when none.
    [[nodiscard]] std::shared_ptr<FakeAXElement> findByTitle(std::string_view wanted);
};

// A scripted accessibility backend over FakeAXElement trees.
//
// Every failing read or press answers with the first that applies: a failure
// injected for the operation (globally, then on the element), then
// apiDisabled when the process is not trusted, then cannotComplete, as a
// time-out, while the application does not answer, then invalidUIElement when
// the element is stale. Every call is recorded with the element's title at that
// moment.
class FakeAccessibility final : public Accessibility {
public:
    struct Call {
        AXOp op;
        std::string title; // empty when the element has no title
        AXError result;
        friend bool operator==(const Call&, const Call&) = default;
    };

    bool isProcessTrusted(bool prompt) override;
    AXElementRef createApplication(ProcessId pid) override;
    AXCopyResult copyAttributeValue(const AXElementRef& element,
                                    std::string_view attribute) override;
    AXError performAction(const AXElementRef& element, std::string_view action) override;

    void setTrusted(bool trusted) { trusted_ = trusted; }
    [[nodiscard]] bool trusted() const { return trusted_; }
    [[nodiscard]] int promptCount() const { return prompts_; }
    [[nodiscard]] int trustCheckCount() const { return trustChecks_; }

    // The application element of a process. A process without one gets a
    // fresh stale element, as a process that has gone away does.
    void setApplication(ProcessId pid, std::shared_ptr<FakeAXElement> application);
    void removeApplication(ProcessId pid) { applications_.erase(pid); }

    // From now on every `op` fails with `code` (nonzero), until healed.
    void fail(AXOp op, AXError code) { failures_[op] = code; }
    void heal(AXOp op) { failures_.erase(op); }
    void heal() { failures_.clear(); }

    // While on, the application answers nothing: reads fail as timed out.
    void setUnresponsive(bool unresponsive) { unresponsive_ = unresponsive; }

    [[nodiscard]] const std::vector<Call>& calls() const { return calls_; }
    void clearCalls() { calls_.clear(); }

    // Observers, called synchronously: after each recorded call (before the
    // caller sees the result), and when the permission prompt is asked for.
    std::function<void(const Call&)> onCall;
    std::function<void()> onPrompt;

private:
    // The code that stops `op` on `element` before the model is consulted, or 0.
    [[nodiscard]] AXError blockingFailure(AXOp op, const FakeAXElement& element) const;
    void record(AXOp op, const FakeAXElement* element, AXError result);

    bool trusted_ = false;
    int prompts_ = 0;
    int trustChecks_ = 0;
    std::map<ProcessId, std::shared_ptr<FakeAXElement>> applications_;
    std::map<AXOp, AXError> failures_;
    bool unresponsive_ = false;
    std::vector<Call> calls_;
};

} // namespace hg

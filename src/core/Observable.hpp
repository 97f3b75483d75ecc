#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace hg {

// Will-change notifications for observable objects: every set of a published
// property announces itself to the observers first, also when the value does
// not change. Observers typically schedule a redraw for the next turn of the
// event loop and read the new values then.
class ObjectWillChange {
public:
    using Observer = std::function<void()>;

    // Keeps the observer registered while it lives.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(Subscription&&) noexcept = default;
        Subscription& operator=(Subscription&&) noexcept = default;
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;
        ~Subscription() { reset(); }

        void reset() {
            if (auto list = list_.lock()) {
                std::erase_if(*list, [this](const Entry& e) { return e.id == id_; });
            }
            list_.reset();
        }

    private:
        friend class ObjectWillChange;
        struct Entry {
            std::uint64_t id;
            Observer observer;
        };
        Subscription(std::weak_ptr<std::vector<Entry>> list, std::uint64_t id)
            : list_(std::move(list)), id_(id) {}
        std::weak_ptr<std::vector<Entry>> list_;
        std::uint64_t id_ = 0;
    };

    [[nodiscard]] Subscription subscribe(Observer observer) {
        const auto id = ++nextId_;
        observers_->push_back({id, std::move(observer)});
        return Subscription(observers_, id);
    }

    // Announces a coming change. Observers may subscribe or unsubscribe from
    // within; those added during the call are not called this time.
    void send() const {
        const auto snapshot = *observers_;
        for (const auto& entry : snapshot) {
            entry.observer();
        }
    }

private:
    std::shared_ptr<std::vector<Subscription::Entry>> observers_ =
        std::make_shared<std::vector<Subscription::Entry>>();
    std::uint64_t nextId_ = 0;
};

// A published property: setting it first announces the change to `owner`.
template <typename T> class Published {
public:
    Published(const ObjectWillChange& owner, T initial) : owner_(&owner), value_(std::move(initial)) {}

    [[nodiscard]] const T& get() const { return value_; }
    operator const T&() const { return value_; } // NOLINT(google-explicit-constructor)

    void set(T value) {
        owner_->send();
        value_ = std::move(value);
    }
    Published& operator=(T value) {
        set(std::move(value));
        return *this;
    }

private:
    const ObjectWillChange* owner_;
    T value_;
};

} // namespace hg

#include "shells/qt/QtApplication.hpp"

#include <QCoreApplication>

namespace hg {

void QtApplication::activate() {
    activationPending_ = true;
}

void QtApplication::terminate() {
    QCoreApplication::quit();
}

bool QtApplication::takeActivation() {
    const bool pending = activationPending_;
    activationPending_ = false;
    return pending;
}

} // namespace hg

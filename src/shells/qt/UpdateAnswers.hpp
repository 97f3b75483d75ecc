#pragma once

#include "shells/qt/AppcastFeed.hpp"

#include <string>

namespace hg {

// How a user-initiated update check answers the user. The desktop shows
// message boxes (MessageBoxUpdateAnswers); tests record the answers.
class UpdateAnswers {
public:
    virtual ~UpdateAnswers() = default;

    // The newest release is not newer than `currentVersion`.
    virtual void upToDate(const std::string& currentVersion) = 0;
    // `release` is newer than `currentVersion`.
    virtual void updateAvailable(const AppcastItem& release, const std::string& currentVersion) = 0;
    // The check could not be made; `reason` is one readable sentence.
    virtual void checkFailed(const std::string& reason) = 0;
};

} // namespace hg

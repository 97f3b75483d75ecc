#pragma once

#include "shells/qt/UpdateAnswers.hpp"

namespace hg {

// The answers of a user-initiated update check as message boxes, the way an
// update framework's standard interface shows them. Nothing is downloaded:
// a newer release offers its download and release notes as links.
class MessageBoxUpdateAnswers final : public UpdateAnswers {
public:
    void upToDate(const std::string& currentVersion) override;
    void updateAvailable(const AppcastItem& release, const std::string& currentVersion) override;
    void checkFailed(const std::string& reason) override;
};

} // namespace hg

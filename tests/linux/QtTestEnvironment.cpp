// The Linux accessibility tests need a QCoreApplication for QtDBus. Tests
// that use a bus start the private desktop (DesktopSession::shared()) before
// their first call, so that QtDBus opens that desktop's session bus; the
// others run without one.

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <memory>

namespace {

class QtTestEnvironment final : public ::testing::Environment {
public:
    void SetUp() override { app_ = std::make_unique<QCoreApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[16] = "hg-linux-tests";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QCoreApplication> app_;
};

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new QtTestEnvironment());

} // namespace

// Feeds arbitrary bytes, as the Tuple tool might print them, to the state
// decoding. Any crash, sanitizer report or hang is a finding; so is a status
// the decoding must never produce.
#include "apps/TupleState.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    const hg::MeetingStatus status = hg::decodeTupleState(output);
    switch (status) {
    case hg::MeetingStatus::noMeeting:
    case hg::MeetingStatus::onMute:
    case hg::MeetingStatus::offMute:
    case hg::MeetingStatus::error:
        break;
    case hg::MeetingStatus::notRunning:
    case hg::MeetingStatus::setupError:
        std::abort();
    }
    return 0;
}

#pragma once

#include "platform/StayAwake.h"

namespace vorrano::linux_platform {

// Keeps the computer awake by an inhibitor of logind's, which blocks sleep, idleness, the lid switch and shutdown.
//
// The inhibitor needs no event loop: it is asked for at once, and held as soon as logind has answered. A token that is
// dropped before that gives it back when the answer comes.
class LogindStayAwake final : public platform::StayAwake {
public:
    platform::Subscription stayAwake(std::string_view why) override;
};

} // namespace vorrano::linux_platform

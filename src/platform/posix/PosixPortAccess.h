#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/PortAccess.h"

#include <optional>
#include <string>

namespace vorrano::posix_platform {

// The permissions of a device's node, and the programs that have it open according to /proc: those of this person, or
// all for root.
//
// Lifetime: the registry outlives it.
class PosixPortAccess final : public platform::PortAccess {
public:
    explicit PosixPortAccess(const platform::DeviceRegistry& registry);

    [[nodiscard]] bool isPermitted(const std::string& path) const override;
    [[nodiscard]] std::optional<std::string> programThatUses(const std::string& path) const override;

private:
    const platform::DeviceRegistry& m_registry;
};

} // namespace vorrano::posix_platform

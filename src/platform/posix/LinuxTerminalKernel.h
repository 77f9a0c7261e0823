#pragma once

#include <array>
#include <cstdint>

namespace vorrano::linux_platform {

// The kernel's own settings of a terminal, which can hold any rate; the C library's record holds the standard ones.
struct KernelSettings {
    std::uint32_t input = 0;
    std::uint32_t output = 0;
    std::uint32_t control = 0;
    std::uint32_t local = 0;
    std::uint8_t discipline = 0;
    std::array<std::uint8_t, 19> characters{};
    // In baud, both ways.
    std::uint32_t speed = 0;
};

// The rate bits of the control flags that send the kernel to `speed`.
inline constexpr std::uint32_t kCustomRate = 0x1000;

// 0, or the errno of the failing call.
[[nodiscard]] int readKernelSettings(int descriptor, KernelSettings& into);
[[nodiscard]] int applyNow(int descriptor, const KernelSettings& settings);
[[nodiscard]] int applyAfterDrain(int descriptor, const KernelSettings& settings);

} // namespace vorrano::linux_platform

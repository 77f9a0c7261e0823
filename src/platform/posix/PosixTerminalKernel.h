#pragma once

#include <array>
#include <cstdint>

namespace vorrano::posix_platform {

// The kernel's own settings of a terminal, which can hold any rate; the C library's record holds the standard ones.
struct KernelSettings {
    std::uint32_t input = 0;
    std::uint32_t output = 0;
    std::uint32_t control = 0;
    std::uint32_t local = 0;
    std::uint8_t discipline = 0;
    std::array<std::uint8_t, 19> characters{};
    // In baud. The kernel takes each from the control flags, unless these say that the rate is a custom one.
    std::uint32_t outputSpeed = 0;
    std::uint32_t inputSpeed = 0;
};

// The output's rate bits in the control flags that stand for a custom rate, and where the input's rate bits begin.
// Input bits of 0 mean that the input has the output's rate.
inline constexpr std::uint32_t kCustomRate = 0x1000;
inline constexpr unsigned kInputRateShift = 16;
inline constexpr std::uint32_t kCustomInputRate = kCustomRate << kInputRateShift;

// 0, or the errno of the failing call.
[[nodiscard]] int readKernelSettings(int descriptor, KernelSettings& into);
[[nodiscard]] int applyNow(int descriptor, const KernelSettings& settings);
[[nodiscard]] int applyAfterDrain(int descriptor, const KernelSettings& settings);

} // namespace vorrano::posix_platform

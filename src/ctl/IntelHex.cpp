#include "ctl/IntelHex.h"

#include "device/FirmwareImage.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorrano::ctl {

namespace {

constexpr std::uint8_t kEndRecord = 1;
constexpr std::uint8_t kLargestType = 5;
// Length, two bytes of address, type; the checksum comes after the data.
constexpr std::size_t kTypeAt = 3;
constexpr std::size_t kBytesBesideData = 5;

std::string lineNumber(std::size_t index) { return "line " + std::to_string(index + 1); }

// The bytes of a record after its colon; none when it is not made of whole bytes.
std::optional<std::vector<std::uint8_t>> bytesOf(std::string_view digits)
{
    if (digits.size() % 2 != 0) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        std::uint8_t byte = 0;
        const char* const end = digits.data() + i + 2;
        if (std::from_chars(digits.data() + i, end, byte, 16).ptr != end) {
            return std::nullopt;
        }
        bytes.push_back(byte);
    }
    return bytes;
}

bool isChecksumRight(const std::vector<std::uint8_t>& record)
{
    std::uint8_t sum = 0;
    for (const auto byte : record) {
        sum = static_cast<std::uint8_t>(sum + byte);
    }
    return sum == 0;
}

struct Record {
    std::optional<std::string_view> fault;
    bool isEnd = false;
};

Record readRecord(std::string_view line)
{
    if (!line.starts_with(':')) {
        return {"is no record"};
    }
    const auto bytes = bytesOf(line.substr(1));
    if (!bytes || bytes->size() < kBytesBesideData || bytes->size() != bytes->front() + kBytesBesideData ||
        (*bytes)[kTypeAt] > kLargestType) {
        return {"is no record"};
    }
    if (!isChecksumRight(*bytes)) {
        return {"has a wrong checksum"};
    }
    return {std::nullopt, (*bytes)[kTypeAt] == kEndRecord};
}

} // namespace

std::optional<std::string> faultOfIntelHex(std::string_view text)
{
    bool hasEnded = false;
    const auto lines = device::linesOfImage(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        auto line = lines[i];
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.empty()) {
            continue;
        }
        if (hasEnded) {
            return lineNumber(i) + " comes after the end record";
        }
        const auto record = readRecord(line);
        if (record.fault) {
            return lineNumber(i) + " " + std::string(*record.fault);
        }
        hasEnded = record.isEnd;
    }
    return hasEnded ? std::nullopt : std::optional<std::string>("its end record is missing");
}

} // namespace vorrano::ctl

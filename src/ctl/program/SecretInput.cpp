#include "ctl/program/SecretInput.h"

#include <array>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <bsd/readpassphrase.h>
#include <cstring>

namespace vorrano::ctl {

namespace {

// Longer than any secret that a device takes. A file that never ends, such as /dev/zero, is no secret.
constexpr std::size_t kLongestInput = 4096;

Secret secretFrom(std::istream& stream)
{
    std::string bytes;
    try {
        char byte = 0;
        while (bytes.size() <= kLongestInput && stream.get(byte)) {
            bytes.push_back(byte);
        }
    } catch (const std::exception&) {
        return refusal("The password file can't be read.");
    }
    if (bytes.size() > kLongestInput || stream.bad()) {
        return refusal(stream.bad() ? "The password file can't be read." : "The secret is too long.");
    }
    return secretOfLine(bytes);
}

Secret secretOfFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    // A folder opens, too, but gives no byte.
    if (!file.is_open() || file.peek() == std::ifstream::traits_type::eof()) {
        return refusal("The password file can't be read, or is empty.");
    }
    return secretFrom(file);
}

Secret secretTyped(std::string_view prompt)
{
    std::array<char, kLongestInput> typed{};
    const std::string question(prompt);
    if (::readpassphrase(question.c_str(), typed.data(), typed.size(), RPP_REQUIRE_TTY) == nullptr) {
        return refusal("There is no terminal to ask for the secret. Use --password-file.");
    }
    auto secret = secretOfLine(typed.data());
    ::explicit_bzero(typed.data(), typed.size());
    return secret;
}

} // namespace

Secret readSecret(const SecretSource& source)
{
    if (!source.file) {
        return secretTyped(source.prompt);
    }
    return *source.file == "-" ? secretFrom(std::cin) : secretOfFile(*source.file);
}

} // namespace vorrano::ctl

#pragma once

#include "platform/StayAwake.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::support {

// Counts what is to keep the computer awake.
class FakeStayAwake : public platform::StayAwake {
public:
    platform::Subscription stayAwake(std::string_view why) override
    {
        m_reasons.emplace_back(why);
        ++*m_tokens;
        return platform::Subscription([tokens = m_tokens] { --*tokens; });
    }

    // Whether anybody keeps the computer awake now.
    [[nodiscard]] bool isOn() const { return *m_tokens > 0; }

    // Why it was to stay awake, each time that somebody asked.
    [[nodiscard]] const std::vector<std::string>& reasons() const { return m_reasons; }

private:
    std::shared_ptr<int> m_tokens = std::make_shared<int>(0);
    std::vector<std::string> m_reasons;
};

} // namespace vorrano::support

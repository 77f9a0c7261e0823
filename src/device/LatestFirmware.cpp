#include "device/LatestFirmware.h"

#include "device/FirmwareVersion.h"
#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Mutex.h"
#include "platform/Platform.h"
#include "platform/UrlFetch.h"
#include "web/Reply.h"
#include "web/ServiceAddress.h"

#include <utility>

namespace vorrano::device {

using platform::Platform;

// Any thread.
class LatestFirmware::Answer {
public:
    [[nodiscard]] std::optional<std::string> text() const
    {
        const platform::MutexLock lock(m_mutex);
        return m_text;
    }
    void setText(std::optional<std::string> text)
    {
        const platform::MutexLock lock(m_mutex);
        m_text = std::move(text);
    }

private:
    mutable platform::Mutex m_mutex;
    std::optional<std::string> m_text VORRANO_GUARDED_BY(m_mutex);
};

LatestFirmware::LatestFirmware()
    : m_backgroundQueue(Platform::current().backgroundQueue)
    , m_mainQueue(Platform::current().mainQueue)
    , m_urlFetch(Platform::current().urlFetch)
    , m_answer(std::make_shared<Answer>())
{}

LatestFirmware::~LatestFirmware() = default;

void LatestFirmware::fetch(std::int32_t wholeVersion)
{
    m_backgroundQueue.async([address = web::latestFirmwareAddress(web::serviceRoot(), wholeVersion), answer = m_answer,
                             &urlFetch = m_urlFetch, &mainQueue = m_mainQueue] {
        const auto body = urlFetch.contentsOfUrl(address);
        // Parsed, but an answer that is no JSON counts as much: the version stands at a fixed place of its text.
        static_cast<void>(web::Reply::parsed(body));
        answer->setText(firmwareAnswerOf(body));
        mainQueue.async([] {});
    });
}

std::optional<std::string> LatestFirmware::answer() const { return m_answer->text(); }

} // namespace vorrano::device

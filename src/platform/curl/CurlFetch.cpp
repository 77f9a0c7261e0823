#include "platform/curl/CurlFetch.h"

#include "platform/curl/WebAddress.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include <curl/curl.h>

namespace vorrano::curl_platform {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kMostRedirections = 20;
constexpr std::size_t kShortBody = std::size_t{1024} * 1024;

struct Release {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(CURLU* handle) const { curl_url_cleanup(handle); }
    void operator()(char* text) const { curl_free(text); }
};
struct ReleaseMulti {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};

// Where a Location header leads, seen from an address; none when it makes no sense.
std::optional<std::string> resolved(const std::string& address, const char* location)
{
    const std::unique_ptr<CURLU, Release> url(curl_url());
    char* text = nullptr;
    if (!url || curl_url_set(url.get(), CURLUPART_URL, address.c_str(), CURLU_PATH_AS_IS) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_URL, location, CURLU_PATH_AS_IS | CURLU_URLENCODE) != CURLUE_OK ||
        curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK) {
        return std::nullopt;
    }
    return std::unique_ptr<char, Release>(text).get();
}

} // namespace

// One fetch, on its own thread but for wakeUp().
class CurlFetch::Transfer {
public:
    explicit Transfer(CurlFetch& fetch);
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer();

    [[nodiscard]] std::optional<std::string> contentsOf(std::string address);
    void wakeUp() { curl_multi_wakeup(m_multi.get()); }

private:
    [[nodiscard]] bool setUp();
    [[nodiscard]] bool get(const std::string& address);
    [[nodiscard]] bool perform();
    [[nodiscard]] const char* location() const;
    [[nodiscard]] milliseconds timeLeft() const;
    std::size_t takeBody(const char* bytes, std::size_t count);

    static std::size_t onHeader(const char*, std::size_t size, std::size_t count, void* transfer);
    static std::size_t onBody(const char* bytes, std::size_t size, std::size_t count, void* transfer);

    CurlFetch& m_fetch;
    const std::unique_ptr<CURLM, ReleaseMulti> m_multi;
    const std::unique_ptr<CURL, Release> m_easy;
    std::string m_body;
    steady_clock::time_point m_lastProgress;
};

CurlFetch::Transfer::Transfer(CurlFetch& fetch)
    : m_fetch(fetch)
    , m_multi(curl_multi_init())
    , m_easy(curl_easy_init())
{
    const platform::MutexLock lock(m_fetch.m_transfersMutex);
    m_fetch.m_transfers.insert(this);
}

CurlFetch::Transfer::~Transfer()
{
    const platform::MutexLock lock(m_fetch.m_transfersMutex);
    m_fetch.m_transfers.erase(this);
}

std::optional<std::string> CurlFetch::Transfer::contentsOf(std::string address)
{
    auto scheme = webSchemeOf(address);
    if (!scheme || !setUp()) {
        return std::nullopt;
    }
    for (int redirections = 0; redirections <= kMostRedirections; ++redirections) {
        if (!get(address)) {
            return std::nullopt;
        }
        const char* next = location();
        if (next == nullptr) {
            return std::move(m_body);
        }
        const auto target = resolved(address, next);
        const auto targetScheme = target ? webSchemeOf(*target) : std::nullopt;
        if (!targetScheme || (scheme == WebScheme::Https && targetScheme == WebScheme::Http)) {
            return std::nullopt;
        }
        address = *target;
        scheme = targetScheme;
    }
    return std::nullopt;
}

bool CurlFetch::Transfer::setUp()
{
    if (!m_multi || !m_easy) {
        return false;
    }
    auto* easy = m_easy.get();
    bool isDone = true;
    const auto set = [&](CURLoption option, auto value) {
        isDone = isDone && curl_easy_setopt(easy, option, value) == CURLE_OK;
    };
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_PROXY, "");
    set(CURLOPT_USERAGENT, "vorrano-setup");
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_HEADERFUNCTION, &onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &onBody);
    set(CURLOPT_WRITEDATA, this);
    if (!m_fetch.m_authorities.empty()) {
        set(CURLOPT_CAINFO, m_fetch.m_authorities.c_str());
    }
    return isDone;
}

bool CurlFetch::Transfer::get(const std::string& address)
{
    m_body.clear();
    m_lastProgress = steady_clock::now();
    if (curl_easy_setopt(m_easy.get(), CURLOPT_URL, address.c_str()) != CURLE_OK ||
        curl_multi_add_handle(m_multi.get(), m_easy.get()) != CURLM_OK) {
        return false;
    }
    const bool isComplete = perform();
    if (!isComplete) {
        // A name that is still being looked up is not waited for.
        curl_easy_setopt(m_easy.get(), CURLOPT_QUICK_EXIT, 1L);
    }
    curl_multi_remove_handle(m_multi.get(), m_easy.get());
    return isComplete;
}

bool CurlFetch::Transfer::perform()
{
    int running = 0;
    while (!m_fetch.m_aborted && curl_multi_perform(m_multi.get(), &running) == CURLM_OK) {
        if (running == 0) {
            int others = 0;
            const auto* message = curl_multi_info_read(m_multi.get(), &others);
            return message != nullptr && message->msg == CURLMSG_DONE && message->data.result == CURLE_OK;
        }
        if (timeLeft() <= milliseconds::zero() ||
            curl_multi_poll(m_multi.get(), nullptr, 0, static_cast<int>(timeLeft().count()), nullptr) != CURLM_OK) {
            return false;
        }
    }
    return false;
}

const char* CurlFetch::Transfer::location() const
{
    constexpr std::array<long, 5> kRedirections = {301, 302, 303, 307, 308};
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_header* header = nullptr;
    const bool isRedirected = std::find(kRedirections.begin(), kRedirections.end(), status) != kRedirections.end() &&
                              curl_easy_header(m_easy.get(), "Location", 0, CURLH_HEADER, -1, &header) == CURLHE_OK;
    return isRedirected ? header->value : nullptr;
}

milliseconds CurlFetch::Transfer::timeLeft() const
{
    const auto end = m_lastProgress + m_fetch.m_limits.withoutProgress;
    return std::max(milliseconds::zero(), std::chrono::ceil<milliseconds>(end - steady_clock::now()));
}

// Less than all that came ends the transfer.
std::size_t CurlFetch::Transfer::takeBody(const char* bytes, std::size_t count)
{
    m_lastProgress = steady_clock::now();
    if (count > m_fetch.m_limits.body - m_body.size()) {
        return 0;
    }
    if (m_body.size() + count > std::max(m_body.capacity(), kShortBody)) {
        // All that it may ever take: memory that is not written costs nothing, while growing by and by would need the
        // body twice, the old one and the new one.
        m_body.reserve(m_fetch.m_limits.body);
    }
    m_body.append(bytes, count);
    return count;
}

std::size_t CurlFetch::Transfer::onHeader(const char*, std::size_t size, std::size_t count, void* transfer)
{
    static_cast<Transfer*>(transfer)->m_lastProgress = steady_clock::now();
    return size * count;
}

std::size_t CurlFetch::Transfer::onBody(const char* bytes, std::size_t size, std::size_t count, void* transfer)
{
    return static_cast<Transfer*>(transfer)->takeBody(bytes, size * count);
}

CurlFetch::CurlFetch()
    : CurlFetch(Limits{}, {})
{}

CurlFetch::CurlFetch(Limits limits, std::string authorities)
    : m_limits(limits)
    , m_authorities(std::move(authorities))
{}

std::optional<std::string> CurlFetch::contentsOfUrl(const std::string& address)
{
    static const CURLcode isReady = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (isReady != CURLE_OK || m_aborted) {
        return std::nullopt;
    }
    return Transfer(*this).contentsOf(address);
}

void CurlFetch::abort()
{
    m_aborted = true;
    const platform::MutexLock lock(m_transfersMutex);
    for (auto* transfer : m_transfers) {
        transfer->wakeUp();
    }
}

} // namespace vorrano::curl_platform

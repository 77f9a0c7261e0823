#include "platform/curl/CurlFetch.h"

#include <chrono>
#include <csignal>
#include <future>
#include <thread>

#include <QProcess>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace vorrano {

using curl_platform::CurlFetch;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using testing::HasSubstr;
using testing::Not;
using testing::Optional;

namespace {

// The servers of fetch_server.py, one set for the whole program.
class Servers {
public:
    Servers(const Servers&) = delete;
    Servers& operator=(const Servers&) = delete;

    static Servers& instance()
    {
        static Servers servers;
        return servers;
    }

    [[nodiscard]] std::string http() const { return "http://127.0.0.1:" + port(0); }
    [[nodiscard]] std::string https() const { return "https://127.0.0.1:" + port(1); }
    [[nodiscard]] std::string ofStranger() const { return "https://127.0.0.1:" + port(2); }
    [[nodiscard]] std::string ofExpired() const { return "https://127.0.0.1:" + port(3); }
    [[nodiscard]] std::string ofWrongHost() const { return "https://127.0.0.1:" + port(4); }
    [[nodiscard]] std::string authorities() const
    {
        return m_folder.filePath(QStringLiteral("authority.pem")).toStdString();
    }

    ~Servers()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    Servers()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(QStringLiteral("/usr/bin/python3"),
                        {QStringLiteral(VORRANO_TEST_DATA "/fetch_server.py"), m_folder.path()});
        while (!m_process.canReadLine() && m_process.waitForReadyRead(30'000)) {
        }
        m_ports = QString::fromLatin1(m_process.readLine()).simplified().split(' ');
        EXPECT_EQ(m_ports.size(), 5);
    }
    [[nodiscard]] std::string port(qsizetype index) const { return m_ports.value(index).toStdString(); }

    QTemporaryDir m_folder;
    QProcess m_process;
    QStringList m_ports;
};

} // namespace

class Fetch : public testing::Test {
protected:
    // All that the servers were asked for, by anybody.
    std::string requests() { return fetch.contentsOfUrl(servers.http() + "/requests").value_or("none"); }

    Servers& servers = Servers::instance();
    CurlFetch fetch{{}, servers.authorities()};
};

TEST_F(Fetch, GivesTheWholeBody)
{
    std::string allBytes;
    for (int i = 0; i < 256; ++i) {
        allBytes.push_back(static_cast<char>(i));
    }

    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/binary"), allBytes);
}

TEST_F(Fetch, TakesAnEmptyBodyForABody) { EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/empty"), ""); }

class FetchOfStatus : public Fetch, public testing::WithParamInterface<const char*> {};

TEST_P(FetchOfStatus, GivesTheBodyWhateverTheStatus)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/status/" + GetParam()), "<html>page</html>");
}

INSTANTIATE_TEST_SUITE_P(Statuses, FetchOfStatus, testing::Values("201", "400", "401", "404", "500", "503"));

using Wire = std::pair<std::string, std::string>;

class FetchOfPath : public Fetch, public testing::WithParamInterface<Wire> {};

TEST_P(FetchOfPath, SendsThePathAsItStands)
{
    const auto [path, onTheWire] = GetParam();

    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + path), onTheWire);
}

INSTANTIATE_TEST_SUITE_P(Paths, FetchOfPath,
                         testing::Values(Wire("", "/"), Wire("/", "/"), Wire("/a//b", "/a//b"), Wire("//a", "//a"),
                                         Wire("/a/../b/./c/", "/a/../b/./c/"), Wire("/..", "/.."),
                                         Wire("/a%20b%2fc", "/a%20b%2fc"), Wire("/%2E%2e/%7E", "/%2E%2e/%7E"),
                                         Wire("/a?b?c/d", "/a?b?c/d"), Wire("/a?", "/a?"), Wire("?a", "/?a"),
                                         Wire("/a#b", "/a"), Wire("/a#b#c", "/a"), Wire("/a?b#c/d", "/a?b"),
                                         Wire("/-._~!$&'()*+,;=:@", "/-._~!$&'()*+,;=:@")));

TEST_F(Fetch, AsksForNothingWhenTheTextIsNoAddress)
{
    for (const char* path :
         {"/notanaddress b", "/notanaddress%", "/notanaddress%2", "/notanaddress\xc3\xa4", "/notanaddress[]"}) {
        EXPECT_EQ(fetch.contentsOfUrl(servers.http() + path), std::nullopt) << path;
    }

    EXPECT_THAT(requests(), Not(HasSubstr("notanaddress")));
}

TEST_F(Fetch, KnowsOnlyHttpAndHttps)
{
    EXPECT_EQ(fetch.contentsOfUrl("file:///etc/hostname"), std::nullopt);
    EXPECT_EQ(fetch.contentsOfUrl("ftp" + servers.http().substr(4) + "/a"), std::nullopt);
}

TEST_F(Fetch, GivesNoneWhenTheConnectionIsRefused)
{
    EXPECT_EQ(fetch.contentsOfUrl("http://127.0.0.1:1/a"), std::nullopt);
}

TEST_F(Fetch, GivesNoneWhenTheHostIsUnknown)
{
    EXPECT_EQ(fetch.contentsOfUrl("http://nobody.invalid/a"), std::nullopt);
}

TEST_F(Fetch, GivesNoneWhenTheBodyIsCutOff) { EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/cut"), std::nullopt); }

TEST_F(Fetch, LooksAtNoProxyOfTheEnvironment)
{
    qputenv("http_proxy", "http://127.0.0.1:1");
    qputenv("all_proxy", "http://127.0.0.1:1");

    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/a"), "/a");

    qunsetenv("http_proxy");
    qunsetenv("all_proxy");
}

TEST_F(Fetch, FollowsRedirections) { EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/redirect/20"), "arrived"); }

class FetchOfMoved : public Fetch, public testing::WithParamInterface<const char*> {};

TEST_P(FetchOfMoved, FollowsEachKindOfRedirection)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/" + GetParam() + "/%2Fa%2F%2Fb%2F..%2Fc"), "/a//b/../c");
}

INSTANTIATE_TEST_SUITE_P(Kinds, FetchOfMoved, testing::Values("301", "302", "303", "307", "308"));

TEST_F(Fetch, FollowsARedirectionRelativeToWhereItIs)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/relative/a"), "/beside/there");
}

TEST_F(Fetch, EscapesTheBlanksOfARedirection)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/302/%2Fa%20b"), "/a%20b");
}

TEST_F(Fetch, FollowsARedirectionFromHttpToHttps)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/302/" + servers.https() + "/up"), "/up");
}

TEST_F(Fetch, FollowsNoRedirectionFromHttpsDownToHttp)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.https() + "/moved/302/" + servers.http() + "/down"), std::nullopt);
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/302/" + servers.https() + "/moved/302/http:%2F%2F" +
                                  servers.http().substr(7) + "/downagain"),
              std::nullopt);

    EXPECT_THAT(requests(), Not(HasSubstr("\n/down")));
}

TEST_F(Fetch, FollowsNoRedirectionToAnotherScheme)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/302/file:%2F%2F%2Fetc%2Fhostname"), std::nullopt);
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/302/ftp:%2F%2F127.0.0.1%2Fa"), std::nullopt);
}

TEST_F(Fetch, GivesNoneWhenRedirectionsHaveNoEnd)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/moved/302/%2Fmoved%2F302%2F"), std::nullopt);
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/redirect/21"), std::nullopt);
}

TEST_F(Fetch, GivesTheBodyOfARedirectionToNowhere)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/nowhere"), "nowhere");
}

TEST_F(Fetch, BelievesACertificateOfATrustedAuthority) { EXPECT_EQ(fetch.contentsOfUrl(servers.https() + "/a"), "/a"); }

TEST_F(Fetch, GivesNoneForACertificateOfAStranger)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.ofStranger() + "/stranger"), std::nullopt);

    EXPECT_THAT(requests(), Not(HasSubstr("/stranger")));
}

TEST_F(Fetch, GivesNoneForAnExpiredCertificate)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.ofExpired() + "/expired"), std::nullopt);

    EXPECT_THAT(requests(), Not(HasSubstr("/expired")));
}

TEST_F(Fetch, GivesNoneForACertificateOfAnotherHost)
{
    EXPECT_EQ(fetch.contentsOfUrl(servers.ofWrongHost() + "/wronghost"), std::nullopt);

    EXPECT_THAT(requests(), Not(HasSubstr("/wronghost")));
}

TEST_F(Fetch, TrustsTheSystemsAuthoritiesAndNoOthers)
{
    CurlFetch ofTheSystem;

    EXPECT_EQ(ofTheSystem.contentsOfUrl(servers.http() + "/a"), "/a");
    EXPECT_EQ(ofTheSystem.contentsOfUrl(servers.https() + "/untrusted"), std::nullopt);
}

TEST_F(Fetch, TakesABodyOfExactlyTheLimit)
{
    CurlFetch limited{{seconds(60), 100'000}, {}};

    const auto body = limited.contentsOfUrl(servers.http() + "/body/100000");

    ASSERT_TRUE(body.has_value());
    EXPECT_EQ(body->size(), 100'000u);
}

TEST_F(Fetch, GivesNoneForABodyBeyondTheLimit)
{
    CurlFetch limited{{seconds(60), 100'000}, {}};

    EXPECT_EQ(limited.contentsOfUrl(servers.http() + "/body/100001"), std::nullopt);
}

TEST_F(Fetch, TakesBodiesUpTo64MiB)
{
    const auto body = fetch.contentsOfUrl(servers.http() + "/body/67108864");

    ASSERT_TRUE(body.has_value());
    EXPECT_EQ(body->size(), 67'108'864u);
}

TEST_F(Fetch, EndsABodyWithoutEnd) { EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/endless"), std::nullopt); }

TEST_F(Fetch, GivesUpWithoutProgress)
{
    CurlFetch impatient{{milliseconds(300), 1'000'000}, {}};
    for (const char* path : {"/silent", "/stall"}) {
        const auto begin = steady_clock::now();

        EXPECT_EQ(impatient.contentsOfUrl(servers.http() + path), std::nullopt) << path;

        EXPECT_GE(steady_clock::now() - begin, milliseconds(300)) << path;
    }
}

TEST_F(Fetch, WaitsForAslongAsThereIsProgress)
{
    CurlFetch patient{{milliseconds(1000), 1'000'000}, {}};
    const auto begin = steady_clock::now();

    EXPECT_EQ(patient.contentsOfUrl(servers.http() + "/trickle/30"), std::string(30, 'x'));

    EXPECT_GT(steady_clock::now() - begin, milliseconds(1000)) << "else this shows nothing";
}

TEST_F(Fetch, EndsWhatIsUnderWayWhenItIsAborted)
{
    auto silent = std::async(std::launch::async, [&] { return fetch.contentsOfUrl(servers.http() + "/silent/1"); });
    auto endless = std::async(std::launch::async, [&] { return fetch.contentsOfUrl(servers.https() + "/silent/2"); });
    CurlFetch other;
    const auto asked = [&] { return other.contentsOfUrl(servers.http() + "/requests").value_or(""); };
    const auto deadline = steady_clock::now() + seconds(10);
    while ((asked().find("/silent/1") == std::string::npos || asked().find("/silent/2") == std::string::npos) &&
           steady_clock::now() < deadline) {
    }
    // By then nothing of their own would wake the two soon.
    EXPECT_EQ(other.contentsOfUrl(servers.http() + "/trickle/12"), std::string(12, 'x'));

    fetch.abort();

    // Their own limit would end them after a minute.
    EXPECT_EQ(silent.wait_for(seconds(20)), std::future_status::ready);
    EXPECT_EQ(endless.wait_for(seconds(20)), std::future_status::ready);
    EXPECT_EQ(silent.get(), std::nullopt);
    EXPECT_EQ(endless.get(), std::nullopt);
}

TEST_F(Fetch, AsksForNothingOnceItWasAborted)
{
    fetch.abort();

    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/toolate"), std::nullopt);

    CurlFetch other;
    EXPECT_THAT(other.contentsOfUrl(servers.http() + "/requests"), Optional(Not(HasSubstr("/toolate"))));
}

TEST_F(Fetch, ServesSeveralThreadsAtOnce)
{
    std::vector<std::future<std::optional<std::string>>> all;
    for (int i = 0; i < 16; ++i) {
        const auto path = "/thread/" + std::to_string(i);
        all.push_back(
            std::async(std::launch::async, [this, path] { return fetch.contentsOfUrl(servers.https() + path); }));
    }

    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(all[static_cast<std::size_t>(i)].get(), "/thread/" + std::to_string(i));
    }
}

TEST_F(Fetch, WritesNothingAboutAnAddress)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();

    EXPECT_EQ(fetch.contentsOfUrl(servers.ofStranger() + "/secret"), std::nullopt);
    EXPECT_EQ(fetch.contentsOfUrl(servers.http() + "/secret a"), std::nullopt);
    EXPECT_EQ(fetch.contentsOfUrl("http://127.0.0.1:1/secret"), std::nullopt);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

} // namespace vorrano

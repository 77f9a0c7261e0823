#include "platform/posix/LazyFetch.h"

#include "support/FakeSystem.h"

#include <gtest/gtest.h>

namespace vorrano::posix_platform {
namespace {

TEST(LazyFetch, LoadsItsModuleWithTheFirstFetch)
{
    support::FakeSystemLog log;
    LazyFetch fetch(log);

    // Nobody listens on the discard port of loopback; without the module there would be a line in the log.
    EXPECT_EQ(fetch.contentsOfUrl("http://127.0.0.1:9/"), std::nullopt);

    EXPECT_TRUE(log.lines().empty());
}

TEST(LazyFetch, LoadsNothingOnceItIsAborted)
{
    support::FakeSystemLog log;
    LazyFetch fetch(log, "no-such-module.so");

    fetch.abort();

    EXPECT_EQ(fetch.contentsOfUrl("http://127.0.0.1:9/"), std::nullopt);
    EXPECT_TRUE(log.lines().empty());
}

TEST(LazyFetch, GivesNoneAndSaysSoWithoutItsModule)
{
    support::FakeSystemLog log;
    LazyFetch fetch(log, "no-such-module.so");

    EXPECT_EQ(fetch.contentsOfUrl("http://127.0.0.1:9/"), std::nullopt);

    EXPECT_EQ(log.lines(), std::vector<std::string>{"The module for web fetches can't be loaded"});
}

} // namespace
} // namespace vorrano::posix_platform

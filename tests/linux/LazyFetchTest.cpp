#include "platform/linux/LazyFetch.h"

#include "support/FakeSystem.h"

#include <gtest/gtest.h>

namespace vorrano::linux_platform {
namespace {

TEST(LazyFetch, LoadsItsModuleWithTheFirstFetch)
{
    support::FakeSystemLog log;
    LazyFetch fetch(log);

    // Nobody listens on the discard port of loopback; without the module there would be a line in the log.
    EXPECT_EQ(fetch.contentsOfUrl("http://127.0.0.1:9/"), std::nullopt);

    EXPECT_TRUE(log.lines().empty());
}

} // namespace
} // namespace vorrano::linux_platform

#include "platform/posix/PosixTerminalKernel.h"
#include "serial_pty/SerialPtyFixture.h"

#include <cerrno>

namespace vorrano::serial {

namespace {

class ExchangeOnAPty : public SerialPtyFixture {};

TEST_F(ExchangeOnAPty, SendsARequestAndHearsItsResponse)
{
    giveModemLines();
    port->open();
    ASSERT_TRUE(port->isOpen());

    EXPECT_TRUE(port->sendRequest(request("3", 20s, endsWith("\n\r"))));
    EXPECT_EQ(received(1), "3");
    pty->send("00:11:22:33:");
    ASSERT_TRUE(hears("data 00:11:22:33:"));
    pty->send("44:55\n\r");
    ASSERT_TRUE(hears("response 00:11:22:33:44:55\n\r"));

    EXPECT_THAT(delegate->heard(), testing::ElementsAre("opened", "data 00:11:22:33:", "data 44:55\n\r",
                                                        "response 00:11:22:33:44:55\n\r"));
}

TEST_F(ExchangeOnAPty, PassesEveryByteAsItIsInBothDirections)
{
    giveModemLines();
    port->open();
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }

    EXPECT_TRUE(port->sendData(all));
    EXPECT_EQ(received(all.size()), all);

    pty->send(all);
    std::string read;
    EXPECT_TRUE(world->loop.runUntil([&] {
        read.clear();
        for (const auto& line : delegate->heard("data ")) {
            read += line.substr(5);
        }
        return read.size() >= all.size();
    }));
    EXPECT_EQ(read, all);
}

TEST_F(ExchangeOnAPty, TimesOutNotBeforeItsLimit)
{
    giveModemLines();
    port->open();
    const auto begin = std::chrono::steady_clock::now();
    port->sendRequest(request("3", 0.3s, endsWith("!")));

    ASSERT_TRUE(hears("timeout"));

    EXPECT_GE(std::chrono::steady_clock::now() - begin, 300ms);
}

TEST_F(ExchangeOnAPty, AppliesItsSettingsAndGivesTheOldOnesBack)
{
    giveModemLines();
    const auto before = pty->settings();
    ASSERT_NE(before.c_lflag & ICANON, 0U);

    port->open();
    port->setBaudRate(std::make_shared<const unsigned long>(9600UL));
    port->setNumberOfStopBits(2);
    const auto during = pty->settings();
    EXPECT_EQ(::cfgetospeed(&during), static_cast<speed_t>(B9600));
    EXPECT_EQ(during.c_lflag & (ICANON | ISIG | ECHO), 0U);
    EXPECT_NE(during.c_cflag & CSTOPB, 0U);
    EXPECT_EQ(during.c_cc[VMIN], 1);
    EXPECT_EQ(during.c_cc[VTIME], 2);
    EXPECT_TRUE(port->close());

    const auto after = pty->settings();
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(after.c_oflag, before.c_oflag);
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_cflag & ~static_cast<tcflag_t>(CBAUDEX), before.c_cflag & ~static_cast<tcflag_t>(CBAUDEX));
    EXPECT_EQ(::cfgetospeed(&after), ::cfgetospeed(&before));
}

TEST_F(ExchangeOnAPty, SetsBothRatesOfALineThatHadTwoAndGivesBothBack)
{
    giveModemLines();
    constexpr tcflag_t kTwoRates = B2400 | B38400 << posix_platform::kInputRateShift;
    auto before = pty->settings();
    before.c_cflag = (before.c_cflag & ~static_cast<tcflag_t>(CBAUD | CIBAUD)) | kTwoRates;
    ASSERT_EQ(::tcsetattr(pty->master(), TCSANOW, &before), 0);

    port->setBaudRate(std::make_shared<const unsigned long>(9600UL));
    port->open();
    const auto during = pty->settings();
    EXPECT_EQ(during.c_cflag & CBAUD, static_cast<tcflag_t>(B9600));
    // The input has the output's rate.
    EXPECT_EQ(during.c_cflag & CIBAUD, 0U);
    EXPECT_TRUE(port->close());

    EXPECT_EQ(pty->settings().c_cflag & (CBAUD | CIBAUD), kTwoRates);
}

TEST_F(ExchangeOnAPty, WritesMoreThanTheLineTakesAtOnceWhileTheDeviceReads)
{
    giveModemLines();
    port->open();
    std::string much;
    for (int i = 0; i < 30'000; ++i) {
        much += std::to_string(i) + "\n";
    }
    bool sent = false;
    world->background.async([&] {
        sent = port->sendData(much);
        world->loop.async([] {});
    });

    EXPECT_EQ(received(much.size()), much);
    EXPECT_TRUE(world->loop.runUntil([&] { return world->terminal.opens == 1; }));
    port->sendRequest(request("!", 1s));
    EXPECT_EQ(received(1), "!");
    world->loop.drain();
    EXPECT_TRUE(sent);
}

TEST_F(ExchangeOnAPty, ReportsTheMissingModemLinesOfAPtyAndStaysOpen)
{
    port->open();

    ASSERT_TRUE(hears("error 25", 5));
    pty->send("abc");
    ASSERT_TRUE(hears("data abc"));

    EXPECT_TRUE(port->isOpen());
}

TEST_F(ExchangeOnAPty, ReadsTheNextOpensBytesAfterACloseAndAnOpenAtOnce)
{
    giveModemLines();
    for (int i = 0; i < 50; ++i) {
        port->open();
        ASSERT_TRUE(port->isOpen());
        pty->send("<" + std::to_string(i) + ">");
        ASSERT_TRUE(hears("data <" + std::to_string(i) + ">"));
        ASSERT_TRUE(port->close());
    }
    world->loop.drain();

    EXPECT_THAT(delegate->heard("error"), testing::IsEmpty());
}

} // namespace

} // namespace vorrano::serial

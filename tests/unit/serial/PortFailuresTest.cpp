#include "unit/serial/SerialPortFixture.h"

#include <cerrno>
#include <cstring>
#include <ostream>

namespace vorrano::serial {

namespace {

// One call that fails with one errno, and what is heard of it.
struct Failing {
    TerminalCall call;
    int error;
    friend std::ostream& operator<<(std::ostream& out, const Failing& failing)
    {
        return out << "call " << static_cast<int>(failing.call) << " errno " << failing.error;
    }
};

std::vector<Failing> each(TerminalCall call, const std::vector<int>& errors)
{
    std::vector<Failing> all;
    for (const auto error : errors) {
        all.push_back({call, error});
    }
    return all;
}

const std::vector<int> kOfOpen{EACCES, EAGAIN, EBUSY,   EEXIST,  EFAULT,    EINTR,        EINVAL, EIO,
                               EISDIR, ELOOP,  EMFILE,  ENFILE,  EROFS,     ENAMETOOLONG, ENODEV, ENOENT,
                               ENOMEM, ENOSPC, ENOTDIR, ENXIO,   EPERM,     ETXTBSY,      EBADF,  EDQUOT,
                               EFBIG,  ENOTTY, EFAULT,  ENOTSUP, EOVERFLOW, ENOLCK};
const std::vector<int> kOfStatusFlags{EACCES, EAGAIN, EBADF, EINVAL, EPERM, EINTR};
const std::vector<int> kOfAttributes{EBADF, EIO, ENODEV, ENOTTY, EINTR, EINVAL};
const std::vector<int> kOfModemLines{EBADF, EFAULT, EINVAL, EIO, ENODEV, ENOTTY, ENXIO, EINTR, ETIMEDOUT, EPIPE};
const std::vector<int> kOfWait{EBADF, EINTR, EINVAL, ENOMEM};
const std::vector<int> kOfWrite{EAGAIN, EBADF, EDESTADDRREQ, EDQUOT, EFAULT, EFBIG, EINTR,
                                EINVAL, EIO,   ENOSPC,       EPERM,  EPIPE,  ENXIO, ENODEV};
const std::vector<int> kOfClose{EBADF, EINTR, EIO, ENOSPC, EDQUOT};

class FailureTest : public SerialPortFixture, public testing::WithParamInterface<Failing> {
protected:
    [[nodiscard]] Failing failing() const { return GetParam(); }
    [[nodiscard]] std::string error() const { return "error " + std::to_string(failing().error); }
    void failNext()
    {
        if (failing().call == TerminalCall::SetSpeed) {
            world.terminal.failNext(failing().call, failing().error);
        } else {
            line.failNext(failing().call, failing().error);
        }
    }
};

class FailureOfOpen : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureOfOpen, testing::ValuesIn(each(TerminalCall::Open, kOfOpen)));

TEST_P(FailureOfOpen, IsOneErrorAndThePortStaysClosed)
{
    failNext();

    port->open();
    world.advance(1s);

    EXPECT_FALSE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre(error()));
    const SerialError expected{failing().error, std::strerror(failing().error), line.path()};
    EXPECT_EQ(delegate->errors().front(), expected);
}

TEST_P(FailureOfOpen, IsKeptAndToldToObserversUntilAnOpenSucceeds)
{
    std::vector<std::optional<int>> seen;
    const auto failures = port->observe(kOpenErrorKey, [&] { seen.push_back(port->openError()); });
    const auto opens = port->observe("isOpen", [&] { seen.push_back(port->openError()); });
    EXPECT_EQ(port->openError(), std::nullopt);
    failNext();

    port->open();
    port->open();

    EXPECT_THAT(seen, ElementsAre(failing().error, std::nullopt));
    port->close();
    EXPECT_EQ(port->openError(), std::nullopt);
}

class SilentFailureAtOpen : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(OfStatusFlags, SilentFailureAtOpen,
                         testing::ValuesIn(each(TerminalCall::SetStatusFlags, kOfStatusFlags)));
INSTANTIATE_TEST_SUITE_P(OfAttributes, SilentFailureAtOpen,
                         testing::ValuesIn(each(TerminalCall::Attributes, kOfAttributes)));
INSTANTIATE_TEST_SUITE_P(OfSpeed, SilentFailureAtOpen, testing::Values(Failing{TerminalCall::SetSpeed, EINVAL}));

TEST_P(SilentFailureAtOpen, IsToldToNobody)
{
    failNext();

    port->open();
    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("opened"));
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

class FailureToApplyOptions : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureToApplyOptions,
                         testing::ValuesIn(each(TerminalCall::SetAttributes, kOfAttributes)));

TEST_P(FailureToApplyOptions, IsOneLineInTheLog)
{
    failNext();

    port->open();
    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre("opened"));
    EXPECT_THAT(world.log.lines(), ElementsAre("Unable to set options on ttyUSB0: -1"));
}

class FailureOfModemLines : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureOfModemLines, testing::ValuesIn(each(TerminalCall::ModemLines, kOfModemLines)));

TEST_P(FailureOfModemLines, AtOpenIsOneErrorAndThePortStaysOpen)
{
    failNext();

    port->open();
    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre(error(), "opened"));
}

TEST_P(FailureOfModemLines, InAPollIsOneErrorAndOnlyWithENXIOARemoval)
{
    openQuietly();
    failNext();

    world.advance(1s);

    if (failing().error == ENXIO) {
        EXPECT_THAT(delegate->heard(), ElementsAre("error 6", "removed", "closed"));
    } else {
        EXPECT_THAT(delegate->heard(), ElementsAre(error()));
        EXPECT_TRUE(port->isOpen());
    }
}

TEST_P(FailureOfModemLines, InASetterIsToldToNobody)
{
    openQuietly();
    failNext();

    port->setRTS(true);
    world.run();

    EXPECT_THAT(delegate->heard(), IsEmpty());
    EXPECT_EQ(line.modemLineWrites().back(), 4);
}

class FailureToDriveALine : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureToDriveALine, testing::ValuesIn(each(TerminalCall::SetModemLines, kOfModemLines)));

TEST_P(FailureToDriveALine, InASetterIsOneError)
{
    openQuietly();
    failNext();

    port->setDTR(true);
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre(error()));
    EXPECT_TRUE(port->isOpen());
}

TEST_P(FailureToDriveALine, AtOpenIsOneErrorForEachCallThatFails)
{
    failNext();

    port->open();
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre(error(), "opened"));
    EXPECT_TRUE(port->isOpen());
}

class FailureToWait : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureToWait, testing::ValuesIn(each(TerminalCall::WaitReadable, kOfWait)));

TEST_P(FailureToWait, IsOneErrorPerRoundAndTheReaderGoesOn)
{
    openQuietly();
    failNext();

    world.advance(1s);
    line.reply("abc");
    world.run();

    EXPECT_THAT(delegate->heard(), ElementsAre(error(), "data abc"));
}

class FailureToWrite : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureToWrite, testing::ValuesIn(each(TerminalCall::Write, kOfWrite)));

TEST_P(FailureToWrite, IsOneErrorAndTheSendAnswersNo)
{
    openQuietly();
    failNext();

    EXPECT_FALSE(port->sendData("abc"));
    world.advance(1s);

    EXPECT_THAT(delegate->heard(), ElementsAre(error()));
    EXPECT_EQ(line.written(), "");
    EXPECT_TRUE(port->isOpen());
}

TEST_P(FailureToWrite, OfARequestIsOneErrorThenATimeOut)
{
    openQuietly();
    failNext();
    const auto sent = request("3", 2s, endsWith("\n"));

    EXPECT_FALSE(port->sendRequest(sent));
    world.advance(1999ms);
    EXPECT_THAT(delegate->heard(), ElementsAre(error()));
    world.advance(1ms);

    EXPECT_THAT(delegate->heard(), ElementsAre(error(), "timeout"));
    EXPECT_THAT(delegate->timedOut(), ElementsAre(sent));
}

class FailureToClose : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(Of, FailureToClose, testing::ValuesIn(each(TerminalCall::Close, kOfClose)));

TEST_P(FailureToClose, IsOneErrorAndThePortStaysOpen)
{
    openQuietly();
    failNext();

    EXPECT_FALSE(port->close());
    world.advance(1s);

    EXPECT_TRUE(port->isOpen());
    EXPECT_THAT(delegate->heard(), ElementsAre(error()));
}

class SilentFailureAtClose : public FailureTest {};
INSTANTIATE_TEST_SUITE_P(OfAttributes, SilentFailureAtClose,
                         testing::ValuesIn(each(TerminalCall::Attributes, kOfAttributes)));
INSTANTIATE_TEST_SUITE_P(OfSetAttributes, SilentFailureAtClose,
                         testing::ValuesIn(each(TerminalCall::SetAttributes, kOfAttributes)));

TEST_P(SilentFailureAtClose, IsToldToNobody)
{
    openQuietly();
    failNext();

    EXPECT_TRUE(port->close());
    world.advance(1s);

    EXPECT_THAT(delegate->heard(), ElementsAre("closed"));
    EXPECT_THAT(world.log.lines(), IsEmpty());
}

} // namespace

} // namespace vorrano::serial

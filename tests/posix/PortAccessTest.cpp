#include "PtyTest.h"
#include "platform/posix/PosixPortAccess.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace vorrano;

enum class Visibility { ToItsOwner, ToRootAlone };

// Another program that has a file open, until this object goes.
class Holder {
public:
    Holder(const std::string& file, const char* name, Visibility visibility = Visibility::ToItsOwner)
    {
        int ready[2] = {-1, -1};
        if (::pipe2(ready, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
        m_process = ::fork();
        if (m_process == 0) {
            holdOpen(file.c_str(), name, visibility, ready[1]);
        }
        ::close(ready[1]);
        char byte = 0;
        const auto count = ::read(ready[0], &byte, 1);
        ::close(ready[0]);
        EXPECT_EQ(count, 1) << "the other program did not open " << file;
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }

private:
    [[noreturn]] static void holdOpen(const char* file, const char* name, Visibility visibility, int ready)
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::prctl(PR_SET_NAME, name);
        if (visibility == Visibility::ToRootAlone) {
            ::prctl(PR_SET_DUMPABLE, 0);
        }
        if (::open(file, O_RDWR | O_NOCTTY) < 0 || ::write(ready, "", 1) != 1) {
            ::_exit(1);
        }
        while (true) {
            ::pause();
        }
    }

    pid_t m_process = -1;
};

class PortAccess : public support::PtyTest {
protected:
    // What an ordinary user is answered, 0 or 1.
    int asOrdinaryUser(const std::function<bool()>& ask)
    {
        return inAnotherProcess([&] {
            constexpr uid_t kNobody = 65534;
            if (::geteuid() == 0 && ::setuid(kNobody) != 0) {
                return 255;
            }
            return ask() ? 1 : 0;
        });
    }

    posix_platform::PosixPortAccess access{nodes};
};

TEST_F(PortAccess, NamesTheProgramThatHasTheDeviceOpen)
{
    const Holder holder(pty.node(), "kettle");

    EXPECT_EQ(access.programThatUses(kPath), "kettle");
}

TEST_F(PortAccess, NamesNoProgramWhenNoneHasTheDeviceOpen)
{
    EXPECT_EQ(access.programThatUses(kPath), std::nullopt);
    {
        const Holder holder(pty.node(), "kettle");
        EXPECT_NE(access.programThatUses(kPath), std::nullopt);
    }

    EXPECT_EQ(access.programThatUses(kPath), std::nullopt);
}

TEST_F(PortAccess, DoesNotNameThisProgram)
{
    opened();

    EXPECT_EQ(access.programThatUses(kPath), std::nullopt);
}

TEST_F(PortAccess, DoesNotNameAProgramThatHasAnotherFileOfThatNameOpen)
{
    const std::filesystem::path node(pty.node());
    std::string folder = std::filesystem::temp_directory_path() / "XXXXXX";
    ASSERT_NE(::mkdtemp(folder.data()), nullptr);
    const auto namesake = std::filesystem::path(folder) / node.filename();
    ::close(::open(namesake.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    const Holder holder(namesake, "kettle");

    EXPECT_EQ(access.programThatUses(kPath), std::nullopt);

    std::filesystem::remove_all(folder);
}

TEST_F(PortAccess, NamesNoProgramThatItMayNotLookInto)
{
    const Holder holder(pty.node(), "kettle", Visibility::ToRootAlone);

    EXPECT_EQ(asOrdinaryUser([this] { return access.programThatUses(kPath).has_value(); }), 0);
}

TEST_F(PortAccess, GivesTheNameOfAProgramWithoutControlCharacters)
{
    const Holder holder(pty.node(), "a\tb\x7F\x1B");

    EXPECT_EQ(access.programThatUses(kPath), "a?b??");
}

TEST_F(PortAccess, KnowsNothingOfAPathThatNoDeviceHas)
{
    nodes.byPath["/dev/cu.gone"] = "/dev/no-such-node";
    nodes.byPath["/dev/cu.file"] = "/etc/passwd";

    for (const auto* const path : {"/dev/cu.unknown", "/dev/cu.gone"}) {
        EXPECT_FALSE(access.isPermitted(path)) << path;
        EXPECT_EQ(access.programThatUses(path), std::nullopt) << path;
    }
    EXPECT_EQ(access.programThatUses("/dev/cu.file"), std::nullopt);
}

TEST_F(PortAccess, IsPermittedOnceTheDeviceMayBeReadAndWritten)
{
    const auto isPermittedUnder = [this](mode_t mode) {
        EXPECT_EQ(::chmod(pty.node().c_str(), mode), 0);
        return asOrdinaryUser([this] { return access.isPermitted(kPath); });
    };

    EXPECT_EQ(isPermittedUnder(0000), 0);
    EXPECT_EQ(isPermittedUnder(0444), 0);
    EXPECT_EQ(isPermittedUnder(0222), 0);
    EXPECT_EQ(isPermittedUnder(0666), 1);
}

} // namespace

#include "platform/posix/PosixSystemLog.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <syslog.h>
#include <unistd.h>

namespace {

std::mutex s_mutex;
std::vector<std::string> s_syslog;

void keep(const char* format, va_list values)
{
    char line[4096];
    ASSERT_EQ(std::string_view(format), "%s");
    std::vsnprintf(line, sizeof(line), "%s", values);
    const std::lock_guard lock(s_mutex);
    s_syslog.emplace_back(line);
}

} // namespace

// In the place of the C library's: what the program would send to the system log.
extern "C" void syslog(int /*priority*/, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    keep(format, values);
    va_end(values);
}

extern "C" void __syslog_chk(int /*priority*/, int /*flag*/, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    keep(format, values);
    va_end(values);
}

namespace {

using vorrano::posix_platform::escapedLine;

// Standard error, kept in a file meanwhile.
class KeptStandardError {
public:
    KeptStandardError() { ::dup2(::fileno(m_file), STDERR_FILENO); }
    KeptStandardError(const KeptStandardError&) = delete;
    KeptStandardError& operator=(const KeptStandardError&) = delete;
    ~KeptStandardError()
    {
        ::dup2(m_before, STDERR_FILENO);
        ::close(m_before);
        std::fclose(m_file);
    }

    [[nodiscard]] std::string text() const
    {
        std::string text;
        char part[4096];
        std::rewind(m_file);
        while (const std::size_t length = std::fread(part, 1, sizeof(part), m_file)) {
            text.append(part, length);
        }
        return text;
    }

private:
    const int m_before = ::dup(STDERR_FILENO);
    std::FILE* const m_file = std::tmpfile();
};

class SystemLog : public testing::Test {
protected:
    SystemLog() { s_syslog.clear(); }
    vorrano::posix_platform::PosixSystemLog log;
};

TEST_F(SystemLog, WritesOneLineToTheSystemLogAndToStandardError)
{
    const KeptStandardError standardError;

    log.write("Unable to set options on ttyUSB0: -1");

    EXPECT_EQ(standardError.text(), "Unable to set options on ttyUSB0: -1\n");
    EXPECT_EQ(s_syslog, std::vector<std::string>{"Unable to set options on ttyUSB0: -1"});
}

TEST_F(SystemLog, TakesATextForATextAndNotForAFormat)
{
    const KeptStandardError standardError;

    log.write("100 %s %n");

    EXPECT_EQ(standardError.text(), "100 %s %n\n");
    EXPECT_EQ(s_syslog, std::vector<std::string>{"100 %s %n"});
}

TEST_F(SystemLog, CannotBeMadeToWriteASecondLine)
{
    const KeptStandardError standardError;

    log.write("The string is a\nfake: b\r\n");

    EXPECT_EQ(standardError.text(), "The string is a\\nfake: b\\r\\n\n");
    EXPECT_EQ(s_syslog, std::vector<std::string>{"The string is a\\nfake: b\\r\\n"});
}

TEST_F(SystemLog, KeepsLinesOfManyThreadsWhole)
{
    const KeptStandardError standardError;
    const std::string line(200, 'x');
    std::vector<std::thread> threads;

    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int count = 0; count < 50; ++count) {
                log.write(line);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    std::string wanted;
    for (int i = 0; i < 200; ++i) {
        wanted += line + "\n";
    }
    EXPECT_EQ(standardError.text(), wanted);
    EXPECT_EQ(s_syslog.size(), 200U);
}

struct Escape {
    std::string text;
    std::string line;
};

class EscapedLine : public testing::TestWithParam<Escape> {};

TEST_P(EscapedLine, ShowsControlCharactersAndBrokenText) { EXPECT_EQ(escapedLine(GetParam().text), GetParam().line); }

INSTANTIATE_TEST_SUITE_P(
    Table, EscapedLine,
    testing::Values(Escape{"", ""}, Escape{"plain, with spaces", "plain, with spaces"}, Escape{"a\nb", "a\\nb"},
                    Escape{"a\r\n", "a\\r\\n"}, Escape{"\t", "\\t"}, Escape{"\x1b[31mred", "\\x1b[31mred"},
                    Escape{std::string("\0", 1), "\\x00"}, Escape{"\x7f", "\\x7f"},
                    Escape{"K\xc3\xbc"
                           "che",
                           "Küche"},
                    Escape{"\xe2\x82\xac \xf0\x9f\x98\x80", "€ 😀"},
                    // A control character of two bytes.
                    Escape{"\xc2\x9b"
                           "31m",
                           "\\xc2\\x9b31m"},
                    // Lone, cut, overlong, surrogate and beyond the last character.
                    Escape{"\x80", "\\x80"}, Escape{"\xc3", "\\xc3"}, Escape{"\xe2\x82", "\\xe2\\x82"},
                    Escape{"\xc3"
                           "a",
                           "\\xc3a"},
                    Escape{"\xc0\x8a", "\\xc0\\x8a"}, Escape{"\xe0\x80\x8a", "\\xe0\\x80\\x8a"},
                    Escape{"\xf0\x80\x80\x8a", "\\xf0\\x80\\x80\\x8a"}, Escape{"\xed\xa0\x80", "\\xed\\xa0\\x80"},
                    Escape{"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"}, Escape{"\xff", "\\xff"}));

} // namespace

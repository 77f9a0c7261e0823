#include "PortProbe.h"
#include "ProbeWorld.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include <QCoreApplication>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

using vorrano::kernel_test::PortProbe;
using vorrano::kernel_test::ProbeWorld;

// Standard input by its lines; false at its end.
class Lines {
public:
    bool receive()
    {
        std::array<char, 4096> buffer;
        const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count > 0) {
            m_text.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return count > 0;
    }

    template <class Each>
    void take(Each each)
    {
        for (auto end = m_text.find('\n'); end != std::string::npos; end = m_text.find('\n')) {
            const auto line = m_text.substr(0, end);
            m_text.erase(0, end + 1);
            each(line);
        }
    }

private:
    std::string m_text;
};

void obey(PortProbe& probe, const std::string& line)
{
    try {
        probe.obey(line);
    } catch (const std::exception& exception) {
        std::cerr << line << ": " << exception.what() << std::endl;
        std::_Exit(2);
    }
}

// A control call that an unplugged adapter holds up fails after 5 s; a guest may be slow besides.
constexpr std::chrono::seconds kPatience{20};

} // namespace

// Obeys until standard input ends.
int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    ProbeWorld world;
    const auto probe = std::make_shared<PortProbe>(world);
    Lines lines;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        if (!lines.receive()) {
            input.setEnabled(false);
            QCoreApplication::quit();
        }
        lines.take([&](const std::string& line) { obey(*probe, line); });
    });
    QCoreApplication::exec();

    probe->end();
    world.mainQueue.endAndDrain();
    world.background.stop();
    if (!world.background.joinWithin(kPatience)) {
        std::cerr << "a thread is stuck" << std::endl;
        std::_Exit(1);
    }
    return 0;
}

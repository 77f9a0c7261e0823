#include "linux/EventLoop.h"

#include <QEventLoop>
#include <QTimer>

namespace vorrano::support {

bool spinUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    QTimer round;
    bool holds = false;
    QObject::connect(&round, &QTimer::timeout, &loop, [&] {
        holds = condition();
        if (holds) {
            loop.quit();
        }
    });
    deadline.start(limit);
    round.start(std::chrono::milliseconds(2));
    loop.exec();
    return holds;
}

} // namespace vorrano::support

#include "platform/qt/QtApplication.h"

#include "platform/Guarded.h"
#include "platform/qt/ContrastStyle.h"
#include "platform/qt/ProgramIcon.h"

#include <QEvent>
#include <QIcon>

#include <utility>

// Resources of a static library have to be asked for, outside of any namespace.
static void loadResources() { Q_INIT_RESOURCE(layouts); }

namespace vorrano::qt {

QtApplication::QtApplication(int& argc, char** argv, platform::SystemLog& log)
    : QApplication(argc, argv)
    , m_log(log)
{
    loadResources();
    setStyle(new ContrastStyle);
    setApplicationName(QStringLiteral("vorrano-setup"));
    setApplicationDisplayName(QStringLiteral("Vorrano Setup"));
    setDesktopFileName(QStringLiteral("vorrano-setup"));
    QIcon icon;
    for (const int side : {32, 64}) {
        icon.addPixmap(programIcon(side));
    }
    setWindowIcon(icon);
}

void QtApplication::onQuitRequest(std::function<void()> asked) { m_quitRequest = std::move(asked); }

bool QtApplication::notify(QObject* receiver, QEvent* event)
{
    if (m_heldKeys.holdsBack(*receiver, *event)) {
        return true;
    }
    bool handled = false;
    platform::guarded(m_log, [&] { handled = QApplication::notify(receiver, event); });
    return handled;
}

bool QtApplication::event(QEvent* event)
{
    if (event->type() == QEvent::Quit && m_quitRequest) {
        m_quitRequest();
        return true;
    }
    return QApplication::event(event);
}

} // namespace vorrano::qt

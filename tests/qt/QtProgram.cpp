#include "QtProgram.h"

#include "platform/qt/QtApplication.h"

#include <QAccessible>
#include <QTemporaryFile>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <utility>

namespace vorrano::support {

namespace {

constexpr std::chrono::seconds kLimit{10};

// The offscreen platform's complaints of what it has no window manager for.
void showMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (!message.startsWith(QLatin1String("This plugin does not support"))) {
        std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    }
}

// The application object lives as long as the tests run.
class Application : public ::testing::Environment {
public:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
            describeScreen();
            qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + m_screen.fileName().toLocal8Bit());
        }
        qInstallMessageHandler(showMessage);
        static int argc = 1;
        static char name[] = "test_qt";
        static char* argv[] = {name, nullptr};
        m_application = std::make_unique<qt::QtApplication>(argc, argv, applicationLog());
    }

    void TearDown() override { m_application.reset(); }

private:
    // The smallest that the program is meant for, and one beside it on which nothing fits.
    void describeScreen()
    {
        ASSERT_TRUE(m_screen.open());
        m_screen.write(R"({"screens": [{"name": "small", "x": 0, "y": 0, "width": 1024, "height": 600, "logicalDpi": 96,
                                        "logicalBaseDpi": 96, "dpr": 1},
                                       {"name": "tiny", "x": 1024, "y": 0, "width": 320, "height": 160, "logicalDpi": 96,
                                        "logicalBaseDpi": 96, "dpr": 1}]})");
        m_screen.close();
    }

    QTemporaryFile m_screen;
    std::unique_ptr<qt::QtApplication> m_application;
};

[[maybe_unused]] const auto* const s_application = ::testing::AddGlobalTestEnvironment(new Application);

} // namespace

FakeSystemLog& applicationLog()
{
    static FakeSystemLog log;
    return log;
}

QtProgram::QtProgram()
    : layouts({gate, queue, log}, [this] {
        ++timesLastClosed;
        loop.quit();
    })
{
    applicationLog().forget();
}

bool QtProgram::spinUntil(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        // Outside of a loop nobody else does it.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

void QtProgram::runQueue()
{
    bool ran = false;
    queue.async([&] { ran = true; });
    EXPECT_TRUE(spinUntil([&] { return ran; }));
}

void QtProgram::whileUp(std::function<void(QDialog& box)> act)
{
    auto* const timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act = std::move(act)] {
        auto* const box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (box != nullptr && box->isVisible()) {
            timer->stop();
            timer->deleteLater();
            act(*box);
        }
    });
    timer->start(1);
}

std::shared_ptr<platform::Window> QtProgram::shown(std::string_view layout)
{
    auto window = layouts.loadWindow(layout);
    window->show();
    EXPECT_TRUE(spinUntil([&] { return frame(*window).isActiveWindow(); }));
    return window;
}

QWidget* QtProgram::find(platform::View& view, const char* name)
{
    return dynamic_cast<qt::QtView&>(view).root().findChild<QWidget*>(QString::fromLatin1(name));
}

QWidget& QtProgram::frame(platform::Window& window) { return dynamic_cast<qt::QtWindow&>(window).widget(); }

void QtProgram::pressOverTheBus(QWidget& button)
{
    auto* const accessible = QAccessible::queryAccessibleInterface(&button);
    ASSERT_NE(accessible, nullptr);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
}

void QtProgram::writeOverTheBus(QWidget& field, const QString& text)
{
    auto* const accessible = QAccessible::queryAccessibleInterface(&field);
    ASSERT_NE(accessible, nullptr);
    accessible->setText(QAccessible::Value, text);
}

} // namespace vorrano::support

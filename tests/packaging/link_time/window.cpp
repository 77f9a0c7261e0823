#include "window.h"

#include <QApplication>
#include <QWidget>

namespace {

class Application final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override { return QApplication::notify(receiver, event); }
};

} // namespace

int showWindow(int argc, char** argv)
{
    const Application application(argc, argv);
    QWidget window;
    QObject::connect(qApp, &QApplication::focusChanged, &window, [] {});
    window.show();
    return 0;
}

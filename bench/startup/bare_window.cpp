// A Qt program with the login window's controls, looking as the program's do, and nothing behind them: what the
// program's start is measured against.
#include "ui_LoginViewController.h"

#include <QApplication>
#include <QPixmap>
#include <QWidget>

// The logo's picture. Resources of a static library have to be asked for, outside of any namespace.
static void loadResources() { Q_INIT_RESOURCE(layouts); }

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    loadResources();
    QWidget window;
    Ui::LoginViewController controls;
    controls.setupUi(&window);
    controls.logo->setPixmap(QPixmap(QStringLiteral(":/icons/vorrano-setup-64.png")));
    // As the program makes its headings.
    QFont heading = controls.label1->font();
    heading.setPointSizeF(heading.pointSizeF() * 1.5);
    heading.setBold(true);
    controls.label1->setFont(heading);
    window.show();
    return QApplication::exec();
}

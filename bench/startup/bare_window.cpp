// A Qt program with the login window's controls and nothing behind them: what the program's start is measured against.
#include "ui_LoginViewController.h"

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    Ui::LoginViewController controls;
    controls.setupUi(&window);
    window.show();
    return QApplication::exec();
}

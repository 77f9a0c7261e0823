#include "QtProgram.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace vorrano::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenPanel : public support::QtProgram {
protected:
    OpenPanel()
    {
        QFile file(image);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }

    // Types a name and presses Open.
    static void open(QDialog& panel, const QString& name)
    {
        auto& dialog = dynamic_cast<QFileDialog&>(panel);
        dialog.selectFile(name);
        QMetaObject::invokeMethod(&dialog, "accept");
    }

    QTemporaryDir folder;
    QString image = folder.filePath(QStringLiteral("vorrano é.hex"));
    std::shared_ptr<platform::Window> window = shown("UtilitiesViewController");
};

TEST_F(OpenPanel, AnswersTheChosenFile)
{
    whileUp([this](QDialog& panel) { open(panel, image); });

    EXPECT_THAT(openPanel.runModal(), ElementsAre(std::filesystem::path(image.toStdString())));
}

TEST_F(OpenPanel, AnswersNothingWhenItIsCancelled)
{
    whileUp([](QDialog& panel) { panel.reject(); });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());
}

TEST_F(OpenPanel, TakesOneFileThatExistsAndNoFolder)
{
    whileUp([this](QDialog& panel) {
        auto& dialog = dynamic_cast<QFileDialog&>(panel);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        open(panel, folder.path());
        EXPECT_TRUE(panel.isVisible());
        panel.reject();
    });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());
}

TEST_F(OpenPanel, HoldsTheMainQueueAndTheOtherControlsBack)
{
    int heard = 0;
    auto& button = window->view()->button("buttonADC");
    button.onPress([&](platform::Control&) { ++heard; });
    whileUp([&](QDialog& panel) {
        queue.async([&] { ++heard; });
        pressOverTheBus(widget<QWidget>(*window->view(), "buttonADC"));
        QCoreApplication::processEvents();
        EXPECT_EQ(heard, 0);
        panel.reject();
    });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());
    runQueue();

    EXPECT_EQ(heard, 1);
}

// Qt holds a button that is pressed over the bus down for a moment before it clicks it.
TEST_F(OpenPanel, IsNotOutlivedByAPressThatWasMadeUnderIt)
{
    int heard = 0;
    window->view()->button("buttonADC").onPress([&](platform::Control&) { ++heard; });
    auto& button = widget<QAbstractButton>(*window->view(), "buttonADC");
    whileUp([&](QDialog& panel) {
        pressOverTheBus(button);
        EXPECT_TRUE(button.isDown());
        panel.reject();
    });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());

    EXPECT_TRUE(spinUntil([&] { return !button.isDown(); }));
    EXPECT_EQ(heard, 0);
}

TEST_F(OpenPanel, EndsWithoutAnAnswerWhenTheProgramEnds)
{
    whileUp([this](QDialog&) { gate.end(); });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());
}

TEST_F(OpenPanel, EndsWithItsOwnMessageUpWhenTheProgramEnds)
{
    whileUp([this](QDialog& panel) {
        whileUp([&, this](QDialog& message) {
            EXPECT_NE(&message, &panel);
            gate.end();
        });
        open(panel, folder.filePath(QStringLiteral("missing.hex")));
    });

    EXPECT_THAT(openPanel.runModal(), IsEmpty());
}

TEST_F(OpenPanel, LeavesNoSettingsFileBehind)
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    whileUp([this](QDialog& panel) { open(panel, image); });

    EXPECT_EQ(openPanel.runModal().size(), 1U);

    EXPECT_THAT(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), IsEmpty());
}

} // namespace
} // namespace vorrano::qt

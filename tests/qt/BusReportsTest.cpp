#include "platform/qt/BusReports.h"

#include "QtProgram.h"

#include <QAccessible>
#include <QLineEdit>
#include <QStringList>

#include <gmock/gmock.h>

#include <vector>

namespace vorrano::qt {
namespace {

using testing::ElementsAre;

// What the bus is told when Qt reports something. Qt itself reports nothing where no bus is.
class BusReports : public support::QtProgram {
protected:
    BusReports()
    {
        s_focused.clear();
        s_texts.clear();
        QAccessible::installUpdateHandler(hear);
        installBusReports();
        m_report = QAccessible::installUpdateHandler(nullptr);
    }
    ~BusReports() override
    {
        QAccessible::installUpdateHandler(nullptr);
        installBusReports();
    }

    void report(QAccessibleEvent&& event) { m_report(&event); }

    static const std::vector<QObject*>& focused() { return s_focused; }
    static const QStringList& texts() { return s_texts; }

private:
    static void hear(QAccessibleEvent* event)
    {
        const auto note = [](const QString& text, const QAccessibleTextCursorEvent& of, int change) {
            s_texts << QStringLiteral("%1 at %2, cursor at %3").arg(text).arg(change).arg(of.cursorPosition());
        };
        if (event->type() == QAccessible::Focus) {
            s_focused.push_back(event->object());
        } else if (const auto* const typed = dynamic_cast<QAccessibleTextInsertEvent*>(event)) {
            note("+" + typed->textInserted(), *typed, typed->changePosition());
        } else if (const auto* const gone = dynamic_cast<QAccessibleTextRemoveEvent*>(event)) {
            note("-" + gone->textRemoved(), *gone, gone->changePosition());
        } else if (const auto* const other = dynamic_cast<QAccessibleTextUpdateEvent*>(event)) {
            note("-" + other->textRemoved() + "+" + other->textInserted(), *other, other->changePosition());
        }
    }

    static inline std::vector<QObject*> s_focused;
    static inline QStringList s_texts;
    QAccessible::UpdateHandler m_report = nullptr;
};

TEST_F(BusReports, TellOfAHiddenTextOnlyHowLongItIs)
{
    const auto login = shown("LoginViewController");
    auto& field = widget<QLineEdit>(*login->view(), "password");

    report(QAccessibleTextInsertEvent(&field, 2, QStringLiteral("k3t")));
    report(QAccessibleTextRemoveEvent(&field, 4, QStringLiteral("t")));
    report(QAccessibleTextUpdateEvent(&field, 0, QStringLiteral("xk3"), QStringLiteral("copper")));

    EXPECT_THAT(texts(), ElementsAre(QStringLiteral("+\u2022\u2022\u2022 at 2, cursor at 5"),
                                     QStringLiteral("-\u2022 at 4, cursor at 4"),
                                     QStringLiteral("-\u2022\u2022\u2022+\u2022\u2022\u2022\u2022\u2022\u2022"
                                                    " at 0, cursor at 6")));
}

TEST_F(BusReports, TellWhatIsTypedInAFieldThatShowsIt)
{
    const auto login = shown("LoginViewController");
    auto& field = widget<QLineEdit>(*login->view(), "password");
    field.setEchoMode(QLineEdit::Normal);

    report(QAccessibleTextInsertEvent(&field, 2, QStringLiteral("k3t")));

    EXPECT_THAT(texts(), ElementsAre(QStringLiteral("+k3t at 2, cursor at 5")));
}

// The caret of a field that gets the focus, which Qt reports before the focus.
TEST_F(BusReports, TellOfTheFocusBeforeTheCaretAndOnce)
{
    const auto login = shown("LoginViewController");
    auto& field = widget<QLineEdit>(*login->view(), "accountId");
    field.setFocus();
    ASSERT_TRUE(spinUntil([&] { return field.hasFocus(); }));

    report(QAccessibleTextCursorEvent(&field, 1));
    report(QAccessibleEvent(&field, QAccessible::Focus));

    EXPECT_THAT(focused(), ElementsAre(&field));
}

// A menu of the field had the focus, and what was chosen in it moved the caret.
TEST_F(BusReports, TellOfAFocusThatComesAgainLater)
{
    const auto login = shown("LoginViewController");
    auto& field = widget<QLineEdit>(*login->view(), "accountId");
    field.setFocus();
    ASSERT_TRUE(spinUntil([&] { return field.hasFocus(); }));

    report(QAccessibleEvent(&frame(*login), QAccessible::Focus));
    report(QAccessibleTextCursorEvent(&field, 1));
    runQueue();
    report(QAccessibleEvent(&field, QAccessible::Focus));

    EXPECT_THAT(focused(), ElementsAre(&frame(*login), &field, &field));
}

} // namespace
} // namespace vorrano::qt

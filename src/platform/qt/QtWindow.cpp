#include "platform/qt/QtWindow.h"

#include "platform/MainQueue.h"
#include "platform/qt/Outline.h"
#include "platform/qt/ScreenArea.h"
#include "platform/qt/TabWidget.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

#include <stdexcept>
#include <utility>

namespace vorrano::qt {

namespace {

// The frame of most window managers.
constexpr int kFrameWidth = 8;
constexpr int kFrameHeight = 40;

unsigned long s_shows = 0;

} // namespace

// The window on screen: a frame around the view.
class QtWindow::Frame final : public QWidget {
public:
    Frame(QtWindow& owner, QWidget& content)
        : m_owner(&owner)
    {
        setWindowTitle(content.windowTitle());
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins({});
        layout->setSizeConstraint(QLayout::SetNoConstraint);
        resize(content.size());
        // The pages of tabs scroll by themselves, so that the tabs stay in sight.
        if (content.findChild<TabWidget*>() != nullptr) {
            layout->addWidget(&content);
            return;
        }
        auto* const area = new ScreenArea;
        area->showContent(content);
        layout->addWidget(area);
    }

    // Makes the window as large as its content needs, as far as the display has room.
    void fit()
    {
        const QSize room = screen()->availableSize() - decoration();
        setMinimumSize(layout()->minimumSize().boundedTo(room));
        if (!isVisible()) {
            resize(size().expandedTo(layout()->sizeHint()).boundedTo(room));
        }
    }

    void forgetOwner() { m_owner = nullptr; }

protected:
    bool event(QEvent* event) override
    {
        const bool handled = QWidget::event(event);
        if (event->type() == QEvent::LayoutRequest) {
            fit();
        }
        return handled;
    }

    void showEvent(QShowEvent* event) override
    {
        QWidget::showEvent(event);
        if (!m_followed) {
            m_followed = connect(windowHandle(), &QWindow::screenChanged, this, [this] { followDisplay(); });
            followDisplay();
        }
    }

    void paintEvent(QPaintEvent* event) override
    {
        QWidget::paintEvent(event);
        outlineUnlessFramed(*this);
    }

    void closeEvent(QCloseEvent* event) override
    {
        if (m_owner == nullptr || !m_owner->m_surroundings.gate.takesInput(*this)) {
            event->ignore();
            return;
        }
        event->accept();
        m_owner->personCloses();
    }

    // Return presses the button with the focus, else the window's default button.
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
            QWidget::keyPressEvent(event);
            return;
        }
        if (auto* const focused = qobject_cast<QPushButton*>(focusWidget())) {
            focused->click();
            return;
        }
        for (auto* const button : findChildren<QPushButton*>()) {
            if (button->isDefault() && button->isVisible() && button->isEnabled()) {
                button->click();
                return;
            }
        }
    }

private:
    // What a window manager adds to the window, or, before it does, may add.
    [[nodiscard]] QSize decoration() const { return QSize(kFrameWidth, kFrameHeight).expandedTo(frameSize() - size()); }

    // The room may become less, or another display's. Between two displays there may be none.
    void followDisplay()
    {
        disconnect(m_room);
        if (auto* const display = screen()) {
            m_room = connect(display, &QScreen::availableGeometryChanged, this, [this] { fit(); });
            fit();
        }
    }

    QtWindow* m_owner;
    QMetaObject::Connection m_followed;
    QMetaObject::Connection m_room;
};

QtWindow::QtWindow(std::shared_ptr<QtView> view, const QtSurroundings& surroundings,
                   std::function<void()> closedByPerson)
    : m_view(std::move(view))
    , m_surroundings(surroundings)
    , m_closedByPerson(std::move(closedByPerson))
    , m_frame(new Frame(*this, m_view->root()))
{}

QtWindow::~QtWindow()
{
    if (m_sheet) {
        endOwnSheet(0);
    }
    m_frame->hide();
    m_frame->forgetOwner();
    m_view->takeOffScreen();
    // Not at once: the window may go from inside one of its events.
    m_frame->deleteLater();
}

std::shared_ptr<platform::View> QtWindow::view() { return m_view; }

QWidget& QtWindow::widget() const { return *m_frame; }

void QtWindow::show()
{
    const auto* const screen = m_frame->screen();
    appear(screen == nullptr ? QRect() : screen->availableGeometry());
}

void QtWindow::appear(const QRect& over)
{
    m_frame->ensurePolished();
    m_frame->fit();
    if (m_lastShown == 0 && over.isValid()) {
        m_frame->move(over.center() - m_frame->rect().center());
    }
    m_lastShown = ++s_shows;
    m_frame->show();
    m_frame->raise();
    m_frame->activateWindow();
}

void QtWindow::close()
{
    if (m_sheetParent != nullptr) {
        m_sheetParent->endOwnSheet(0);
        return;
    }
    if (m_sheet) {
        endOwnSheet(0);
    }
    m_frame->hide();
}

bool QtWindow::isVisible() const { return m_frame->isVisible(); }

void QtWindow::beginSheet(const std::shared_ptr<platform::Window>& sheet, std::function<void(int)> completion)
{
    const auto window = std::dynamic_pointer_cast<QtWindow>(sheet);
    if (!window || window.get() == this || window->m_sheetParent != nullptr) {
        throw std::logic_error("This window cannot be shown as a sheet");
    }
    if (m_sheet) {
        throw std::logic_error("The window has a sheet already");
    }
    m_sheet = Sheet{window, std::move(completion), m_surroundings.gate.block(*m_frame)};
    window->m_sheetParent = this;
    auto& frame = *window->m_frame;
    frame.setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    frame.setWindowModality(Qt::WindowModal);
    frame.winId();
    m_frame->winId();
    frame.windowHandle()->setTransientParent(m_frame->windowHandle());
    window->appear(m_frame->geometry());
}

void QtWindow::endSheet(platform::Window& sheet, int returnCode)
{
    if (!m_sheet || m_sheet->window.get() != &sheet) {
        throw std::logic_error("This window is not the sheet");
    }
    endOwnSheet(returnCode);
}

void QtWindow::endOwnSheet(int returnCode)
{
    // The handler may open windows and drop this one: it runs when the action under way has returned.
    Sheet ended = std::move(*m_sheet);
    m_sheet.reset();
    ended.window->m_sheetParent = nullptr;
    ended.window->m_frame->hide();
    m_surroundings.mainQueue.async([completion = std::move(ended.completion), returnCode] {
        if (completion) {
            completion(returnCode);
        }
    });
    // The sheet's last reference may be this one, and the action that ended it one of its own.
    m_surroundings.mainQueue.async([window = std::move(ended.window)] {});
}

platform::Window* QtWindow::sheetParent() { return m_sheetParent; }

void QtWindow::personCloses()
{
    if (m_sheetParent != nullptr) {
        m_sheetParent->endOwnSheet(0);
        return;
    }
    m_frame->hide();
    m_closedByPerson();
}

} // namespace vorrano::qt

#include "platform/qt/ScreenArea.h"

#include "platform/qt/BusReports.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

namespace vorrano::qt {

namespace {

// What is seen beside a thing that was brought into sight, as Qt has it.
constexpr int kMargin = 50;

} // namespace

int heightNeeded(const QWidget& content, int width)
{
    const int least = content.minimumSizeHint().height();
    return content.hasHeightForWidth() ? std::max(least, content.heightForWidth(width)) : least;
}

ScreenArea::ScreenArea()
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    // It is no stop for Tab: what gets the focus in it is brought into sight.
    setFocusPolicy(Qt::NoFocus);
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget*, QWidget* now) {
        // What the pointer presses is in sight, and has to stay under it.
        const bool isPressed = QGuiApplication::mouseButtons() != Qt::NoButton;
        if (now != nullptr && !isPressed && widget() != nullptr && widget()->isAncestorOf(now)) {
            bringIntoSight(*now);
        }
    });
}

ScreenArea* ScreenArea::around(const QWidget& content)
{
    const auto* const viewport = content.parentWidget();
    return viewport == nullptr ? nullptr : dynamic_cast<ScreenArea*>(viewport->parentWidget());
}

void ScreenArea::showContent(QWidget& content)
{
    setWidget(&content);
    // The window's background, or the tab's, goes on being seen.
    content.setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    for (auto* const label : content.findChildren<QLabel*>()) {
        if (isAnnounced(*label)) {
            label->installEventFilter(this);
        }
    }
    content.show();
    updateGeometry();
}

void ScreenArea::bringIntoSight(QWidget& inner)
{
    ensureWidgetVisible(&inner);
    const int width = viewport()->width();
    const bool isWide = inner.width() > width;
    // From right to left Qt forgets here that the bar counts from the right.
    if (!isWide && (isLeftToRight() || !inner.visibleRegion().isEmpty())) {
        return;
    }
    const QRect place(inner.mapTo(widget(), QPoint()), inner.size());
    // Of what is wider than the area its beginning is shown, and not its middle.
    const int beginning = isLeftToRight() ? place.left() - kMargin : place.right() + kMargin - width;
    const int left = isWide ? beginning : place.center().x() - width / 2;
    auto& bar = *horizontalScrollBar();
    bar.setValue(isLeftToRight() ? left : bar.maximum() - left);
}

QSize ScreenArea::sizeHint() const { return widget() == nullptr ? QSize(0, 0) : widget()->sizeHint(); }

QSize ScreenArea::minimumSizeHint() const
{
    if (widget() == nullptr) {
        return {0, 0};
    }
    // Before it is laid out its own width means nothing, and a window that grew for a narrow one would not shrink
    // again.
    const int width = std::max(viewport()->width(), widget()->sizeHint().width());
    return {widget()->minimumSizeHint().width(), heightNeeded(*widget(), width)};
}

// A line that is read out and appears: not the scroll bars, nor what comes back with a minimised window.
bool ScreenArea::isNewLine(const QObject& watched, const QEvent& event) const
{
    return event.type() == QEvent::Show && !event.spontaneous() && watched.isWidgetType() && widget() != nullptr &&
           widget()->isAncestorOf(static_cast<const QWidget*>(&watched));
}

bool ScreenArea::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    } else if (isNewLine(*watched, *event)) {
        // It has its place only when the content is laid out anew.
        widget()->layout()->activate();
        bringIntoSight(*qobject_cast<QWidget*>(watched));
    }
    return QScrollArea::eventFilter(watched, event);
}

void ScreenArea::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        updateGeometry();
    }
}

} // namespace vorrano::qt

#pragma once

#include <QScrollArea>

namespace vorrano::qt {

// Holds a screen's content, and asks for as much room as the content needs. With less it scrolls, so that nothing is
// cut off a small display or at a large font. What gets the focus is brought into sight, and so is a label with the
// property `announced` when it appears.
//
// Lifetime: the content belongs to its view, which takes it away before it goes.
class ScreenArea final : public QScrollArea {
public:
    ScreenArea();

    // The area that shows this content, if one does.
    [[nodiscard]] static ScreenArea* around(const QWidget& content);

    void showContent(QWidget& content);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] bool isNewLine(const QObject& watched, const QEvent& event) const;
    void bringIntoSight(QWidget& inner);
};

// How high the content has to be at this width.
[[nodiscard]] int heightNeeded(const QWidget& content, int width);

} // namespace vorrano::qt

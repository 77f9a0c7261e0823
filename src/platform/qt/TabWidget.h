#pragma once

#include <QTabBar>
#include <QTabWidget>

#include <functional>

namespace vorrano::qt {

// A row of tabs that tells of a choice of the tab on screen too, of which Qt's own row says nothing: by click, by
// mnemonic and over the accessibility bus. (Choosing another tab is what currentChanged() tells.) Turning the mouse
// wheel over it chooses nothing, as each choice builds a screen. When the page that goes has the focus, the row gets
// it.
class TabBar final : public QTabBar {
public:
    explicit TabBar(QWidget* parent = nullptr);

    void onChosenAgain(std::function<void()> told);
    // Asked before a choice over the accessibility bus is made.
    void mayChoose(std::function<bool()> asked);

    // A choice over the accessibility bus.
    void choose(int index);

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    // Else it would go to the new page itself, which is nothing a person can use.
    void takeFocusFromPage();
    [[nodiscard]] bool choosesAgain(const QMouseEvent& event) const;
    void tellChosenAgain() const;

    std::function<void()> m_chosenAgain;
    std::function<bool()> m_mayChoose;
};

// The tab widget of the layouts.
class TabWidget final : public QTabWidget {
public:
    explicit TabWidget(QWidget* parent = nullptr);

    [[nodiscard]] TabBar& bar() const { return *m_bar; }

protected:
    bool event(QEvent* event) override;

private:
    TabBar* m_bar;
    // What the row needed when Qt last laid it out for an event.
    QSize m_roomOfBar;
};

} // namespace vorrano::qt

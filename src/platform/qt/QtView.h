#pragma once

#include "platform/Layouts.h"
#include "platform/qt/QtControl.h"

#include <QPointer>

#include <deque>
#include <map>
#include <memory>
#include <string>

namespace vorrano::qt {

class Dimmer;

// A screen's content made from a layout. Check boxes with the property `reveals` (names of password fields, with blanks
// between) show and hide what is typed there; they are the layout's own matter, and the logic does not see them.
// Widgets with the property `undimmed`, and spinners, stay as they are on a dimmed screen.
class QtView final : public platform::View {
public:
    // Takes over `root` with its controls.
    QtView(std::unique_ptr<QWidget> root, const QtSurroundings& surroundings);
    ~QtView() override;

    // LayoutError for a view that is none of this library's; null for null.
    [[nodiscard]] static std::shared_ptr<QtView> of(const std::shared_ptr<platform::View>& view);

    [[nodiscard]] platform::Button& button(std::string_view name) override;
    [[nodiscard]] platform::TextField& textField(std::string_view name) override;
    [[nodiscard]] platform::PopUpButton& popUpButton(std::string_view name) override;
    [[nodiscard]] platform::ProgressIndicator& progressIndicator(std::string_view name) override;
    [[nodiscard]] platform::Label& label(std::string_view name) override;
    [[nodiscard]] platform::TabView& tabView(std::string_view name) override;
    void setAlpha(double alpha) override;
    [[nodiscard]] double alpha() const override;

    [[nodiscard]] QWidget& root() const { return *m_root; }
    // Hides the content and takes it out of what holds it.
    void takeOffScreen();

private:
    [[nodiscard]] std::unique_ptr<platform::Control> controlOf(QWidget& widget) const;
    template <class ControlType>
    ControlType& find(std::string_view name);
    void connectReveals(QWidget& box);

    QtSurroundings m_surroundings;
    QWidget* m_root;
    Dimmer* m_dimmer = nullptr;
    double m_alpha = 1.0;
    // The spinners at the end, as they are above everything else.
    std::deque<QWidget*> m_undimmed;
    // All of the layout, asked for or not, as each keeps out what comes while it takes no input. A view that is put
    // into a page of this one has names of its own.
    std::map<std::string, std::unique_ptr<platform::Control>, std::less<>> m_controls;
};

} // namespace vorrano::qt

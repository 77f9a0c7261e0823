#include "platform/qt/QtView.h"

#include "platform/qt/Dimmer.h"
#include "platform/qt/QtControls.h"
#include "platform/qt/QtPopUpButton.h"
#include "platform/qt/QtTabView.h"
#include "platform/qt/QtTextField.h"
#include "platform/qt/ScreenArea.h"

#include <QCheckBox>
#include <QSignalBlocker>

#include <algorithm>

namespace vorrano::qt {

using platform::LayoutError;

QtView::QtView(std::unique_ptr<QWidget> root, const QtSurroundings& surroundings)
    : m_surroundings(surroundings)
    , m_root(root.release())
{
    for (auto* const widget : m_root->findChildren<QWidget*>()) {
        if (auto control = controlOf(*widget)) {
            m_controls.emplace(widget->objectName().toStdString(), std::move(control));
        }
        if (widget->property("reveals").isValid()) {
            connectReveals(*widget);
        }
        if (dynamic_cast<Spinner*>(widget) != nullptr) {
            m_spinners.push_back(widget);
        } else if (widget->property("undimmed").toBool()) {
            m_undimmed.push_back(widget);
        }
    }
}

QtView::~QtView()
{
    m_controls.clear();
    takeOffScreen();
    // Not at once: the view may go from inside an event of one of its widgets.
    m_root->deleteLater();
}

std::shared_ptr<QtView> QtView::of(const std::shared_ptr<platform::View>& view)
{
    auto ours = std::dynamic_pointer_cast<QtView>(view);
    if (view && !ours) {
        throw LayoutError("A view that was not made from a layout cannot be shown");
    }
    return ours;
}

std::unique_ptr<platform::Control> QtView::controlOf(QWidget& widget) const
{
    if (auto* const button = dynamic_cast<QAbstractButton*>(&widget)) {
        return std::make_unique<QtButton>(*button, m_surroundings);
    }
    if (auto* const field = dynamic_cast<QLineEdit*>(&widget)) {
        return std::make_unique<QtTextField>(*field, m_surroundings);
    }
    if (auto* const list = dynamic_cast<PickList*>(&widget)) {
        return std::make_unique<QtPopUpButton>(*list, m_surroundings);
    }
    if (auto* const spinner = dynamic_cast<Spinner*>(&widget)) {
        return std::make_unique<QtProgressIndicator>(*spinner, m_surroundings);
    }
    if (auto* const bar = dynamic_cast<QProgressBar*>(&widget)) {
        return std::make_unique<QtProgressBar>(*bar, m_surroundings);
    }
    if (auto* const label = dynamic_cast<QLabel*>(&widget)) {
        return std::make_unique<QtLabel>(*label, m_surroundings);
    }
    if (auto* const tabs = dynamic_cast<TabWidget*>(&widget)) {
        return std::make_unique<QtTabView>(*tabs, m_surroundings);
    }
    return nullptr;
}

template <class ControlType>
ControlType& QtView::find(std::string_view name)
{
    const auto found = m_controls.find(name);
    auto* const control = found == m_controls.end() ? nullptr : dynamic_cast<ControlType*>(found->second.get());
    if (control == nullptr) {
        throw LayoutError("The layout " + m_root->objectName().toStdString() + " has no such control named " +
                          std::string(name));
    }
    return *control;
}

platform::Button& QtView::button(std::string_view name) { return find<QtButton>(name); }

platform::TextField& QtView::textField(std::string_view name) { return find<QtTextField>(name); }

platform::PopUpButton& QtView::popUpButton(std::string_view name) { return find<QtPopUpButton>(name); }

platform::ProgressIndicator& QtView::progressIndicator(std::string_view name)
{
    return find<QtProgressIndicator>(name);
}

platform::ProgressBar& QtView::progressBar(std::string_view name) { return find<QtProgressBar>(name); }

platform::Label& QtView::label(std::string_view name) { return find<QtLabel>(name); }

platform::TabView& QtView::tabView(std::string_view name) { return find<QtTabView>(name); }

void QtView::setAlpha(double alpha)
{
    m_alpha = std::clamp(alpha, 0.0, 1.0);
    if (m_dimmer == nullptr) {
        m_dimmer = new Dimmer(*m_root, m_undimmed);
    }
    m_dimmer->setStrength(1.0 - m_alpha);
    for (auto* const spinner : m_spinners) {
        spinner->raise();
    }
}

double QtView::alpha() const { return m_alpha; }

void QtView::takeOffScreen()
{
    m_root->hide();
    if (auto* const area = ScreenArea::around(*m_root)) {
        area->takeWidget();
    }
    m_root->setParent(nullptr);
}

void QtView::connectReveals(QWidget& widget)
{
    auto* const box = dynamic_cast<QCheckBox*>(&widget);
    if (box == nullptr) {
        throw LayoutError("Only a check box can show what is typed");
    }
    for (const QString& name : box->property("reveals").toString().split(u' ')) {
        auto* const field = m_root->findChild<QLineEdit*>(name);
        if (field == nullptr) {
            throw LayoutError("There is no field " + name.toStdString() + " whose text can be shown");
        }
        const auto hidden = field->echoMode();
        QObject::connect(box, &QCheckBox::toggled, field,
                         [&gate = m_surroundings.gate, box, field, hidden](bool shown) {
                             if (gate.takesInput(*box)) {
                                 field->setEchoMode(shown ? QLineEdit::Normal : hidden);
                                 return;
                             }
                             const QSignalBlocker quiet(box);
                             box->setChecked(!shown);
                         });
    }
}

} // namespace vorrano::qt

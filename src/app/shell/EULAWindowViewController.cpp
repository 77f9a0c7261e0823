#include "app/shell/EULAWindowViewController.h"

#include "platform/ActionOf.h"
#include "platform/Layouts.h"
#include "platform/Platform.h"

namespace vorrano::shell {

namespace {
constexpr int kAccepted = 1;
constexpr int kCancelled = 0;
} // namespace

std::shared_ptr<EULAWindowViewController> EULAWindowViewController::create()
{
    auto controller = std::make_shared<EULAWindowViewController>();
    controller->connectActions();
    return controller;
}

EULAWindowViewController::EULAWindowViewController()
    : m_layouts(platform::Platform::current().layouts)
    , m_window(m_layouts.loadWindow("EULAWindowViewController"))
{}

void EULAWindowViewController::connectActions()
{
    const auto view = m_window->view();
    using Controller = EULAWindowViewController;
    view->button("buttonAccept").onPress(platform::actionOf(weak_from_this(), &Controller::buttonAccept));
    view->button("buttonCancel").onPress(platform::actionOf(weak_from_this(), &Controller::buttonCancel));
}

void EULAWindowViewController::buttonAccept(platform::Control&)
{
    endSheet(kAccepted);
    if (const auto keyWindow = m_layouts.keyWindow()) {
        keyWindow->close();
    }
}

void EULAWindowViewController::buttonCancel(platform::Control&) { endSheet(kCancelled); }

void EULAWindowViewController::endSheet(int returnCode)
{
    if (auto* const parent = m_window->sheetParent()) {
        parent->endSheet(*m_window, returnCode);
    }
}

} // namespace vorrano::shell

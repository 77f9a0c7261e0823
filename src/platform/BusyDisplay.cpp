#include "platform/BusyDisplay.h"

#include "platform/Layouts.h"

#include <string_view>

namespace vorrano::platform {

namespace {

constexpr std::string_view kSpinner = "loginProgressIndicator";
constexpr double kDimmed = 0.3;
constexpr double kOpaque = 1.0;

} // namespace

BusyDisplay::BusyDisplay(View& view)
    : m_view(view)
{}

void BusyDisplay::start()
{
    m_view.setAlpha(kDimmed);
    auto& spinner = m_view.progressIndicator(kSpinner);
    spinner.setHidden(false);
    spinner.startAnimation();
}

void BusyDisplay::stop()
{
    m_view.setAlpha(kOpaque);
    auto& spinner = m_view.progressIndicator(kSpinner);
    spinner.setHidden(true);
    spinner.stopAnimation();
}

} // namespace vorrano::platform

#pragma once

#include "platform/Alerts.h"

namespace vorrano::qt {

class QtGate;
class QtLayouts;

// Alerts as message boxes of Qt. The message stands in bold over the informative text; both can be selected and copied,
// and a screen reader hears the box's name, which is the message, and then the other text. A box stands over the key
// window.
class QtAlerts final : public platform::Alerts {
public:
    QtAlerts(QtGate& gate, const QtLayouts& layouts);

    int runModal(const platform::Alert& alert) override;

private:
    QtGate& m_gate;
    const QtLayouts& m_layouts;
};

} // namespace vorrano::qt

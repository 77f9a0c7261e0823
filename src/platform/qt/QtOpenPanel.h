#pragma once

#include "platform/OpenPanel.h"

namespace vorrano::qt {

class QtGate;
class QtLayouts;

// The desktop's file dialog, over the key window. It keeps no history: the program writes no files.
class QtOpenPanel final : public platform::OpenPanel {
public:
    QtOpenPanel(QtGate& gate, const QtLayouts& layouts);

    [[nodiscard]] std::vector<std::filesystem::path> runModal() override;

private:
    QtGate& m_gate;
    const QtLayouts& m_layouts;
};

} // namespace vorrano::qt

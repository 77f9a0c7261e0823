#pragma once

#include "platform/Layouts.h"
#include "platform/Subscription.h"
#include "platform/qt/QtView.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace vorrano::qt {

// A window of the program's own. It opens in the middle of its screen, a sheet in the middle of the window it is over.
class QtWindow final : public platform::Window, public std::enable_shared_from_this<QtWindow> {
public:
    // `closedByPerson` is told after the person has closed the window (not of a sheet).
    QtWindow(std::shared_ptr<QtView> view, const QtSurroundings& surroundings, std::function<void()> closedByPerson);
    ~QtWindow() override;

    [[nodiscard]] std::shared_ptr<platform::View> view() override;
    void show() override;
    void close() override;
    [[nodiscard]] bool isVisible() const override;
    void beginSheet(const std::shared_ptr<platform::Window>& sheet,
                    std::function<void(int returnCode)> completion) override;
    void endSheet(platform::Window& sheet, int returnCode) override;
    [[nodiscard]] platform::Window* sheetParent() override;

    [[nodiscard]] QWidget& widget() const;
    // Counts the shows of all windows: the higher, the later. 0: not shown yet.
    [[nodiscard]] unsigned long lastShown() const { return m_lastShown; }

private:
    class Frame;
    struct Sheet {
        std::shared_ptr<QtWindow> window;
        std::function<void(int)> completion;
        platform::Subscription blocked;
    };

    void personCloses();
    void appear(const QRect& over);
    void endOwnSheet(int returnCode);

    std::shared_ptr<QtView> m_view;
    const QtSurroundings m_surroundings;
    const std::function<void()> m_closedByPerson;
    Frame* m_frame;
    unsigned long m_lastShown = 0;
    std::optional<Sheet> m_sheet;
    QtWindow* m_sheetParent = nullptr;
};

} // namespace vorrano::qt

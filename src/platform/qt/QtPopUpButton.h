#pragma once

#include "platform/qt/PickList.h"
#include "platform/qt/QtControl.h"

namespace vorrano::qt {

// A pick list. What changes the choice while the list takes no input is undone.
class QtPopUpButton final : public QtControl<platform::PopUpButton, PickList> {
public:
    QtPopUpButton(PickList& list, const QtSurroundings& surroundings);
    ~QtPopUpButton() override;

    void removeAllItems() override;
    void addItems(const std::vector<std::string>& titles) override;
    void selectItem(const std::string& title) override;
    [[nodiscard]] std::optional<std::string> titleOfSelectedItem() const override;
    void onChoose(platform::Action action) override;

private:
    void indexChanged();
    void activated();
    void tellIfUntold();
    [[nodiscard]] int indexOf(const std::string& title) const;
    template <class Change>
    void changeMyself(Change&& change);

    platform::Action m_choose;
    // The last choice that counts.
    int m_index;
    bool m_ownChange = false;
    bool m_untold = false;
};

} // namespace vorrano::qt

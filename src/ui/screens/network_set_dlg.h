// The network settings: the network mode on one tab, the operators' list on the other. Dialog thread.
#pragma once

#include "stores/isp_list.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/skin_scroll_bar.h"

namespace varkel {

// The mode takes effect when the screen is left; the operators' list is changed at once. Its first row is the
// built-in operator, which holds when none of the list is chosen.
class CDlgNetworkSet final : public Dialog {
  public:
    explicit CDlgNetworkSet(ScreenContext& context);

    void OnSessionChanged() override;

    static constexpr int tabsId = 1100;
    static constexpr int modesId = 1101;
    static constexpr int listId = 1102;
    static constexpr int useId = 1103;
    static constexpr int newId = 1104;
    static constexpr int editId = 1105;
    static constexpr int exitId = 1075;

  private:
    void OnInitDialog() override;
    void OnDestroy() override;
    void OnPaint(Canvas& canvas) override;
    void OnVScroll(ScrollCode code, int position, CSkinScrollBar& bar) override;

    void ShowTab();
    void ShowMode();
    void Load();
    int RowInUse(const ISP_Struct& current) const;
    ListRow MakeRow(int row) const;
    void OnSelect();
    void ShowPlace();
    const ISP_Struct* OperatorOf(int row) const;
    void Use();
    void SetISPToReg(const ISP_Struct& isp);
    void Edit(bool isNew);
    void Close();

    ScreenContext& m_context;
    CSkinScrollBar* m_bar = nullptr;  // while the screen is open
    IspList::List m_operators;
    int m_inUse = -1;  // the row
    const Bitmap* m_picture = nullptr;
    const Bitmap* m_selectedPicture = nullptr;
};

}  // namespace varkel

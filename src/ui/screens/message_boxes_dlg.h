// Inbox, outbox and drafts, one at a time. Dialog thread.
#pragma once

#include "stores/message_box.h"
#include "ui/screens/list_screen.h"

namespace varkel {

class CMessageBoxesDlg final : public ListScreen {
  public:
    explicit CMessageBoxesDlg(ScreenContext& context);

    // The title tells of that many new messages; below 2 it is the usual one.
    void SetNewCount(int count);

  private:
    void OnInitDialog() override;
    void Load(int tab) override;
    std::optional<int> LoadAgain(int row) override;
    int RowCount() const override { return static_cast<int>(m_list.size()); }
    ListRow MakeRow(int row) override;
    void OnOpenRow(int row) override;
    void OnRowsShown() override;
    bool Changing() const override { return m_context.session.Messages().Editing().Changing(); }

    SmsBox Box() const { return static_cast<SmsBox>(Tab()); }
    MessageBox::List Read() const;
    std::string NameOf(const std::string& number);
    void Open();
    void Delete();
    void Write();
    void ShowTitle();

    MessageBox::List m_list;
    std::map<std::string, std::string> m_names;  // of the numbers that were seen
    int m_newCount = 0;

    static constexpr std::size_t mostNames = 256;
};

}  // namespace varkel

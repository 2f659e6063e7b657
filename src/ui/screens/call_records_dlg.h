// The call records: missed, received and dialled calls, the newest first; a number is called back, put into
// the phonebook, or its record deleted. Dialog thread.
#pragma once

#include <functional>
#include <memory>

#include "stores/call_list.h"
#include "ui/screens/list_screen.h"

namespace varkel {

class CCallRecordsDlg final : public ListScreen {
  public:
    explicit CCallRecordsDlg(ScreenContext& context);
    ~CCallRecordsDlg() override;

    static constexpr int callId = 1022;
    static constexpr int addId = 1061;

  private:
    void Load(int tab) override;
    std::optional<int> LoadAgain(int row) override;
    int RowCount() const override { return static_cast<int>(m_records.size()); }
    ListRow MakeRow(int row) override;
    void OnOpenRow(int row) override { CallBack(row); }
    void OnRowsShown() override;
    bool Changing() const override { return m_deleting; }

    CallKind Kind() const;
    const CallRecord* RecordAt(int row) const;
    // Missed calls do not count as new once they are shown.
    void TakeNews();
    void CallBack(int row);
    void AddToPhoneBook();
    void Delete();
    void OnDeleted(int tab, int row, StoreResult result);

    CallList::List m_records;  // the oldest first
    int m_newRows = 0;         // at the top, shown for the first time
    bool m_deleting = false;
    std::shared_ptr<CCallRecordsDlg*> m_self;  // a result that comes later finds nobody there
};

}  // namespace varkel

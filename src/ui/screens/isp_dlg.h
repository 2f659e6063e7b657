// One operator's access to packet data: a new one, or one of the list to be changed or deleted. Dialog
// thread.
#pragma once

#include <memory>
#include <optional>

#include "session/isp_text.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// It stays open with what was typed until that has been written to the list. Ends with Ok when the list is
// another one now.
class CDlgISP final : public Dialog {
  public:
    explicit CDlgISP(ScreenContext& context);
    ~CDlgISP() override;

    // Before it opens: the record that was seen, and where it stood in the list. Without it a new one is
    // made.
    void SetOperator(const ISP_Struct& seen, std::size_t index);
    // What was written; nothing when the operator was deleted.
    const std::optional<ISP_Struct>& Saved() const { return m_saved; }

    static constexpr int firstFieldId = 1101;  // the next ones follow
    static constexpr int saveId = 1;
    static constexpr int deleteId = 1120;
    static constexpr int exitId = 1075;

  private:
    void OnInitDialog() override;

    IspText Typed() const;
    void Save();
    void Delete();
    void Leave();
    void Wait(bool wait);
    void OnWritten(StoreResult result, const std::optional<ISP_Struct>& written);

    ScreenContext& m_context;
    std::optional<ISP_Struct> m_seen;
    std::size_t m_index = 0;
    std::optional<ISP_Struct> m_saved;
    IspText m_before;                  // as it was when the dialog opened
    std::shared_ptr<CDlgISP*> m_self;  // what the list answers finds nobody there afterwards
};

}  // namespace varkel

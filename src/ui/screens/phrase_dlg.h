// Eight phrases, one of which can be chosen. Dialog thread.
#pragma once

#include <string>

#include "ui/toolkit/dialog.h"

namespace varkel {

class CPhraseDlg final : public Dialog {
  public:
    explicit CPhraseDlg(Desktop& desktop);

    // Holds after DoModal has returned Ok.
    const std::string& Phrase() const { return m_phrase; }

  private:
    std::string m_phrase;
};

}  // namespace varkel

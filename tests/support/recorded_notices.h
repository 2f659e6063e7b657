// Message boxes that are written down and dismissed at once, or stay until they are closed.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/guarded.h"
#include "platform/notices.h"

namespace varkel::test {

class RecordedNotices final : public Notices {
  public:
    void ShowMessageBox(std::string_view text, std::string_view caption) override { Add(text, caption); }

    void MessageBox(std::string_view text, std::string_view caption, Event* closed) override {
        Add(text, caption);
        if (nobodyDismisses && closed) closed->Wait(infiniteTicks);
    }

    // "caption|text" of each box.
    std::vector<std::string> Boxes() const { return m_boxes.Get(); }
    void Forget() { m_boxes.Set({}); }

    std::atomic<bool> nobodyDismisses = false;

  private:
    void Add(std::string_view text, std::string_view caption) {
        m_boxes.With([&](auto& boxes) { boxes.push_back(std::string(caption) + "|" + std::string(text)); });
    }

    Guarded<std::vector<std::string>> m_boxes;
};

}  // namespace varkel::test

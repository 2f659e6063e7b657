// Message boxes that are written down and dismissed at once, or stay until they are closed.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

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
    std::vector<std::string> Boxes() {
        std::lock_guard lock(m_mutex);
        return m_boxes;
    }

    void Forget() {
        std::lock_guard lock(m_mutex);
        m_boxes.clear();
    }

    std::atomic<bool> nobodyDismisses = false;

  private:
    void Add(std::string_view text, std::string_view caption) {
        std::lock_guard lock(m_mutex);
        m_boxes.push_back(std::string(caption) + "|" + std::string(text));
    }

    std::mutex m_mutex;
    std::vector<std::string> m_boxes;
};

}  // namespace varkel::test

// Plain message boxes, shown for any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/guarded.h"
#include "platform/notices.h"
#include "platform/runtime.h"
#include "ui/toolkit/desktop.h"

namespace varkel {

// Made and destroyed on the dialog thread.
class NoticeBoxes final : public Notices {
  public:
    NoticeBoxes(Runtime& runtime, Desktop& desktop);
    // No thread may still be inside MessageBox: DismissAll, and the end of those threads, come before.
    ~NoticeBoxes() override;

    void ShowMessageBox(std::string_view text, std::string_view caption) override;
    void MessageBox(std::string_view text, std::string_view caption, Event* closed) override;
    // As if the user had dismissed them all. Dialog thread.
    void DismissAll();

    // More boxes than this at a time are not shown, and count as dismissed.
    static constexpr std::size_t mostBoxes = 8;

  private:
    class Box;
    // A box that is asked for, or on the screen.
    struct Question {
        std::string text;
        std::string caption;
        std::shared_ptr<Event> dismissed;
        std::unique_ptr<Box> box;  // dialog thread only
    };
    using QuestionPtr = std::shared_ptr<Question>;

    // Null when such a box is there already.
    QuestionPtr Ask(std::string_view text, std::string_view caption);
    void Open(const QuestionPtr& question);
    // The question is answered, whether its box is still on the screen or not.
    void Dismiss(const QuestionPtr& question);
    void DismissSoon(const QuestionPtr& question);
    bool IsOpen(const QuestionPtr& question);

    Runtime& m_runtime;
    Desktop& m_desktop;
    Guarded<std::vector<QuestionPtr>> m_questions;
    std::shared_ptr<NoticeBoxes*> m_self;  // posted work finds nobody there afterwards
};

}  // namespace varkel

#include "ui/toolkit/message_box.h"

#include <algorithm>

#include "ui/toolkit/dialog.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr Ticks boxLook = 100;  // how soon a box sees that it is to close
constexpr int textId = 11;

constexpr TextSpec texts[] = {
    {textId,
     {20, 70, 480, 110},
     "",
     TextRole::Body,
     TextFormat::Center | TextFormat::VCenter | TextFormat::WordBreak},
};

constexpr ButtonSpec buttons[] = {
    {idOk, {170, 188, 180, 80}, "BoxOk"},
};

constexpr DialogSpec spec{
    .rect = {140, 100, 520, 280},
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\",
    .background = "BoxBack",
    .texts = texts,
    .buttons = buttons,
    .escapeClicks = idOk,
};

}  // namespace

class NoticeBoxes::Box final : public Dialog {
  public:
    Box(Desktop& desktop, const Question& question)
        : Dialog(desktop, spec),
          m_text(question.caption.empty() ? question.text : question.caption + "\n" + question.text) {}

  private:
    void OnInitDialog() override {
        auto& text = Get<StaticText>(textId);
        text.SetWindowText(m_text);
        text.SetTextColor(GetDesktop().Colors().text);
    }

    std::string m_text;
};

NoticeBoxes::NoticeBoxes(Runtime& runtime, Desktop& desktop)
    : m_runtime(runtime), m_desktop(desktop), m_self(std::make_shared<NoticeBoxes*>(this)) {
    m_desktop.hooks.messageBox = [this](std::string_view text) { ShowMessageBox(text, ""); };
}

NoticeBoxes::~NoticeBoxes() {
    m_desktop.hooks.messageBox = nullptr;
    *m_self = nullptr;
    DismissAll();
}

NoticeBoxes::QuestionPtr NoticeBoxes::Ask(std::string_view text, std::string_view caption) {
    auto question = std::make_shared<Question>();
    question->text = text;
    question->caption = caption;
    question->dismissed = m_runtime.CreateEvent(EventReset::Manual);
    const bool asked = m_questions.With([&question](std::vector<QuestionPtr>& questions) {
        const auto same = [&question](const QuestionPtr& other) { return other->text == question->text; };
        const bool refused =
            questions.size() >= mostBoxes || std::any_of(questions.begin(), questions.end(), same);
        if (!refused) questions.push_back(question);
        return !refused;
    });
    if (!asked) return nullptr;
    const bool posted = m_desktop.Loop().Post([self = m_self, question] {
        if (*self) (*self)->Open(question);
    });
    if (posted) return question;
    m_questions.With([&question](std::vector<QuestionPtr>& questions) { std::erase(questions, question); });
    return nullptr;
}

bool NoticeBoxes::IsOpen(const QuestionPtr& question) {
    return m_questions.With([&question](const std::vector<QuestionPtr>& questions) {
        return std::find(questions.begin(), questions.end(), question) != questions.end();
    });
}

void NoticeBoxes::Open(const QuestionPtr& question) {
    if (!IsOpen(question)) return;
    question->box = std::make_unique<Box>(m_desktop, *question);
    question->box->Show([this, question](DialogResult) { Dismiss(question); });
}

void NoticeBoxes::Dismiss(const QuestionPtr& question) {
    m_questions.With([&question](std::vector<QuestionPtr>& questions) { std::erase(questions, question); });
    question->box.reset();
    question->dismissed->Set();
}

void NoticeBoxes::DismissSoon(const QuestionPtr& question) {
    m_desktop.Loop().Post([self = m_self, question] {
        if (*self) (*self)->Dismiss(question);
    });
}

void NoticeBoxes::DismissAll() {
    const std::vector<QuestionPtr> open = m_questions.Get();
    for (const QuestionPtr& question : open) {
        m_questions.With([&question](std::vector<QuestionPtr>& all) { std::erase(all, question); });
        question->box.reset();
        question->dismissed->Set();
    }
}

void NoticeBoxes::ShowMessageBox(std::string_view text, std::string_view caption) {
    Ask(text, caption);
}

void NoticeBoxes::MessageBox(std::string_view text, std::string_view caption, Event* closed) {
    const QuestionPtr question = Ask(text, caption);
    if (!question) return;
    const auto isClosed = [closed] { return closed && closed->Wait(0) == WaitResult::Object0; };
    if (m_desktop.Loop().OnDialogThread()) {
        Timers look(m_desktop.Loop(), m_desktop.Numbers());
        if (closed) look.Set(1, boxLook, [] {});
        m_desktop.Loop().Run([&] { return !IsOpen(question) || isClosed(); });
    } else {
        while (question->dismissed->Wait(closed ? boxLook : infiniteTicks) != WaitResult::Object0 &&
               !isClosed()) {
        }
    }
    if (IsOpen(question)) DismissSoon(question);
}

}  // namespace varkel

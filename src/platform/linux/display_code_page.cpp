#include "platform/linux/display_code_page.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/linux/iconv_code_page.h"

namespace varkel {

std::unique_ptr<CodePage> CodePageOf(std::string_view language, const std::string& systemCodePage,
                                     const ProblemSink& onProblem) {
    struct Own {
        std::string_view language;
        const char* page;
    };
    static constexpr Own owns[] = {{"russian", "CP1251"}, {"portugal", "CP1252"}, {"arabic", "CP1256"}};
    const auto* const own = std::find_if(std::begin(owns), std::end(owns),
                                         [language](const Own& entry) { return entry.language == language; });
    const std::string name = own == std::end(owns) ? systemCodePage : own->page;
    if (auto page = IconvCodePage::Create(name)) return page;
    Report(onProblem, "there is no code page " + name + "; texts are kept in ASCII");
    return IconvCodePage::Create("ASCII");
}

DisplayCodePage::DisplayCodePage(const Language& language, std::string systemCodePage, ProblemSink onProblem)
    : m_language(language), m_systemCodePage(std::move(systemCodePage)), m_onProblem(std::move(onProblem)) {
    Current();
}

const CodePage& DisplayCodePage::Current() const {
    const std::string language = m_language.GetLanguage();
    return m_pages.With([&](auto& pages) -> const CodePage& {
        std::unique_ptr<CodePage>& page = pages[language];
        if (!page) page = CodePageOf(language, m_systemCodePage, m_onProblem);
        return *page;
    });
}

}  // namespace varkel

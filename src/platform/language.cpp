#include "platform/language.h"

namespace varkel {

namespace {

constexpr std::size_t largestLanguageFile = 256 * 1024;

std::string WithLineFeeds(std::string text) {
    for (std::size_t at = 0; (at = text.find("\\n", at)) != std::string::npos; ++at)
        text.replace(at, 2, "\n");
    return text;
}

}  // namespace

std::string LanguageSection::LoadString(std::string_view key) const {
    return DispRightToLeft(WithLineFeeds(m_texts->Get(m_section, key, key)));
}

Language::Language(UnitFiles& files, std::string_view name) : m_files(files) {
    if (!Change(name)) m_current.Set({std::string(name), std::make_shared<KeyFile>()});
}

bool Language::Change(std::string_view name) {
    const auto text = m_files.ReadWhole("\\ResidentFlash2\\bin\\Language\\" + std::string(name) + ".txt",
                                        largestLanguageFile);
    if (!text) return false;
    m_current.Set({std::string(name), std::make_shared<KeyFile>(KeyFile::Parse(*text))});
    return true;
}

std::string Language::Embedded(std::string_view text) const {
    constexpr std::string_view isolate = "\u2068";
    constexpr std::string_view endIsolate = "\u2069";
    if (!ReadsRightToLeft()) return std::string(text);
    return std::string(isolate).append(text).append(endIsolate);
}

}  // namespace varkel

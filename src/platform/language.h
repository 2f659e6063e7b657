// The head unit's language library: visible texts by key.
#pragma once

#include <string>
#include <string_view>

#include "platform/key_file.h"
#include "platform/unit_files.h"

namespace varkel {

// A batch of look-ups in one section, from BeginLoadString to the end of the object's life.
class LanguageSection {
  public:
    LanguageSection(const KeyFile& texts, std::string_view section) : m_texts(texts), m_section(section) {}
    // The text in its display form; an unknown key is shown as it is, so that a missing text can be seen. An
    // unknown section has no texts.
    std::string LoadString(std::string_view key) const;

  private:
    const KeyFile& m_texts;
    std::string m_section;
};

// The texts of one language, read once; "\n" in a text stands for a line feed. Any thread.
class Language {
  public:
    // Reads "\ResidentFlash2\bin\Language\<name>.txt"; without that file every key stands for itself.
    Language(UnitFiles& files, std::string_view name);

    // "english", "chinese", "tchinese", "russian", "portugal" or "arabic".
    const std::string& GetLanguage() const { return m_name; }
    bool ReadsRightToLeft() const { return m_name == "arabic"; }
    LanguageSection BeginLoadString(std::string_view section) const { return {m_texts, section}; }
    // One text of the section "GPRS", where nearly all stand.
    std::string LoadString(std::string_view key) const { return BeginLoadString("GPRS").LoadString(key); }

    // A name or number as a part of a sentence, where it keeps its own direction.
    std::string Embedded(std::string_view text) const;

  private:
    std::string m_name;
    KeyFile m_texts;
};

// The display form of a text. The text renderer orders right-to-left scripts itself, so it is the text.
inline std::string DispRightToLeft(std::string text) {
    return text;
}

}  // namespace varkel

// The head unit's language library: visible texts by key.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "platform/guarded.h"
#include "platform/key_file.h"
#include "platform/unit_files.h"

namespace varkel {

// The languages that there are texts for.
inline constexpr std::array<std::string_view, 6> languageNames{"english", "chinese",  "tchinese",
                                                               "russian", "portugal", "arabic"};

// A batch of look-ups in one section, from BeginLoadString to the end of the object's life: all in the
// language that was current when it began.
class LanguageSection {
  public:
    LanguageSection(std::shared_ptr<const KeyFile> texts, std::string_view section)
        : m_texts(std::move(texts)), m_section(section) {}
    // The text in its display form; an unknown key is shown as it is, so that a missing text can be seen. An
    // unknown section has no texts.
    std::string LoadString(std::string_view key) const;

  private:
    std::shared_ptr<const KeyFile> m_texts;
    std::string m_section;
};

// The current language and its texts; "\n" in a text stands for a line feed. Any thread.
class Language {
  public:
    // As Change() does, but without the file every key stands for itself. `files` outlives the object.
    Language(UnitFiles& files, std::string_view name);

    // Makes `name` the current language and reads its texts, "\ResidentFlash2\bin\Language\<name>.txt". False
    // when there is no such file; then everything stays as it is.
    [[nodiscard]] bool Change(std::string_view name);

    // One of `languageNames`.
    std::string GetLanguage() const { return m_current.Get().name; }
    bool ReadsRightToLeft() const { return GetLanguage() == "arabic"; }
    LanguageSection BeginLoadString(std::string_view section) const {
        return {m_current.Get().texts, section};
    }
    // One text of the section "GPRS", where nearly all stand.
    std::string LoadString(std::string_view key) const { return BeginLoadString("GPRS").LoadString(key); }

    // A name or number as a part of a sentence, where it keeps its own direction.
    std::string Embedded(std::string_view text) const;

  private:
    struct Current {
        std::string name;
        std::shared_ptr<const KeyFile> texts;
    };

    UnitFiles& m_files;
    Guarded<Current> m_current;
};

// The display form of a text. The text renderer orders right-to-left scripts itself, so it is the text.
inline std::string DispRightToLeft(std::string text) {
    return text;
}

}  // namespace varkel

// The code page in which texts are kept and shown.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/code_page.h"
#include "platform/guarded.h"
#include "platform/language.h"
#include "platform/linux/problem_sink.h"

namespace varkel {

// The page of a language: of "russian", "portugal" and "arabic" their own, of any other the one of the
// system. A page that cannot be had is reported, and ASCII stands in for it.
std::unique_ptr<CodePage> CodePageOf(std::string_view language, const std::string& systemCodePage,
                                     const ProblemSink& onProblem);

// The page of the current language. The page of a language is made when it is first needed, and kept.
class DisplayCodePage final : public CodePage {
  public:
    // `language` outlives the object; `onProblem` hears it on the thread that converts.
    DisplayCodePage(const Language& language, std::string systemCodePage, ProblemSink onProblem);

    std::size_t MultiByteToWideChar(std::string_view narrow, std::span<char16_t> wide) const override {
        return Current().MultiByteToWideChar(narrow, wide);
    }
    std::size_t WideCharToMultiByte(std::u16string_view wide, std::span<char> narrow) const override {
        return Current().WideCharToMultiByte(wide, narrow);
    }
    std::size_t CharNext(std::string_view narrow) const override { return Current().CharNext(narrow); }

  private:
    const CodePage& Current() const;

    const Language& m_language;
    const std::string m_systemCodePage;
    const ProblemSink m_onProblem;
    mutable Guarded<std::map<std::string, std::unique_ptr<CodePage>>> m_pages;  // by language
};

}  // namespace varkel

// The code pages of the tests, each read once.
#pragma once

#include <cassert>
#include <map>
#include <memory>
#include <string>

#include "platform/linux/iconv_code_page.h"

namespace varkel::test {

// Not from two threads at a time.
inline const CodePage& CodePageNamed(const std::string& name) {
    static std::map<std::string, std::unique_ptr<CodePage>> pages;
    auto& page = pages[name];
    if (!page) page = IconvCodePage::Create(name);
    assert(page);
    return *page;
}

}  // namespace varkel::test

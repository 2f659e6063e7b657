#include "ui/toolkit/fonts.h"

#include <algorithm>

namespace varkel {

namespace {

constexpr int bold = 700;

// The steps in which a text shrinks to fit its box.
constexpr int heights[] = {40, 36, 32, 28, 24, smallestFont};

}  // namespace

LogFont DialogFont(int height) {
    return {"SimSun & NSimSun", height, bold};
}

LogFont HeiFont(int height) {
    return {"黑体", height, bold};
}

TextStyle StyleOf(TextRole role, const SkinColors& colors) {
    const auto configured = [](std::uint32_t height, std::uint32_t weight) {
        // The registry is anybody's: no font is higher than a row of the screen.
        return LogFont{"SimSun & NSimSun", static_cast<int>(std::min<std::uint32_t>(height, 100)),
                       static_cast<int>(std::min<std::uint32_t>(weight, 1000))};
    };
    switch (role) {
        case TextRole::Title:
            return {configured(colors.subTitleSize, colors.subTitleWeight), colors.subTitle};
        case TextRole::Body: return {DialogFont(32), colors.subMenu};
        case TextRole::Secondary: return {DialogFont(24), colors.subMenu};
        case TextRole::Button:
            return {configured(colors.buttonFontSize, colors.buttonFontWeight), colors.buttonFont};
        case TextRole::Key: return {HeiFont(30), colors.buttonFont};
        case TextRole::Caller: return {HeiFont(22), colors.subMenu};
        case TextRole::CallerName: return {HeiFont(40), colors.subMenu};
        case TextRole::Digits: return {HeiFont(50), colors.subMenu};
    }
    return {};
}

LogFont FittingFont(Graphics& graphics, std::string_view text, const LogFont& font, Size box, bool breaks) {
    LogFont fitting = font;
    const auto fits = [&] {
        const Size needed = graphics.MeasureText(text, fitting, breaks ? box.width : 0);
        return needed.width <= box.width && (!breaks || needed.height <= box.height);
    };
    if (text.empty() || fits()) return fitting;
    for (const int height : heights) {
        if (height >= font.height) continue;
        fitting.height = height;
        if (fits()) break;
    }
    return fitting;
}

}  // namespace varkel

#include "simulator/result_codes.h"

#include <span>

namespace varkel::sim {

namespace {

struct CodeText {
    int code;
    std::string_view text;
};

constexpr CodeText cmeTexts[] = {
    {3, "operation not allowed"},
    {4, "operation not supported"},
    {5, "PH-SIM PIN required"},
    {10, "SIM not inserted"},
    {11, "SIM PIN required"},
    {12, "SIM PUK required"},
    {13, "SIM failure"},
    {14, "SIM busy"},
    {16, "incorrect password"},
    {17, "SIM PIN2 required"},
    {18, "SIM PUK2 required"},
    {20, "memory full"},
    {21, "invalid index"},
    {24, "text string too long"},
    {25, "invalid characters in text string"},
    {26, "dial string too long"},
    {27, "invalid characters in dial string"},
    {30, "no network service"},
    {40, "network personalization PIN required"},
    {50, "incorrect parameters"},
};

constexpr CodeText cmsTexts[] = {
    {302, "operation not allowed"}, {303, "operation not supported"}, {304, "invalid PDU mode parameter"},
    {321, "invalid memory index"},  {331, "no network service"},      {332, "network timeout"},
};

std::string ErrorText(std::string_view kind, std::span<const CodeText> texts, int code, int errors) {
    if (errors == 0) return "ERROR";
    const std::string prefix = "+" + std::string(kind) + " ERROR: ";
    if (errors == 2) {
        for (const CodeText& entry : texts) {
            if (entry.code == code) return prefix + std::string(entry.text);
        }
    }
    return prefix + std::to_string(code);
}

}  // namespace

std::string FinalResult(const Outcome& outcome, int errors) {
    switch (outcome.kind) {
        case Outcome::Kind::Ok: return "OK";
        case Outcome::Kind::Cme: return ErrorText("CME", cmeTexts, outcome.code, errors);
        case Outcome::Kind::Cms: return ErrorText("CMS", cmsTexts, outcome.code, errors);
        case Outcome::Kind::NoCarrier: return "NO CARRIER";
        case Outcome::Kind::Error:
        case Outcome::Kind::Prompt:
        case Outcome::Kind::Silent:
        case Outcome::Kind::Later: break;
    }
    return "ERROR";
}

}  // namespace varkel::sim

#include "stores/call_list.h"

namespace varkel {

namespace {

std::string_view PathOf(CallKind kind) {
    switch (kind) {
        case CallKind::Dialled: return "NandFlash\\System\\Phone\\dialcall.msm";
        case CallKind::Received: return "NandFlash\\System\\Phone\\receivecall.msm";
        case CallKind::Missed: break;
    }
    return "NandFlash\\System\\Phone\\missedcall.msm";
}

}  // namespace

CallList::CallList(UnitFiles& files, Log& log, CallKind kind) : m_file(files, log, {.path = PathOf(kind)}) {}

std::string CallList::NewestNumber() {
    const List list = FindCallRecord();
    const CallRecord* const newest = AtRow(list, 0);
    return newest ? std::string(newest->number.View()) : std::string();
}

}  // namespace varkel

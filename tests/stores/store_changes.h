// Every kind of change of the stores, with what it is to leave.
#pragma once

#include <functional>

#include "tests/stores/stores_fixture.h"

namespace varkel::test {

struct StoreChange {
    const char* what;
    const char* file;
    bool needsRoom;
    std::string after;
    std::function<StoreResult()> make;
};

template <class List>
std::string Edited(List list, std::size_t at, std::size_t removed, const List& added) {
    const auto place = list.begin() + static_cast<std::ptrdiff_t>(at);
    list.insert(list.erase(place, place + static_cast<std::ptrdiff_t>(removed)), added.begin(), added.end());
    return BytesOf(list);
}

// For screens that show the newest first.
inline StoreChange ChangeOfBox(MessageBox& box, unsigned kind, std::size_t at, int number) {
    const MessageBox::List list = box.FindSmsRecord();
    const char* const file = "InboxMs.msm";
    if (list.empty() || kind == 0) {
        const std::string bytes = Edited(list, list.size(), 0, {Message(number)});
        return {"append", file, true, bytes.substr(list.size() < SmsBoxCapacity ? 0 : sizeof(SmsRecord)),
                [&box, number] { return box.WriteSmsRecord(Message(number)); }};
    }
    at %= list.size();
    const std::size_t row = list.size() - 1 - at;
    if (kind == 1)
        return {"delete", file, false, Edited(list, at, 1, {}), [=, &box] { return box.Delete(list, row); }};
    SmsRecord read = list[at];
    read.Index = SmsState::Opened;
    if (kind == 2)
        return {"mark read", file, false, Edited(list, at, 1, {read}),
                [=, &box] { return box.MarkRead(list, row); }};
    return {"delete all", file, false, "", [&box] { return box.DeleteAll(); }};
}

inline StoreChange ChangeOfCalls(CallList& calls, unsigned kind, std::size_t at, int number) {
    const CallList::List list = calls.FindCallRecord();
    if (list.empty() || kind == 0)
        return {"append", "dialcall.msm", true, Edited(list, list.size(), 0, {Call(number)}),
                [&calls, number] { return calls.WriteCallRecord(Call(number)); }};
    at %= list.size();
    return {"delete", "dialcall.msm", false, Edited(list, at, 1, {}),
            [=, &calls] { return calls.Delete(list, list.size() - 1 - at); }};
}

// For screens in the order of the file.
template <class Store, class Record>
StoreChange ChangeInOrder(Store& store, const char* file, unsigned kind, std::size_t at, const Record& record,
                          bool addsInFront) {
    const std::vector<Record> list = store.Load();
    if (list.empty() || kind == 0)
        return {"add", file, true, Edited(list, addsInFront ? 0 : list.size(), 0, {record}),
                [&store, record] { return store.Add(record); }};
    at %= list.size();
    if (kind == 1)
        return {"change", file, true, Edited(list, at, 1, {record}),
                [=, &store] { return store.Change(list[at], at, record); }};
    return {"delete", file, false, Edited(list, at, 1, {}),
            [=, &store] { return store.Delete(list[at], at); }};
}

// A change of a kind below `changeKinds`, with the record at `at` of its list, or a new one.
constexpr unsigned changeKinds = 12;
inline StoreChange ChangeOf(StoresOnDisk& stores, unsigned kind, std::size_t at, int number) {
    if (kind < 4) return ChangeOfBox(stores.boxes.inbox, kind, at, number);
    if (kind < 6) return ChangeOfCalls(stores.calls.dialled, kind - 4, at, number);
    if (kind < 9) return ChangeInOrder(stores.phones, "phonebook.msm", kind - 6, at, Phone(number), false);
    return ChangeInOrder(stores.isps, "ISPDest.dat", kind - 9, at, Isp(number), true);
}

}  // namespace varkel::test

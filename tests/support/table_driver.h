// A driver library whose answers a test sets, and which writes down what it is told.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/kovex_drv_api.h"

namespace varkel::test {

class TableDriver final : public KovexDrvApi {
  public:
    // Answers of the getters; one that is not in the table fails.
    void SetAnswer(DrvFunction function, int value) {
        std::lock_guard lock(m_mutex);
        m_answers[function] = value;
    }

    // "Name value" of each setter and action.
    std::vector<std::string> Calls() {
        std::lock_guard lock(m_mutex);
        return m_calls;
    }

  private:
    bool Call(DrvFunction function, int& value) override {
        std::lock_guard lock(m_mutex);
        const DrvEntry& entry = drvTable[static_cast<std::size_t>(function)];
        if (entry.kind == DrvKind::Get) {
            const auto found = m_answers.find(function);
            if (found == m_answers.end()) return false;
            value = found->second;
            return true;
        }
        m_calls.push_back(std::string(entry.name) + " " + std::to_string(value));
        return true;
    }

    std::mutex m_mutex;
    std::map<DrvFunction, int> m_answers;
    std::vector<std::string> m_calls;
};

}  // namespace varkel::test

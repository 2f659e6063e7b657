// The head unit's driver library made of files, commands and constants, for a board without one.
//
// Each line of the unit file's section [driver] names a function of drvTable and says how it is carried out:
//
//     Get3GPower  = file:/sys/class/gpio/gpio17/value     a getter reads the first number in the file, a
//     Set3GPower  = file:/sys/class/gpio/gpio17/value     setter writes its argument, an action 1
//     SetTmcPower = command:/usr/bin/modem-power "%d"     %d is the argument; a getter takes the first number
//                                                         that the command prints; its exit code must be 0
//     Get3GSimStatus = constant:1                         the value; setters and actions do nothing
//
// A command runs without a shell and is killed after a second. Where nothing is said:
//
//     Get3GPower 0, Get3GSimStatus 1, GetSDCardStatus 0; GetUsbHostStatus 1 while the modem's tty exists;
//     GetGprsHpSpkStatus what was last set, at first 0; GetCurrentPowerValue and GetMainHandle fail;
//     RestartMachine only reports; every other setter and action succeeds and does nothing.
#pragma once

#include <array>
#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "platform/key_file.h"
#include "platform/kovex_drv_api.h"
#include "platform/linux/problem_sink.h"

namespace varkel {

enum class BoardSource { Default, File, Command, Constant };

struct BoardAnswer {
    BoardSource source = BoardSource::Default;
    std::string path;
    std::vector<std::string> command;
    int constant = 0;
};

// How each function is carried out, in the order of drvTable.
struct BoardAnswers {
    std::array<BoardAnswer, drvTable.size()> answers;
    // "line 3: ..." for each line that cannot be followed; its function keeps the default.
    std::vector<std::string> errors;

    // Reads the entries of the section "driver".
    static BoardAnswers Parse(const KeyFile& unitFile);
};

class BoardKovexDrv final : public KovexDrvApi {
  public:
    // `modemTty` is the tty of COM7:. `onProblem` hears of a file or command that fails, once until it works
    // again, and of RestartMachine.
    BoardKovexDrv(BoardAnswers answers, std::string modemTty, ProblemSink onProblem);

  protected:
    bool Call(DrvFunction function, int& value) override;

  private:
    bool CallDefault(DrvFunction function, DrvKind kind, int& value);

    const BoardAnswers m_answers;
    const std::string m_modemTty;
    const ProblemSink m_onProblem;
    std::atomic<int> m_speaker = 0;
    std::array<std::atomic<bool>, drvTable.size()> m_failing{};
};

}  // namespace varkel

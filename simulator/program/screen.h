// Standard output and error, shared by the hosted program, whose bytes pass as they are, and the simulator,
// whose lines are marked.
#pragma once

#include <string_view>

namespace varkel::sim {

class Screen {
  public:
    // Bytes that the program wrote to its descriptor 1 or 2.
    void Program(int descriptor, std::string_view bytes);
    // "sim| " in front of each line of the text.
    void Say(std::string_view text);

  private:
    bool m_midLine = false;
};

}  // namespace varkel::sim

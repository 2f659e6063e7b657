// The user's touches and keys as SDL tells them.
#pragma once

#include <SDL_events.h>
#include <cstdint>

#include "platform/linux/display_input.h"

namespace varkel {

// One touch at a time: the first finger or the pointer's left button, whichever came first, until it is
// lifted. Display thread.
class SdlInput {
  public:
    explicit SdlInput(DisplayInput& input) : m_input(input) {}

    // Where the screen begins in a window of that size.
    void Place(Size window, Point origin);
    // Events that are no input are left alone.
    void Handle(const SDL_Event& event);

  private:
    enum class Contact : std::uint8_t { None, Pointer, Finger };

    void HandleKey(const SDL_Keysym& key);
    void HandleFinger(const SDL_TouchFingerEvent& event);
    // The window is left or loses the input: what is pressed ends outside the screen.
    void Leave();
    void Put(TouchAction action, Point at);
    Point OnScreen(int x, int y) const { return {x - m_origin.x, y - m_origin.y}; }

    DisplayInput& m_input;
    Size m_window = Display::screen;
    Point m_origin;
    Contact m_contact = Contact::None;
    SDL_FingerID m_finger = 0;
};

}  // namespace varkel

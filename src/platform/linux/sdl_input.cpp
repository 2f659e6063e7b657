#include "platform/linux/sdl_input.h"

#include <cmath>

namespace varkel {

namespace {

constexpr Point outside{-1, -1};

struct KeyName {
    SDL_Keycode sdl;
    KeyCode code;
};
constexpr KeyName keyNames[] = {
    {SDLK_BACKSPACE, KeyCode::Back},  {SDLK_TAB, KeyCode::Tab},           {SDLK_RETURN, KeyCode::Return},
    {SDLK_KP_ENTER, KeyCode::Return}, {SDLK_ESCAPE, KeyCode::Escape},     {SDLK_AC_BACK, KeyCode::Escape},
    {SDLK_PAGEUP, KeyCode::PageUp},   {SDLK_PAGEDOWN, KeyCode::PageDown}, {SDLK_END, KeyCode::End},
    {SDLK_HOME, KeyCode::Home},       {SDLK_LEFT, KeyCode::Left},         {SDLK_UP, KeyCode::Up},
    {SDLK_RIGHT, KeyCode::Right},     {SDLK_DOWN, KeyCode::Down},         {SDLK_DELETE, KeyCode::Delete},
    {SDLK_SLEEP, KeyCode::Sleep},
};

bool EndsTouch(Uint8 windowEvent) {
    return windowEvent == SDL_WINDOWEVENT_LEAVE || windowEvent == SDL_WINDOWEVENT_FOCUS_LOST ||
           windowEvent == SDL_WINDOWEVENT_HIDDEN || windowEvent == SDL_WINDOWEVENT_MINIMIZED;
}

}  // namespace

void SdlInput::Place(Size window, Point origin) {
    m_window = window;
    m_origin = origin;
}

void SdlInput::Handle(const SDL_Event& event) {
    switch (event.type) {
        case SDL_MOUSEMOTION:
            if (event.motion.which == SDL_TOUCH_MOUSEID || m_contact == Contact::Finger) return;
            return Put(TouchAction::Move, OnScreen(event.motion.x, event.motion.y));
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.which == SDL_TOUCH_MOUSEID || event.button.button != SDL_BUTTON_LEFT) return;
            if (m_contact != Contact::None) return;
            m_contact = Contact::Pointer;
            return Put(TouchAction::Down, OnScreen(event.button.x, event.button.y));
        case SDL_MOUSEBUTTONUP:
            if (m_contact != Contact::Pointer || event.button.button != SDL_BUTTON_LEFT) return;
            m_contact = Contact::None;
            return Put(TouchAction::Up, OnScreen(event.button.x, event.button.y));
        case SDL_FINGERDOWN:
        case SDL_FINGERMOTION:
        case SDL_FINGERUP: return HandleFinger(event.tfinger);
        case SDL_KEYDOWN: return HandleKey(event.key.keysym);
        case SDL_TEXTINPUT: return m_input.Put(KeyEvent{KeyCode::None, event.text.text});
        case SDL_WINDOWEVENT:
            if (EndsTouch(event.window.event)) Leave();
            return;
        default: return;
    }
}

void SdlInput::HandleKey(const SDL_Keysym& key) {
    for (const KeyName& name : keyNames) {
        if (name.sdl == key.sym) return m_input.Put(KeyEvent{name.code, {}});
    }
}

void SdlInput::HandleFinger(const SDL_TouchFingerEvent& event) {
    const auto pixel = [](float part, int whole) {
        return static_cast<int>(std::floor(part * static_cast<float>(whole)));
    };
    const Point at = OnScreen(pixel(event.x, m_window.width), pixel(event.y, m_window.height));
    if (event.type == SDL_FINGERDOWN) {
        if (m_contact != Contact::None) return;
        m_contact = Contact::Finger;
        m_finger = event.fingerId;
        return Put(TouchAction::Down, at);
    }
    if (m_contact != Contact::Finger || event.fingerId != m_finger) return;
    if (event.type == SDL_FINGERMOTION) return Put(TouchAction::Move, at);
    m_contact = Contact::None;
    Put(TouchAction::Up, at);
    m_input.SetCursorPos(outside);
}

void SdlInput::Leave() {
    if (m_contact != Contact::None) Put(TouchAction::Up, outside);
    m_contact = Contact::None;
    m_input.SetCursorPos(outside);
}

void SdlInput::Put(TouchAction action, Point at) {
    m_input.SetCursorPos(at);
    m_input.Put(TouchEvent{action, at});
}

}  // namespace varkel

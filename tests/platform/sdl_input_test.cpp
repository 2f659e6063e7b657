#include "platform/linux/sdl_input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/dialog_fixture.h"

namespace varkel {
namespace {

using testing::ElementsAre;

class SdlInputTest : public test::DialogFixture {
  protected:
    SdlInputTest() {
        queue->SetHandler([this](const InputEvent& event) {
            if (const auto* const touch = std::get_if<TouchEvent>(&event)) {
                heard.push_back("DMU"[static_cast<int>(touch->action)] + std::to_string(touch->at.x) + "," +
                                std::to_string(touch->at.y));
            }
        });
    }

    void Pointer(Uint32 type, int x, int y, Uint8 button = SDL_BUTTON_LEFT, Uint32 which = 0) {
        SDL_Event event{};
        event.type = type;
        if (type == SDL_MOUSEMOTION) {
            event.motion.which = which;
            event.motion.x = x;
            event.motion.y = y;
        } else {
            event.button.which = which;
            event.button.button = button;
            event.button.x = x;
            event.button.y = y;
        }
        input.Handle(event);
        ServePosted();
    }
    void Finger(Uint32 type, SDL_FingerID finger, float x, float y) {
        SDL_Event event{};
        event.type = type;
        event.tfinger.fingerId = finger;
        event.tfinger.x = x;
        event.tfinger.y = y;
        input.Handle(event);
        ServePosted();
    }
    std::vector<std::string> Heard() {
        ServePosted();
        return std::exchange(heard, {});
    }

    std::shared_ptr<DisplayInput> queue = std::make_shared<DisplayInput>(loop);
    SdlInput input{*queue};
    std::vector<std::string> heard;
};

TEST_F(SdlInputTest, KnowsOneTouchAtATime) {
    Pointer(SDL_MOUSEMOTION, 5, 6);
    Pointer(SDL_MOUSEBUTTONDOWN, 5, 6, SDL_BUTTON_RIGHT);
    Pointer(SDL_MOUSEBUTTONDOWN, 5, 6);
    Finger(SDL_FINGERDOWN, 1, 0.5f, 0.5f);
    Pointer(SDL_MOUSEBUTTONUP, 5, 6, SDL_BUTTON_RIGHT);
    Pointer(SDL_MOUSEMOTION, 900, -7);
    Pointer(SDL_MOUSEBUTTONUP, 900, -7);
    Finger(SDL_FINGERUP, 1, 0.5f, 0.5f);
    EXPECT_THAT(Heard(), ElementsAre("M5,6", "D5,6", "M900,-7", "U900,-7"));
    EXPECT_EQ(queue->GetCursorPos(), (Point{900, -7}));

    Finger(SDL_FINGERDOWN, 7, 0.5f, 0.25f);
    Finger(SDL_FINGERDOWN, 8, 0.1f, 0.1f);
    Finger(SDL_FINGERMOTION, 8, 0.2f, 0.2f);
    Pointer(SDL_MOUSEBUTTONDOWN, 400, 120, SDL_BUTTON_LEFT, SDL_TOUCH_MOUSEID);
    Pointer(SDL_MOUSEMOTION, 1, 1);
    Finger(SDL_FINGERUP, 8, 0.2f, 0.2f);
    Finger(SDL_FINGERMOTION, 7, 0.75f, 0.5f);
    EXPECT_EQ(queue->GetCursorPos(), (Point{600, 240}));
    Finger(SDL_FINGERUP, 7, 0.75f, 0.5f);
    EXPECT_THAT(Heard(), ElementsAre("D400,120", "M600,240", "U600,240"));
    EXPECT_EQ(queue->GetCursorPos(), (Point{-1, -1})) << "a finger is nowhere when it is lifted";
}

TEST_F(SdlInputTest, EndsATouchOutsideWhenTheWindowLosesIt) {
    for (const Uint8 change : {SDL_WINDOWEVENT_LEAVE, SDL_WINDOWEVENT_FOCUS_LOST, SDL_WINDOWEVENT_HIDDEN}) {
        SDL_Event event{};
        event.type = SDL_WINDOWEVENT;
        event.window.event = change;
        Pointer(SDL_MOUSEBUTTONDOWN, 5, 6);
        input.Handle(event);
        input.Handle(event);
        Pointer(SDL_MOUSEBUTTONUP, 7, 8);
        EXPECT_THAT(Heard(), ElementsAre("D5,6", "U-1,-1"));
    }
}

TEST_F(SdlInputTest, CountsFromTheCornerOfTheScreen) {
    input.Place({1024, 600}, {112, 60});
    Pointer(SDL_MOUSEMOTION, 112, 60);
    Finger(SDL_FINGERDOWN, 1, 0.5f, 0.5f);
    Finger(SDL_FINGERUP, 1, 0.0f, 0.0f);
    EXPECT_THAT(Heard(), ElementsAre("M0,0", "D400,240", "U-112,-60"));
}

}  // namespace
}  // namespace varkel

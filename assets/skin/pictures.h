// Every picture of the skin.
#pragma once

#include <span>

#include "assets/skin/picture.h"

namespace varkel::skin {

std::span<const Picture> AllPictures();

}  // namespace varkel::skin

// Every window that the library shows, in every look that it has.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "gui/Stage.h"

namespace kq {

struct Scene {
    std::string name;
    std::string window;
    // Shows the window, calls the visitor while it stands, and closes it.
    std::function<void(Stage&, const Stage::Act&)> show;
};

const std::vector<Scene>& Scenes();

}  // namespace kq

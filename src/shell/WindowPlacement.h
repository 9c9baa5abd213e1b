#pragma once

namespace yunqi {

// Where CenterInMainWindow puts a window in the main window's client area:
// left = (client width - width) / 2, top = (client height - height) / 2, both
// divided by 2.0 in single precision, in the windows' own units. A window
// larger than the client area gets a negative place.
struct WindowPlace {
    float Left;
    float Top;
};

WindowPlace CenterInMainWindow(float clientWidth, float clientHeight, float width, float height);

}  // namespace yunqi

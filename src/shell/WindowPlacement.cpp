#include "shell/WindowPlacement.h"

WindowPlace CenterInMainWindow(float clientWidth, float clientHeight, float width, float height) {
    return {(clientWidth - width) / 2.0f, (clientHeight - height) / 2.0f};
}

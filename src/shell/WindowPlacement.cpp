#include "shell/WindowPlacement.h"

namespace yunqi {

WindowPlace CenterInMainWindow(float clientWidth, float clientHeight, float width, float height) {
    return {(clientWidth - width) / 2.0f, (clientHeight - height) / 2.0f};
}

}  // namespace yunqi

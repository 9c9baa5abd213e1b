#pragma once

namespace yunqi {

// Lengths of the design are twips; the screen shows 15 twips a pixel.
constexpr int kTwipsPerPixel = 15;
constexpr int Pixels(int twips) { return twips / kTwipsPerPixel; }
constexpr int Twips(int pixels) { return pixels * kTwipsPerPixel; }

}  // namespace yunqi

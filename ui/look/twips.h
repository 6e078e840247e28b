#pragma once

// Lengths in twips (1440 an inch) and pixels. The layout rules and the column profile are in twips; at 96
// dots an inch 15 twips are one pixel.

#include <QPaintDevice>
#include <cmath>

namespace vicenter::ui {

inline constexpr double kTwipsPerInch = 1440.0;

inline int TwipsToPixels(double twips, int dotsPerInch) {
    return static_cast<int>(std::lround(twips * dotsPerInch / kTwipsPerInch));
}

inline double PixelsToTwips(int pixels, int dotsPerInch) {
    return pixels * kTwipsPerInch / dotsPerInch;
}

inline int TwipsToPixels(double twips, const QPaintDevice& device) {
    return TwipsToPixels(twips, device.logicalDpiX());
}

inline double PixelsToTwips(int pixels, const QPaintDevice& device) {
    return PixelsToTwips(pixels, device.logicalDpiX());
}

}  // namespace vicenter::ui

// SPDX-License-Identifier: MIT
#include "viewer/window/OpeningSize.h"

#include <algorithm>
#include <cmath>

namespace viewer
{
namespace
{

constexpr double kShareOfScreen = 0.8;
// One of them is enough. Movies of old are not smaller, and enlarged each picture costs twice as
// much.
constexpr AreaSize kComfortable = {320, 240};
constexpr int kMostEnlarged = 4;
constexpr AreaSize kLeastWindow = {480, 270};

double ZoomFor(AreaSize natural, double fit)
{
    if (fit < 1) {
        return fit;
    }
    const int most = std::min(kMostEnlarged, static_cast<int>(fit));
    int zoom = 1;
    while (zoom < most && natural.width * zoom < kComfortable.width &&
           natural.height * zoom < kComfortable.height) {
        ++zoom;
    }
    return zoom;
}

SInt16 LengthFor(int wanted, SInt16 least, SInt16 screen)
{
    const auto most = std::max<int>(1, static_cast<int>(screen * kShareOfScreen));
    return static_cast<SInt16>(std::clamp(wanted, std::min<int>(least, most), most));
}

} // namespace

OpeningSize OpeningSizeFor(AreaSize natural, SInt16 rowsOfController, bool mayScale,
                           AreaSize screen, const PageStyle& style)
{
    const AreaSize picture = WithRows(natural, static_cast<SInt16>(-rowsOfController));
    const int across = 2 * style.margin;
    const int down = 2 * style.margin + style.captionHeight + rowsOfController;
    const double fit =
        std::min((screen.width * kShareOfScreen - across) / std::max<SInt16>(1, picture.width),
                 (screen.height * kShareOfScreen - down) / std::max<SInt16>(1, picture.height));
    OpeningSize opening;
    opening.zoom = mayScale && fit > 0 ? ZoomFor(picture, fit) : 1;
    const AreaSize area = Zoomed(picture, opening.zoom);
    opening.window = {LengthFor(area.width + across, kLeastWindow.width, screen.width),
                      LengthFor(area.height + down, kLeastWindow.height, screen.height)};
    return opening;
}

} // namespace viewer

// SPDX-License-Identifier: MIT
// How long one refresh of the preview takes, turned and mirrored, beside two plain copies of the same picture into
// fresh memory. Both are measured in turn; medians, and their ratio, are printed.
#include "orientation/Picture.h"

#include <QElapsedTimer>
#include <QImage>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace
{

constexpr int rounds = 15;
constexpr double nanosecondsPerMillisecond = 1e6;

double millisecondsOf(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / nanosecondsPerMillisecond;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

QImage patterned(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = qRgb(x & 255, y & 255, (x * y) & 255);
    }
    return picture;
}

void measure(const char* name, QSize size)
{
    const QImage still = patterned(size);
    QImage kept[2];
    for (const double angle : {0.0, 90.0, 180.0, 270.0}) {
        for (const bool mirrored : {false, true}) {
            std::vector<double> refreshes;
            std::vector<double> copies;
            for (int round = 0; round < rounds; ++round) {
                copies.push_back(millisecondsOf([&] {
                    kept[0] = still.copy();
                    kept[1] = still.copy();
                }));
                refreshes.push_back(millisecondsOf([&] {
                    kept[0] = tarnwell::rotateImage(still, angle);
                    kept[1] = tarnwell::flipImage(kept[0], mirrored, false);
                }));
            }
            const double refresh = median(refreshes);
            const double copy = median(copies);
            std::printf("| %s | %3.0f | %s | %.1f | %.1f | %.2f |\n", name, angle, mirrored ? "yes" : "no", refresh,
                copy, refresh / copy);
        }
    }
}

} // namespace

int main()
{
    std::puts("| picture | degrees | mirrored | refresh, ms | two copies, ms | ratio |\n|---|---|---|---|---|---|");
    measure("1920 x 1080", {1920, 1080});
    measure("3840 x 2160", {3840, 2160});
    measure("7680 x 4320", {7680, 4320});
    return 0;
}

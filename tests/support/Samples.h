// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// What a sample video shows and how it is coded.
struct SampleVideo {
    QSize size = {320, 240};
    int seconds = 2;
    std::string codec = "libx264"; // an encoder of ffmpeg's
    std::string pixelFormat = "yuv420p";
    std::string soundCodec = "aac"; // empty: no sound
};

/// Makes a video with ffmpeg: four corners of different colours, so that every orientation can be told apart,
/// a soft moving pattern between them, and a tone. Fails the test where ffmpeg does.
void makeSampleVideo(const std::string& path, const SampleVideo& sample = {});

/// Marks an MP4 file as to be shown turned by `degrees` counterclockwise; its streams are copied.
void setRotationFlag(const std::string& path, int degrees, const std::string& markedPath);

/// The frame that a decoder shows at `seconds`, its rotation flag applied; null where there is none.
QImage decodedFrame(const std::string& path, double seconds);

/// The mean difference of the colour channels where both pictures are, in grey levels; 255 for pictures whose
/// sizes differ by more than the one line that an encoder may leave out.
double meanDifference(const QImage& left, const QImage& right);

/// A picture turned and mirrored by plain index arithmetic, for comparison: first `quarterTurnsLeft`, then
/// mirrors.
QImage expectedPicture(const QImage& source, int quarterTurnsLeft, bool vertically, bool horizontally);

/// Runs a program and waits for its end. Its exit status; negative where it cannot be started or is ended by
/// a signal. Any thread; runs no events.
int run(const std::string& program, const std::vector<std::string>& arguments);

} // namespace tarnwell::test

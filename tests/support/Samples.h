// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The content and encoding of a sample video.
struct SampleVideo {
    QSize size = {320, 240};
    int seconds = 2;
    std::string codec = "libx264"; // name of an encoder of ffmpeg
    std::string pixelFormat = "yuv420p";
    std::string soundCodec = "aac"; // empty for no sound
};

/// Writes a video: four corners of different colours, so that all orientations differ, a soft moving pattern
/// between them, and a tone. ffmpeg makes it once and the build folder keeps it for all tests. Ends the test
/// if ffmpeg fails.
void makeSampleVideo(const std::string& path, const SampleVideo& sample = {});

/// Sets the rotation flag of an MP4 file to `degrees` counterclockwise and copies its streams.
void setRotationFlag(const std::string& path, int degrees, const std::string& markedPath);

/// The frame at `seconds` as a decoder shows it, with the rotation flag applied; null if there is none.
QImage decodedFrame(const std::string& path, double seconds);

/// The frames at `seconds` of several videos, in their order, by one run of ffmpeg. If one of the files has
/// no such frame, its picture is null; if one cannot be opened, all are.
std::vector<QImage> decodedFrames(const std::vector<std::string>& paths, double seconds);

/// The mean difference of the colour channels over the common part, in grey levels. 255 if the sizes differ
/// by more than the one line that an encoder may crop.
double meanDifference(const QImage& left, const QImage& right);

/// Turns the picture by `quarterTurnsLeft`, then mirrors it, by index arithmetic only. For comparison.
QImage expectedPicture(const QImage& source, int quarterTurnsLeft, bool vertically, bool horizontally);

/// Runs a program and waits for its exit. Returns its exit status; negative if it cannot be started or is
/// killed by a signal. Any thread; does not process events.
int run(const std::string& program, const std::vector<std::string>& arguments);

} // namespace tarnwell::test

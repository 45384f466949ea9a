// SPDX-License-Identifier: MIT
#include "tools/Attempts.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace
{

using Arguments = std::vector<std::string>;
using Kind = MediaStream::Kind;

// Codecs that ffmpeg writes into MP4 with "-strict experimental": the common ones in all versions from 4.3
// on, the others in later versions.
constexpr std::array<std::string_view, 5> commonSoundCodecs = {"aac", "ac3", "eac3", "mp2", "mp3"};
constexpr std::array<std::string_view, 6> otherSoundCodecs
    = {"alac", "dts", "flac", "opus", "truehd", "vorbis"};

// For ffmpeg FLAC and TrueHD in MP4 are experimental; the records of Dolby Vision and of spherical video are
// unofficial, which "experimental" includes.
const Arguments allowEverything = {"-strict", "experimental"};

// Without this option ffmpeg omits the creation date. With "g" it still copies the tags of streams.
const Arguments keepTags = {"-map_metadata:g", "0:g"};

constexpr int mostChannels = 8; // limit of the AAC and ALAC encoders

// The layouts that the AAC encoder and decoders support. ffmpeg converts other ones to the closest.
const std::string knownLayouts = "aformat=channel_layouts=mono|stereo|2.1|3.0|4.0|quad|5.0|5.1|7.1";
// Channels of unknown positions cannot be mixed: the first two are kept.
const std::string firstTwoChannels = "pan=stereo|c0=c0|c1=c1";

void append(Arguments& list, const Arguments& more)
{
    list.insert(list.end(), more.begin(), more.end());
}

/// Whether ffmpeg reads the titles of chapters from the stream; it writes a new one.
bool holdsChapterTitles(const MediaStream& stream)
{
    return stream.codec == "bin_data" && stream.tag == "text";
}

std::string described(const MediaStream& stream)
{
    const std::string name = stream.codec.empty() ? "of an unknown codec" : "in " + stream.codec;
    return "tarnwell: stream " + std::to_string(stream.index) + ", " + name;
}

std::string omissionOf(const MediaStream& stream)
{
    return holdsChapterTitles(stream) ? "" : described(stream) + ", is left out\n";
}

Arguments mapped(const MediaStream& stream)
{
    return {"-map", "0:" + std::to_string(stream.index)};
}

enum class SoundCoding { Copy, Lossless, Aac };

/// The sound that a copy keeps without loss.
enum class Lossless { AllOfMp4, CommonCodecs };

SoundCoding codingInCopy(const MediaStream& sound, Lossless kept)
{
    const auto holds = [&sound](const auto& codecs) {
        return std::find(codecs.begin(), codecs.end(), sound.codec) != codecs.end();
    };
    const bool isPcm = sound.codec.compare(0, 4, "pcm_") == 0 && sound.channels <= mostChannels;
    if (holds(commonSoundCodecs))
        return SoundCoding::Copy;
    if (kept == Lossless::CommonCodecs)
        return SoundCoding::Aac;
    if (holds(otherSoundCodecs))
        return SoundCoding::Copy;
    return isPcm ? SoundCoding::Lossless : SoundCoding::Aac;
}

/// `place` is the index among the sound streams of the output.
Arguments soundOptions(const MediaStream& sound, SoundCoding coding, int place)
{
    const std::string number = std::to_string(place);
    if (coding == SoundCoding::Copy)
        return {"-c:a:" + number, "copy"};
    if (coding == SoundCoding::Lossless)
        return {"-c:a:" + number, "alac"};
    const bool canBeMixed = sound.channels <= mostChannels || !sound.channelLayout.empty();
    return {"-c:a:" + number, "aac", "-filter:a:" + number, canBeMixed ? knownLayouts : firstTwoChannels};
}

/// QuickTime plays HEVC only with these sample entries: "dvh1" for Dolby Vision without a compatible picture.
Arguments videoTag(const MediaStream& video)
{
    if (video.codec != "hevc")
        return {};
    return {"-tag:v", video.tag == "dvh1" || video.tag == "dvhe" ? "dvh1" : "hvc1"};
}

/// Removes orientation messages, which decoders apply instead of the display matrix. For HEVC FFmpeg has no
/// filter that removes one kind of message only: all SEI units are removed.
Arguments messageFilter(const MediaFacts& facts)
{
    if (!facts.hasOrientationMessage)
        return {};
    return {"-bsf:v",
        facts.mainVideo->codec == "hevc" ? "filter_units=remove_types=39-40"
                                         : "h264_metadata=display_orientation=remove"};
}

/// A copy of all streams that MP4 supports.
Attempt fullCopy(const Job& job, const MediaFacts& facts, const Target& target, Lossless kept)
{
    Attempt attempt;
    Arguments options = {"-c", "copy"};
    int sounds = 0;
    for (const MediaStream& stream : facts.streams) {
        const bool isSound = stream.kind == Kind::Sound && !stream.codec.empty();
        const bool isText = stream.kind == Kind::Subtitle && stream.codec == "mov_text";
        if (!isSound && !isText && stream.index != facts.mainVideo->index) {
            attempt.notice += omissionOf(stream);
            continue;
        }
        append(options, mapped(stream));
        attempt.trackIds.push_back(stream.trackId);
        if (!isSound)
            continue;
        const SoundCoding coding = codingInCopy(stream, kept);
        append(options, soundOptions(stream, coding, sounds++));
        if (coding != SoundCoding::Copy)
            attempt.notice += described(stream) + ", is encoded, since MP4 does not hold it\n";
    }
    append(options, keepTags);
    append(options, allowEverything);
    append(options, videoTag(*facts.mainVideo));
    append(options, messageFilter(facts));
    attempt.arguments = ffmpegArguments(job, target, options);
    return attempt;
}

/// The sound stream that ffmpeg selects without options: one that is marked as default, else the one with the
/// most channels. Null if there is none with a known codec.
const MediaStream* mainSound(const MediaFacts& facts)
{
    const MediaStream* best = nullptr;
    const auto rank = [](const MediaStream& stream) { return std::pair(stream.isDefault, stream.channels); };
    for (const MediaStream& stream : facts.streams) {
        if (stream.kind != Kind::Sound || stream.codec.empty())
            continue;
        if (best == nullptr || rank(stream) > rank(*best))
            best = &stream;
    }
    return best;
}

/// `sound` is null for none.
Attempt encoding(const Job& job, const MediaFacts& facts, const Target& target, const MediaStream* sound,
    SoundCoding coding)
{
    Attempt attempt;
    Arguments options = mapped(*facts.mainVideo);
    attempt.trackIds.push_back(facts.mainVideo->trackId);
    if (sound != nullptr) {
        append(options, mapped(*sound));
        append(options, soundOptions(*sound, coding, 0));
        attempt.trackIds.push_back(sound->trackId);
    }
    for (const MediaStream& stream : facts.streams) {
        const bool isKept
            = stream.index == facts.mainVideo->index || (sound != nullptr && stream.index == sound->index);
        if (!isKept)
            attempt.notice += omissionOf(stream);
    }
    append(options, keepTags);
    attempt.arguments = ffmpegArguments(job, target, options);
    return attempt;
}

/// The main video stream and at most one sound stream, in an encoding with ffmpeg's codecs for MP4. Without
/// the selection ffmpeg would use the video stream with the largest picture, which can differ from that of
/// the still and the flag.
Attempt plainAttempt(const Job& job, const MediaFacts& facts, const Target& target, const MediaStream* sound)
{
    Attempt attempt;
    Arguments options;
    if (facts.mainVideo) {
        append(options, mapped(*facts.mainVideo));
        attempt.trackIds.push_back(facts.mainVideo->trackId);
    }
    if (facts.mainVideo && sound != nullptr) {
        append(options, mapped(*sound));
        attempt.trackIds.push_back(sound->trackId);
    }
    if (job.kind == Job::Kind::FixFlag) {
        append(options, {"-c:v", "copy", "-c:a", "copy"});
        append(options, messageFilter(facts));
    }
    attempt.arguments = ffmpegArguments(job, target, options);
    return attempt;
}

std::vector<Attempt> copies(const Job& job, const MediaFacts& facts, const Target& target)
{
    std::vector<Attempt> attempts;
    if (facts.mainVideo) {
        attempts.push_back(fullCopy(job, facts, target, Lossless::AllOfMp4));
        Attempt common = fullCopy(job, facts, target, Lossless::CommonCodecs);
        if (common.arguments != attempts.front().arguments)
            attempts.push_back(std::move(common));
    }
    attempts.push_back(plainAttempt(job, facts, target, mainSound(facts)));
    if (attempts.size() > 1)
        attempts.back().notice = "tarnwell: all but one video and one sound stream is left out\n";
    return attempts;
}

std::vector<Attempt> encodings(const Job& job, const MediaFacts& facts, const Target& target)
{
    std::vector<Attempt> attempts;
    if (facts.mainVideo) {
        const MediaStream* sound = mainSound(facts);
        if (sound != nullptr && sound->codec == "aac")
            attempts.push_back(encoding(job, facts, target, sound, SoundCoding::Copy));
        attempts.push_back(encoding(job, facts, target, sound, SoundCoding::Aac));
    } else {
        attempts.push_back(plainAttempt(job, facts, target, nullptr));
    }
    Arguments picture = facts.mainVideo ? mapped(*facts.mainVideo) : Arguments();
    append(picture, keepTags);
    append(picture, {"-an"});
    attempts.push_back({ffmpegArguments(job, target, picture), {}, "tarnwell: the sound is left out\n"});
    if (facts.mainVideo)
        attempts.back().trackIds.push_back(facts.mainVideo->trackId);
    return attempts;
}

} // namespace

std::vector<Attempt> attemptsFor(const Job& job, const MediaFacts& facts, const Target& target)
{
    return job.kind == Job::Kind::FixFlag ? copies(job, facts, target) : encodings(job, facts, target);
}

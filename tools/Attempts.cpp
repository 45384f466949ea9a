// SPDX-License-Identifier: MIT
#include "tools/Attempts.h"

#include "tools/Arguments.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace
{

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

constexpr int mostChannels = 8; // limit of the AAC, ALAC and FLAC encoders

// The layouts that the ALAC encoder supports.
constexpr std::array<std::string_view, 8> alacLayouts
    = {"mono", "stereo", "3.0", "4.0", "5.0", "5.1", "6.1(back)", "7.1(wide)"};

// PCM codecs, without their byte order, with more than the 24 bits of ALAC and FLAC.
constexpr std::array<std::string_view, 4> widePcm = {"pcm_f", "pcm_s32", "pcm_s64", "pcm_u32"};

// The layouts that the AAC encoder and decoders support. ffmpeg converts other ones to the closest.
const std::string knownLayouts = "aformat=channel_layouts=mono|stereo|2.1|3.0|4.0|quad|5.0|5.1|7.1";
// Channels of unknown positions cannot be mixed: the first two are kept.
const std::string firstTwoChannels = "pan=stereo|c0=c0|c1=c1";

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

enum class SoundCoding { Omitted, Copy, Alac, Flac, Aac };

/// The sound streams of a copy, and those that it encodes.
enum class SoundRule {
    CopyAllOfMp4, // copies all codecs that MP4 supports and encodes the others
    CopyCommonCodecs, // the same for the common codecs
    OmitOthers // copies all codecs that MP4 supports and leaves out the others
};

template <typename Names>
bool holds(const Names& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isCopied(const MediaStream& sound)
{
    return holds(commonSoundCodecs, sound.codec) || holds(otherSoundCodecs, sound.codec);
}

/// FLAC keeps the samples of any layout, ALAC is supported by more players. ffmpeg would mix other layouts
/// than those of ALAC, and guesses the layout of more than two channels if it is unknown.
SoundCoding codingOfPcm(const MediaStream& sound)
{
    const bool isLayoutOfAlac
        = sound.channelLayout.empty() ? sound.channels <= 2 : holds(alacLayouts, sound.channelLayout);
    return isLayoutOfAlac ? SoundCoding::Alac : SoundCoding::Flac;
}

SoundCoding codingInCopy(const MediaStream& sound, SoundRule rule)
{
    const bool isPcm = sound.codec.starts_with("pcm_") && sound.channels <= mostChannels;
    if (rule == SoundRule::CopyCommonCodecs)
        return holds(commonSoundCodecs, sound.codec) ? SoundCoding::Copy : SoundCoding::Aac;
    if (isCopied(sound))
        return SoundCoding::Copy;
    if (rule == SoundRule::OmitOthers)
        return SoundCoding::Omitted;
    return isPcm ? codingOfPcm(sound) : SoundCoding::Aac;
}

/// Whether AAC can keep all channels, mixed if necessary.
bool canBeMixed(const MediaStream& sound)
{
    return sound.channels <= mostChannels || !sound.channelLayout.empty();
}

/// `place` is the index among the sound streams of the output.
Arguments soundOptions(const MediaStream& sound, SoundCoding coding, int place)
{
    const std::string codecOption = "-c:a:" + std::to_string(place);
    switch (coding) {
    case SoundCoding::Omitted:
        return {};
    case SoundCoding::Copy:
        return {codecOption, "copy"};
    case SoundCoding::Alac:
        return {codecOption, "alac"};
    case SoundCoding::Flac:
        return {codecOption, "flac"};
    case SoundCoding::Aac:
        break;
    }
    return {codecOption, "aac", "-filter:a:" + std::to_string(place),
        canBeMixed(sound) ? knownLayouts : firstTwoChannels};
}

/// The line about a stream that is not copied; empty for one that is.
std::string encodingNotice(const MediaStream& sound, SoundCoding coding)
{
    if (coding == SoundCoding::Copy)
        return {};
    const std::string beginning = described(sound) + ", is encoded as ";
    if (coding == SoundCoding::Aac)
        return beginning + (canBeMixed(sound) ? "AAC\n" : "AAC, its first two channels only\n");
    const bool hasMoreBits = std::any_of(widePcm.begin(), widePcm.end(),
        [&sound](std::string_view codec) { return sound.codec.starts_with(codec); });
    return beginning + (coding == SoundCoding::Alac ? "ALAC" : "FLAC")
        + (hasMoreBits ? ", which can round it to 24 bits\n" : "\n");
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
Attempt fullCopy(const Job& job, const MediaFacts& facts, const Target& target, SoundRule rule)
{
    Attempt attempt;
    Arguments options = {"-c", "copy"};
    int sounds = 0;
    for (const MediaStream& stream : facts.streams) {
        const bool isSound = stream.kind == Kind::Sound && !stream.codec.empty();
        const bool isText = stream.kind == Kind::Subtitle && stream.codec == "mov_text";
        const SoundCoding coding = isSound ? codingInCopy(stream, rule) : SoundCoding::Omitted;
        if (coding == SoundCoding::Omitted && !isText && stream.index != facts.mainVideo->index) {
            attempt.notice += omissionOf(stream);
            continue;
        }
        append(options, mapped(stream));
        attempt.trackIds.push_back(stream.trackId);
        if (coding == SoundCoding::Omitted)
            continue;
        append(options, soundOptions(stream, coding, sounds++));
        attempt.notice += encodingNotice(stream, coding);
    }
    append(options, keepTags);
    append(options, allowEverything);
    append(options, videoTag(*facts.mainVideo));
    append(options, messageFilter(facts));
    attempt.arguments = ffmpegArguments(job, target, options);
    return attempt;
}

bool isKnown(const MediaStream& sound)
{
    return !sound.codec.empty();
}

/// The sound stream that ffmpeg selects without options, among those that meet the condition: one that is
/// marked as default, else the one with the most channels. Null if there is none.
const MediaStream* mainSound(const MediaFacts& facts, bool (*condition)(const MediaStream&))
{
    const MediaStream* best = nullptr;
    const auto rank = [](const MediaStream& stream) { return std::pair(stream.isDefault, stream.channels); };
    for (const MediaStream& stream : facts.streams) {
        if (stream.kind == Kind::Sound && condition(stream)
            && (best == nullptr || rank(stream) > rank(*best)))
            best = &stream;
    }
    return best;
}

/// An attempt with the main video stream and at most one sound stream, which can be null, and no arguments.
Attempt withStreams(const MediaFacts& facts, const MediaStream* sound)
{
    Attempt attempt;
    attempt.trackIds.push_back(facts.mainVideo->trackId);
    if (sound != nullptr)
        attempt.trackIds.push_back(sound->trackId);
    for (const MediaStream& stream : facts.streams) {
        const bool isKept
            = stream.index == facts.mainVideo->index || (sound != nullptr && stream.index == sound->index);
        if (!isKept)
            attempt.notice += omissionOf(stream);
    }
    return attempt;
}

/// `sound` is null for none.
Attempt encoding(const Job& job, const MediaFacts& facts, const Target& target, const MediaStream* sound,
    SoundCoding coding)
{
    Attempt attempt = withStreams(facts, sound);
    Arguments options = mapped(*facts.mainVideo);
    if (sound != nullptr) {
        append(options, mapped(*sound));
        append(options, soundOptions(*sound, coding, 0));
    } else {
        append(options, {"-an"});
    }
    append(options, keepTags);
    attempt.arguments = ffmpegArguments(job, target, options);
    return attempt;
}

/// The main video stream and at most one sound stream, a codec that MP4 supports if possible. Without the
/// selection ffmpeg would use the video stream with the largest picture, which can differ from that of the
/// still and the flag. Has only options that cannot be the reason why the other copies fail: "-strict" lets
/// ffmpeg write records of the picture, and not every version writes the label "dvh1".
Attempt plainCopy(const Job& job, const MediaFacts& facts, const Target& target)
{
    const MediaStream* copied = mainSound(facts, isCopied);
    const MediaStream* sound = copied != nullptr ? copied : mainSound(facts, isKnown);
    Attempt attempt = withStreams(facts, sound);
    Arguments options = mapped(*facts.mainVideo);
    if (sound != nullptr)
        append(options, mapped(*sound));
    append(options, {"-c:v", "copy", "-c:a", "copy"});
    append(options, keepTags);
    if (facts.mainVideo->codec == "hevc")
        append(options, {"-tag:v", "hvc1"});
    append(options, messageFilter(facts));
    attempt.notice += "tarnwell: records of Dolby Vision and of spherical video are left out\n";
    attempt.arguments = ffmpegArguments(job, target, options);
    return attempt;
}

/// Appends the attempt unless there is one with the same arguments.
void add(std::vector<Attempt>& attempts, Attempt attempt)
{
    const auto isSame = [&attempt](const Attempt& other) { return other.arguments == attempt.arguments; };
    if (std::none_of(attempts.begin(), attempts.end(), isSame))
        attempts.push_back(std::move(attempt));
}

std::vector<Attempt> copies(const Job& job, const MediaFacts& facts, const Target& target)
{
    if (!facts.mainVideo) {
        Arguments options = {"-c:v", "copy", "-c:a", "copy"};
        append(options, keepTags);
        return {{ffmpegArguments(job, target, options), {}, ""}};
    }
    std::vector<Attempt> attempts;
    add(attempts, fullCopy(job, facts, target, SoundRule::CopyAllOfMp4));
    add(attempts, fullCopy(job, facts, target, SoundRule::CopyCommonCodecs));
    if (mainSound(facts, isCopied) != nullptr) // ffmpeg may not be able to decode the others
        add(attempts, fullCopy(job, facts, target, SoundRule::OmitOthers));
    add(attempts, plainCopy(job, facts, target));
    return attempts;
}

std::vector<Attempt> encodings(const Job& job, const MediaFacts& facts, const Target& target)
{
    if (!facts.mainVideo) {
        Arguments silent = keepTags;
        append(silent, {"-an"});
        return {{ffmpegArguments(job, target, keepTags), {}, ""},
            {ffmpegArguments(job, target, silent), {}, "tarnwell: the sound is left out\n"}};
    }
    std::vector<Attempt> attempts;
    const MediaStream* sound = mainSound(facts, isKnown);
    if (sound != nullptr && sound->codec == "aac")
        add(attempts, encoding(job, facts, target, sound, SoundCoding::Copy));
    add(attempts, encoding(job, facts, target, sound, SoundCoding::Aac));
    add(attempts, encoding(job, facts, target, nullptr, SoundCoding::Aac));
    return attempts;
}

} // namespace

std::vector<Attempt> attemptsFor(const Job& job, const MediaFacts& facts, const Target& target)
{
    return job.kind == Job::Kind::FixFlag ? copies(job, facts, target) : encodings(job, facts, target);
}

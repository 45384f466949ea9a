// SPDX-License-Identifier: MIT
#include "tools/Movie.h"

#include <algorithm>
#include <limits>
#include <set>

namespace
{

// Offsets in "mvhd" and "tkhd" of version 0. In version 1 times have eight bytes instead of four.
constexpr FileOffset movieMatrixOffset = 36;
constexpr FileOffset trackMatrixOffset = 40;
constexpr FileOffset movieTimeScaleOffset = 12;
constexpr FileOffset trackIdOffset = 12;
constexpr FileOffset twoLongerTimes = 8; // creation, modification
constexpr FileOffset threeLongerTimes = 12; // and the duration
constexpr std::size_t matrixSize = 36;

constexpr FileOffset handlerTypeOffset = 8;
constexpr FileOffset entriesOffset = 8; // behind version, flags and count
constexpr FileOffset sampleCountOffset = 8; // in "stsz" and "stz2"
constexpr std::size_t mostEntriesRead = 64;

/// Empty for a version other than 0 and 1.
std::optional<int> knownVersion(const BoxReader& reader, const Box& box)
{
    const std::string version = reader.contentOf(box, 1);
    if (version.empty() || (version[0] != 0 && version[0] != 1))
        return std::nullopt;
    return version[0];
}

double fixedPoint(std::string_view bytes)
{
    constexpr double one = 65536;
    return static_cast<double>(static_cast<std::int32_t>(readBigEndian(bytes))) / one;
}

std::optional<DisplayMatrix> matrixIn(const std::string& bytes)
{
    if (bytes.size() < matrixSize)
        return std::nullopt;
    const auto number = [&bytes](std::size_t place) { return fixedPoint(bytes.substr(4 * place, 4)); };
    return DisplayMatrix{number(0), number(1), number(3), number(4)};
}

class MovieReader
{
public:
    explicit MovieReader(int file)
        : m_reader(file)
    {
    }

    std::optional<Movie> read()
    {
        const auto boxes = m_reader.boxesOfFile();
        if (!boxes)
            return noMovie(m_reader.beginsWithBox() ? "boxes do not fill the file" : "it is no MP4 file");
        const Box* description = onlyBox(*boxes, "moov");
        if (description == nullptr)
            return noMovie("it has no description of the movie, or more than one");
        if (!readFileType(*boxes))
            return noMovie("its file type is too short, too late or there twice");
        m_movie.hasMediaData
            = std::any_of(boxes->begin(), boxes->end(), [](const Box& box) { return box.is("mdat"); });
        const auto parts = m_reader.boxesIn(*description);
        if (!parts)
            return noMovie("boxes do not fill the description of the movie");
        if (!readHeader(*parts))
            return noMovie("the header of the movie is missing or of an unknown kind");
        if (!readTracks(*parts))
            return noMovie("a track lacks a handler or a header of a known kind");
        for (VideoTrack& video : m_movie.videos) {
            if (m_chapterIds.contains(video.id))
                video.isCover = true;
        }
        return m_movie;
    }

    /// The reason why `read` returned nothing.
    const std::string& problem() const { return m_problem; }

private:
    std::nullopt_t noMovie(const char* problem)
    {
        m_problem = m_reader.hasReachedLimit() ? "it has more boxes than are read" : problem;
        return std::nullopt;
    }

    /// False for a duplicate, misplaced or short file type.
    bool readFileType(const std::vector<Box>& boxes)
    {
        constexpr std::size_t brandSize = 4;
        const auto isType = [](const Box& box) { return box.is("ftyp"); };
        if (std::none_of(boxes.begin(), boxes.end(), isType))
            return true;
        const Box* type = onlyBox(boxes, "ftyp");
        const auto isMedia
            = [](const Box& box) { return box.is("moov") || box.is("mdat") || box.is("moof"); };
        const auto media = std::find_if(boxes.begin(), boxes.end(), isMedia);
        if (type == nullptr || type->begin > media->begin)
            return false;
        m_movie.majorBrand = m_reader.contentOf(*type, brandSize);
        return m_movie.majorBrand.size() == brandSize;
    }

    bool readHeader(const std::vector<Box>& parts)
    {
        const Box* header = onlyBox(parts, "mvhd");
        const auto version = header != nullptr ? knownVersion(m_reader, *header) : std::nullopt;
        if (!version || std::any_of(parts.begin(), parts.end(), [header](const Box& part) {
                return part.is("trak") && part.begin < header->begin;
            }))
            return false;
        const auto matrix = matrixIn(m_reader.contentOf(
            *header, matrixSize, movieMatrixOffset + (*version == 1 ? threeLongerTimes : 0)));
        if (!matrix)
            return false;
        m_movie.matrix = *matrix;
        readDuration(*header, *version);
        const auto fragments
            = std::find_if(parts.begin(), parts.end(), [](const Box& part) { return part.is("mvex"); });
        m_isFragmented = fragments != parts.end();
        if (m_isFragmented && m_movie.microseconds == 0)
            readFragmentsDuration(*fragments);
        return true;
    }

    void readDuration(const Box& header, int version)
    {
        const std::size_t size = version == 1 ? 8 : 4;
        const FileOffset offset = movieTimeScaleOffset + (version == 1 ? twoLongerTimes : 0);
        m_timeScale = readBigEndian(m_reader.contentOf(header, 4, offset));
        setDuration(m_reader.contentOf(header, size, offset + 4));
    }

    /// The duration in "mehd". The movie header of a fragmented file is written before the samples.
    void readFragmentsDuration(const Box& fragments)
    {
        const auto header = m_reader.onlyBoxIn(fragments, "mehd");
        const auto version = header ? knownVersion(m_reader, *header) : std::nullopt;
        if (version)
            setDuration(m_reader.contentOf(*header, *version == 1 ? 8 : 4, 4));
    }

    /// `bytes` is a number of four or eight bytes; all bits are set if the duration is unknown.
    void setDuration(const std::string& bytes)
    {
        constexpr double microsecondsPerSecond = 1e6;
        constexpr double longest = 1e15; // about 30 years
        if (m_timeScale == 0 || bytes.empty() || bytes.find_first_not_of('\xFF') == std::string::npos)
            return;
        const double microseconds = static_cast<double>(readBigEndian(bytes))
            / static_cast<double>(m_timeScale) * microsecondsPerSecond;
        if (microseconds < longest)
            m_movie.microseconds = static_cast<std::int64_t>(microseconds);
    }

    bool readTracks(const std::vector<Box>& parts)
    {
        return std::all_of(parts.begin(), parts.end(),
            [this](const Box& part) { return !part.is("trak") || readTrack(part); });
    }

    bool readTrack(const Box& track)
    {
        const auto parts = m_reader.boxesIn(track);
        const Box* header = parts ? onlyBox(*parts, "tkhd") : nullptr;
        const Box* media = parts ? onlyBox(*parts, "mdia") : nullptr;
        if (header == nullptr || media == nullptr)
            return false;
        const auto handler = m_reader.onlyBoxIn(*media, "hdlr");
        const std::string type = handler ? m_reader.contentOf(*handler, 4, handlerTypeOffset) : "";
        auto video = readTrackHeader(*header);
        if (type.size() != 4 || !video)
            return false;
        if (const Box* references = onlyBox(*parts, "tref"))
            readReferences(*references);
        if (type == "vide") {
            readSamples(*media, *video);
            m_movie.videos.push_back(*video);
        }
        return true;
    }

    std::optional<VideoTrack> readTrackHeader(const Box& header) const
    {
        constexpr std::size_t pictureSize = 8; // behind the matrix
        const auto version = knownVersion(m_reader, header);
        if (!version)
            return std::nullopt;
        const FileOffset offset = trackMatrixOffset + (*version == 1 ? threeLongerTimes : 0);
        const std::string bytes = m_reader.contentOf(header, matrixSize + pictureSize, offset);
        if (bytes.size() != matrixSize + pictureSize)
            return std::nullopt;
        VideoTrack track;
        track.id = trackNumber(m_reader, header);
        track.matrixOffset = header.content + offset;
        track.matrix = *matrixIn(bytes);
        constexpr double one = 65536;
        track.width = static_cast<double>(readBigEndian(bytes.substr(matrixSize, 4))) / one;
        track.height = static_cast<double>(readBigEndian(bytes.substr(matrixSize + 4))) / one;
        return track;
    }

    /// Records the tracks of the titles and pictures of chapters.
    void readReferences(const Box& references)
    {
        const auto chapters = m_reader.onlyBoxIn(references, "chap");
        const std::string ids = chapters ? m_reader.contentOf(*chapters, 4 * mostEntriesRead) : "";
        for (std::size_t place = 0; place + 4 <= ids.size(); place += 4)
            m_chapterIds.insert(static_cast<std::uint32_t>(readBigEndian(ids.substr(place, 4))));
    }

    void readSamples(const Box& media, VideoTrack& video)
    {
        video.hasFrameRate = m_isFragmented;
        const auto information = m_reader.onlyBoxIn(media, "minf");
        const auto table = information ? m_reader.onlyBoxIn(*information, "stbl") : std::nullopt;
        const auto lists = table ? m_reader.boxesIn(*table) : std::nullopt;
        if (!lists)
            return;
        if (const Box* durations = onlyBox(*lists, "stts"))
            video.hasFrameRate = video.hasFrameRate || haveDuration(*durations);
        const Box* formats = onlyBox(*lists, "stsd");
        if (formats != nullptr)
            video.formats = *formats;
        video.firstSample = firstChunkIn(*lists);
        const Box* sizes = onlyBox(*lists, "stsz");
        sizes = sizes != nullptr ? sizes : onlyBox(*lists, "stz2");
        if (formats != nullptr && sizes != nullptr && !m_isFragmented)
            video.isCover = isOnePicture(*formats, *sizes);
    }

    /// The first entry of "stco" or "co64"; 0 if there is none.
    FileOffset firstChunkIn(const std::vector<Box>& lists) const
    {
        const Box* longOffsets = onlyBox(lists, "co64");
        const Box* offsets = longOffsets != nullptr ? longOffsets : onlyBox(lists, "stco");
        if (offsets == nullptr)
            return 0;
        const std::size_t size = longOffsets != nullptr ? 8 : 4;
        return static_cast<FileOffset>(readBigEndian(m_reader.contentOf(*offsets, size, entriesOffset)));
    }

    /// Whether a sample has a duration. Entries consist of a number of samples and their duration. Reads the
    /// first 64 entries.
    bool haveDuration(const Box& durations) const
    {
        constexpr std::size_t entrySize = 8;
        const std::string entries = m_reader.contentOf(durations, entrySize * mostEntriesRead, entriesOffset);
        for (std::size_t place = 0; place + entrySize <= entries.size(); place += entrySize) {
            if (readBigEndian(entries.substr(place, 4)) > 0
                && readBigEndian(entries.substr(place + 4, 4)) > 0)
                return true;
        }
        return false;
    }

    /// Whether the track is a cover: one sample in a picture format. "mp4v" is the format of MPEG-4 video and
    /// of JPEG and PNG pictures; MPEG-4 videos of one frame are rare.
    bool isOnePicture(const Box& formats, const Box& sizes) const
    {
        const std::string format = m_reader.contentOf(formats, 4, entriesOffset + 4);
        return readBigEndian(m_reader.contentOf(sizes, 4, sampleCountOffset)) <= 1
            && (format == "jpeg" || format == "png " || format == "mp4v");
    }

    BoxReader m_reader;
    Movie m_movie;
    std::string m_problem;
    std::uint64_t m_timeScale = 0;
    bool m_isFragmented = false;
    std::set<std::uint32_t> m_chapterIds;
};

/// The track whose tag "rotate" the application reads; it can be that of chapter pictures.
const VideoTrack& taggedVideo(const Movie& movie)
{
    const auto first = std::find_if(
        movie.videos.begin(), movie.videos.end(), [](const VideoTrack& video) { return video.hasFrameRate; });
    return first != movie.videos.end() ? *first : movie.videos.front();
}

} // namespace

std::optional<Movie> readMovie(int file)
{
    std::string problem;
    return readMovie(file, problem);
}

std::optional<Movie> readMovie(int file, std::string& problem)
{
    MovieReader reader(file);
    auto movie = reader.read();
    problem = reader.problem();
    return movie;
}

std::uint32_t trackNumber(const BoxReader& reader, const Box& header)
{
    const auto version = knownVersion(reader, header);
    if (!version)
        return 0;
    const FileOffset offset = trackIdOffset + (*version == 1 ? twoLongerTimes : 0);
    return static_cast<std::uint32_t>(readBigEndian(reader.contentOf(header, 4, offset)));
}

bool isCompleteMovie(int file)
{
    const auto movie = readMovie(file);
    return movie && !movie->videos.empty();
}

const VideoTrack& mainVideo(const Movie& movie)
{
    const auto film = std::find_if(movie.videos.begin(), movie.videos.end(),
        [](const VideoTrack& video) { return video.hasFrameRate && !video.isCover; });
    return film != movie.videos.end() ? *film : taggedVideo(movie);
}

Orientation orientationOf(const Movie& movie)
{
    const DisplayMatrix tagged = combined(taggedVideo(movie).matrix, movie.matrix);
    const DisplayMatrix shown = combined(mainVideo(movie).matrix, movie.matrix);
    return {keepsShapeAndSize(tagged) ? rotationTag(tagged) : 0, withoutScale(shown)};
}

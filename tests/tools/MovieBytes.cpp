// SPDX-License-Identifier: MIT
#include "tests/tools/MovieBytes.h"

namespace tarnwell::test
{

std::string bigEndian(std::uint64_t number, int bytes)
{
    constexpr int bytesOfNumber = sizeof number; // zero-extended
    std::string text;
    for (int place = bytes - 1; place >= 0; --place)
        text += place < bytesOfNumber ? static_cast<char>(number >> (8 * place) & 0xFFU) : '\0';
    return text;
}

std::string box(const std::string& type, const std::string& content)
{
    return bigEndian(content.size() + 8, 4) + type + content;
}

std::string longBox(const std::string& type, const std::string& content)
{
    return bigEndian(1, 4) + type + bigEndian(content.size() + 16, 8) + content;
}

std::string numbers(const std::vector<std::int64_t>& values)
{
    std::string bytes;
    for (const auto value : values)
        bytes += bigEndian(static_cast<std::uint64_t>(value) & 0xFFFFFFFFU, 4);
    return bytes;
}

std::vector<std::int64_t> matrixNine(double a, double b, double c, double d, int right, int down)
{
    const auto number = [](double value) { return static_cast<std::int64_t>(value * matrixOne); };
    return {number(a), number(b), 0, number(c), number(d), 0, number(right), number(down), lastOne};
}

std::string fileType(const std::string& brand)
{
    return box("ftyp", brand + bigEndian(512, 4) + "isommp41");
}

std::string movieHeader(int version, const std::vector<std::int64_t>& matrix)
{
    const int timeSize = version == 1 ? 8 : 4;
    std::string content = bigEndian(static_cast<std::uint64_t>(version), 1) + bigEndian(0, 3); // and flags
    content += bigEndian(1, timeSize) + bigEndian(2, timeSize); // created, modified
    content += bigEndian(1000, 4) + bigEndian(4000, timeSize); // time scale, duration
    content += bigEndian(65536, 4) + bigEndian(256, 2) + bigEndian(0, 10); // speed, volume
    return box("mvhd", content + numbers(matrix) + bigEndian(0, 24) + bigEndian(3, 4));
}

std::string movieBox(const std::string& tracks)
{
    return box("moov", movieHeader() + tracks);
}

std::string trackHeader(const TrackBytes& bytes)
{
    const int timeSize = bytes.version == 1 ? 8 : 4;
    std::string content = bigEndian(static_cast<std::uint64_t>(bytes.version), 1) + bigEndian(7, 3); // flags
    content += bigEndian(1, timeSize) + bigEndian(2, timeSize); // created, modified
    content += bigEndian(bytes.id, 4) + bigEndian(0, 4) + bigEndian(4000, timeSize); // duration
    content += bigEndian(0, 8) + bigEndian(0, 8); // layer and volume
    content += numbers(bytes.matrix);
    content += bigEndian(static_cast<std::uint64_t>(bytes.width) << 16U, 4);
    return box("tkhd", content + bigEndian(static_cast<std::uint64_t>(bytes.height) << 16U, 4));
}

std::string track(const std::string& handler, const TrackBytes& bytes)
{
    const auto list = [](const std::string& type, const std::string& entries) {
        return box(type, bigEndian(0, 4) + bigEndian(1, 4) + entries);
    };
    const auto count = static_cast<std::uint64_t>(bytes.samples);
    const std::string table = list("stsd", box(bytes.format, std::string(78, '\0')))
        + list("stts", bigEndian(count, 4) + bigEndian(static_cast<std::uint64_t>(bytes.sampleDuration), 4))
        + box("stsz", bigEndian(0, 4) + bigEndian(1, 4) + bigEndian(count, 4));
    const std::string handlerBox
        = box("hdlr", bigEndian(0, 8) + handler + bigEndian(0, 12) + std::string("name", 5));
    const std::string media
        = box("mdia", box("mdhd", bigEndian(0, 24)) + handlerBox + box("minf", box("stbl", table)));
    std::string references;
    for (const auto id : bytes.chapters)
        references += bigEndian(id, 4);
    return box("trak",
        trackHeader(bytes) + box("edts", "")
            + (references.empty() ? "" : box("tref", box("chap", references))) + media);
}

std::string smallMovie()
{
    return fileType() + box("mdat", std::string(100, 'd'))
        + movieBox(track("vide") + track("soun", {0, 0, 0}));
}

std::string movieOf(std::size_t dataSize)
{
    std::string data;
    data.reserve(dataSize + 8);
    for (std::uint64_t number = 0; data.size() < dataSize; ++number)
        data += bigEndian(number, 8);
    data.resize(dataSize);
    return fileType() + movieBox(track("vide")) + box("mdat", data);
}

std::string matrixIn(const std::string& file, std::size_t header)
{
    constexpr std::size_t boxHeader = 8;
    constexpr std::size_t matrixSize = 36;
    const bool isLong = file[header + boxHeader] == 1;
    return file.substr(header + boxHeader + (isLong ? 52 : 40), matrixSize);
}

} // namespace tarnwell::test

// SPDX-License-Identifier: MIT
#include "tools/JpegCheck.h"

#include <array>
#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr off_t largestFile = 512 << 20; // bytes
constexpr std::size_t blockSize = 64; // values in a quantisation table
constexpr std::size_t tableCount = 4;
constexpr std::size_t longestCode = 16; // bits
constexpr int largestSide = 65500; // of decoders; the format itself allows 65535

enum Marker : std::uint8_t {
    BaselineFrame = 0xC0,
    HuffmanTables = 0xC4,
    FirstRestart = 0xD0,
    Start = 0xD8,
    End = 0xD9,
    Scan = 0xDA,
    QuantisationTables = 0xDB,
    RestartInterval = 0xDD,
    FirstApplication = 0xE0,
    LastApplication = 0xEF,
    Comment = 0xFE
};

struct Component {
    int identifier = 0;
    std::size_t quantisationTable = 0;
};

/// Reads the segments in their order. Every function returns false where a decoder could refuse the picture.
class JpegReader
{
public:
    explicit JpegReader(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    bool read()
    {
        if (byte() != 0xFF || byte() != Start)
            return false;
        for (;;) {
            const int marker = nextMarker();
            const std::string_view content = segment();
            if (!m_isWhole)
                return false;
            if (marker == Scan)
                return readScan(content) && isDataToEnd();
            if (!readSegment(marker, content))
                return false;
        }
    }

private:
    int byte()
    {
        if (m_position < m_bytes.size())
            return static_cast<std::uint8_t>(m_bytes[m_position++]);
        m_isWhole = false;
        return 0;
    }

    /// The code of the marker at this place; fill bytes may precede it.
    int nextMarker()
    {
        m_isWhole = byte() == 0xFF && m_isWhole;
        int code = 0xFF;
        while (code == 0xFF && m_isWhole)
            code = byte();
        return code;
    }

    /// The content of the segment whose length stands at this place.
    std::string_view segment()
    {
        const int high = byte();
        const int length = high << 8 | byte();
        const auto size = static_cast<std::size_t>(length) - 2;
        if (!m_isWhole || length < 2 || size > m_bytes.size() - m_position) {
            m_isWhole = false;
            return {};
        }
        m_position += size;
        return m_bytes.substr(m_position - size, size);
    }

    bool readSegment(int marker, std::string_view content)
    {
        if (marker == QuantisationTables)
            return readQuantisationTables(content);
        if (marker == HuffmanTables)
            return readHuffmanTables(content);
        if (marker == BaselineFrame)
            return readFrame(content);
        if (marker == RestartInterval)
            return content.size() == 2;
        return marker == Comment || (marker >= FirstApplication && marker <= LastApplication);
    }

    static int at(std::string_view content, std::size_t place)
    {
        return static_cast<std::uint8_t>(content[place]);
    }

    bool readQuantisationTables(std::string_view content)
    {
        constexpr std::size_t size = 1 + blockSize;
        for (; content.size() >= size; content.remove_prefix(size)) {
            const int number = at(content, 0); // with the precision in the upper half: 0 for 8 bits
            if (number >= static_cast<int>(tableCount))
                return false;
            m_hasQuantisationTable.at(static_cast<std::size_t>(number)) = true;
        }
        return content.empty();
    }

    /// A table counts the codes of each length, and lists their symbols. The codes must fit.
    bool readHuffmanTables(std::string_view content)
    {
        constexpr std::size_t headSize = 1 + longestCode;
        while (content.size() >= headSize) {
            const auto kind = static_cast<std::size_t>(at(content, 0) >> 4);
            const auto number = static_cast<std::size_t>(at(content, 0) & 0xF);
            std::size_t count = 0;
            int free = 1; // codes of the present length that are not taken
            for (std::size_t length = 1; length <= longestCode; ++length) {
                free = 2 * free - at(content, length);
                count += static_cast<std::size_t>(at(content, length));
                if (free < 0)
                    return false;
            }
            if (kind > 1 || number >= tableCount || count > 256 || count > content.size() - headSize)
                return false;
            if (kind == 0 && !areDifferences(content.substr(headSize, count)))
                return false;
            m_hasHuffmanTable.at(kind).at(number) = true;
            content.remove_prefix(headSize + count);
        }
        return content.empty();
    }

    /// Symbols of DC tables are numbers of bits.
    static bool areDifferences(std::string_view symbols)
    {
        constexpr int mostBits = 11; // in baseline pictures
        for (std::size_t place = 0; place < symbols.size(); ++place) {
            if (at(symbols, place) > mostBits)
                return false;
        }
        return true;
    }

    /// One component (grey) or three (colours), of 8 bits.
    bool readFrame(std::string_view content)
    {
        constexpr std::size_t headSize = 6;
        constexpr std::size_t componentSize = 3;
        if (m_componentCount != 0 || content.size() < headSize)
            return false;
        const int height = at(content, 1) << 8 | at(content, 2);
        const int width = at(content, 3) << 8 | at(content, 4);
        m_componentCount = static_cast<std::size_t>(at(content, 5));
        if (at(content, 0) != 8 || (m_componentCount != 1 && m_componentCount != 3)
            || content.size() != headSize + componentSize * m_componentCount || height < 1
            || height > largestSide || width < 1 || width > largestSide
            || static_cast<long long>(width) * height > mostStillPixels)
            return false;
        for (std::size_t index = 0; index < m_componentCount; ++index) {
            const std::size_t place = headSize + componentSize * index;
            const int across = at(content, place + 1) >> 4;
            const int down = at(content, place + 1) & 0xF;
            const int table = at(content, place + 2);
            if (!isSampling(across) || !isSampling(down) || table >= static_cast<int>(tableCount))
                return false;
            m_components.at(index) = {at(content, place), static_cast<std::size_t>(table)};
            m_blocks += across * down;
        }
        return m_componentCount == 1 || areDifferent(m_components);
    }

    static bool areDifferent(const std::array<Component, 3>& components)
    {
        return components[0].identifier != components[1].identifier
            && components[0].identifier != components[2].identifier
            && components[1].identifier != components[2].identifier;
    }

    /// The format also knows 3, which not all decoders can scale up.
    static bool isSampling(int factor) { return factor == 1 || factor == 2; }

    /// The scan holds all components in their order, and all the tables that it names have been there.
    bool readScan(std::string_view content) const
    {
        if (m_componentCount == 0 || content.size() != 4 + 2 * m_componentCount
            || at(content, 0) != static_cast<int>(m_componentCount))
            return false;
        constexpr int mostBlocks = 10; // in a unit of several components
        if (m_componentCount > 1 && m_blocks > mostBlocks)
            return false;
        for (std::size_t index = 0; index < m_componentCount; ++index) {
            const Component& component = m_components.at(index);
            const auto differences = static_cast<std::size_t>(at(content, 2 + 2 * index) >> 4);
            const auto others = static_cast<std::size_t>(at(content, 2 + 2 * index) & 0xF);
            if (at(content, 1 + 2 * index) != component.identifier
                || !m_hasQuantisationTable.at(component.quantisationTable) || differences >= tableCount
                || others >= tableCount || !m_hasHuffmanTable[0].at(differences)
                || !m_hasHuffmanTable[1].at(others))
                return false;
        }
        const std::string_view end = content.substr(content.size() - 3);
        return at(end, 0) == 0 && at(end, 1) == static_cast<int>(blockSize) - 1 && at(end, 2) == 0;
    }

    /// Whether nothing but entropy-coded data and restart markers comes before the end marker, and nothing
    /// after it.
    bool isDataToEnd()
    {
        for (;;) {
            const auto mark = m_bytes.find('\xFF', m_position);
            if (mark == std::string_view::npos || mark + 1 >= m_bytes.size())
                return false;
            const int code = at(m_bytes, mark + 1);
            m_position = mark + (code == 0xFF ? 1 : 2);
            if (code == End)
                return m_position == m_bytes.size();
            if (code != 0 && code != 0xFF && (code < FirstRestart || code >= Start))
                return false;
        }
    }

    std::string_view m_bytes;
    std::size_t m_position = 0;
    bool m_isWhole = true;
    std::array<bool, tableCount> m_hasQuantisationTable = {};
    std::array<std::array<bool, tableCount>, 2> m_hasHuffmanTable = {};
    std::array<Component, 3> m_components;
    std::size_t m_componentCount = 0;
    int m_blocks = 0;
};

} // namespace

bool isPlainJpeg(std::string_view bytes)
{
    return JpegReader(bytes).read();
}

bool isPlainJpeg(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0 || status.st_size > largestFile)
        return false;
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count
            = ::pread(file, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return isPlainJpeg(std::string_view(bytes));
}

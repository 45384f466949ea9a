// SPDX-License-Identifier: MIT
#include "app/DroppedFiles.h"

#include "tests/support/SilentStop.h"

#include <QMetaType>
#include <QMimeData>
#include <QStringList>
#include <QSysInfo>
#include <QUrl>
#include <QVariant>

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <gio/gio.h>
#include <optional>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

using Path = std::optional<std::string>;

/// A list whose bytes are another program's: one that is set in this program is put into Qt's own form.
class ForeignList : public QMimeData
{
public:
    explicit ForeignList(const QByteArray& uriList)
        : m_uriList(uriList)
    {
    }

    QStringList formats() const override { return {QStringLiteral("text/uri-list")}; }

protected:
    QVariant retrieveData(const QString& mimeType, QMetaType type) const override
    {
        return mimeType == formats().first() ? QVariant(m_uriList) : QMimeData::retrieveData(mimeType, type);
    }

private:
    QByteArray m_uriList;
};

std::optional<FileNameList> listOf(const QByteArray& uriList)
{
    return fileNameList(ForeignList(uriList));
}

/// The path in a list with one line.
Path pathOf(const QByteArray& uri)
{
    const auto names = listOf(uri);
    if (!names || names->size() != 1) {
        ADD_FAILURE() << "not one entry: " << uri.toStdString();
        return std::nullopt;
    }
    return names->front();
}

} // namespace

struct Address {
    const char* description;
    const char* uri;
    Path path;
};

void PrintTo(const Address& address, std::ostream* stream)
{
    *stream << address.description;
}

class AddressTest : public testing::TestWithParam<Address>
{
};

TEST_P(AddressTest, standsForThisPath)
{
    EXPECT_EQ(pathOf(GetParam().uri), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(local, AddressTest,
    testing::Values(Address{"withoutHost", "file:///tmp/clip.mp4", "/tmp/clip.mp4"},
        Address{"onLocalhost", "file://localhost/tmp/clip.mp4", "/tmp/clip.mp4"},
        Address{"withoutAuthority", "file:/tmp/clip.mp4", "/tmp/clip.mp4"},
        Address{"schemeInCapitals", "FILE:///tmp/Clip.MP4", "/tmp/Clip.MP4"},
        Address{"blanksAsTheyAre", "file:///tmp/my clip.mp4", "/tmp/my clip.mp4"},
        Address{"blanksEncoded", "file:///tmp/my%20clip%20", "/tmp/my clip "},
        Address{"encodedPercentSign", "file:///tmp/100%25%2520", "/tmp/100%%20"},
        Address{"otherScriptsEncoded", "file:///tmp/Gr%C3%BC%c3%9fe",
            "/tmp/Gr\xc3\xbc\xc3\x9f"
            "e"},
        Address{"otherScriptsAsTheyAre",
            "file:///tmp/Gr\xc3\xbc\xc3\x9f"
            "e",
            "/tmp/Gr\xc3\xbc\xc3\x9f"
            "e"},
        Address{"bytesThatAreNoText", "file:///tmp/%FF%fe%80", "/tmp/\xff\xfe\x80"},
        Address{"lineFeedEncoded", "file:///tmp/a%0D%0Ab", "/tmp/a\r\nb"},
        Address{"signsOfAddresses", "file:///tmp/a%23b%3Fc;d=e&f", "/tmp/a#b?c;d=e&f"},
        Address{"twoSlashesInThePath", "file:///tmp//clip.mp4", "/tmp//clip.mp4"},
        Address{"parentFolders", "file:///tmp/../etc/x", "/tmp/../etc/x"},
        Address{"theRoot", "file:///", "/"}),
    [](const auto& row) { return std::string(row.param.description); });

INSTANTIATE_TEST_SUITE_P(refused, AddressTest,
    testing::Values(Address{"ofAnotherMachine", "file://elsewhere.example/tmp/clip.mp4", {}},
        Address{"ofAnotherScheme", "http://localhost/tmp/clip.mp4", {}},
        Address{"ofASecureScheme", "https://example.org/clip.mp4", {}},
        Address{"ofAFileServerThatIsNotMounted", "smb://server/share/clip.mp4", {}},
        Address{"ofAFileServerWithAZeroByte", "smb://server/share/%00", {}},
        Address{"withAZeroByte", "file:///tmp/clip.mp4%00.txt", {}},
        Address{"thatIsAZeroByte", "file:///%00", {}}, Address{"withoutScheme", "/tmp/clip.mp4", {}},
        Address{"withARelativePath", "file:clip.mp4", {}}, Address{"withAHostOnly", "file://localhost", {}},
        Address{"withNothingBehindTheScheme", "file:", {}},
        Address{"withNothingBehindTheSlashes", "file://", {}}, Address{"thatIsAnyText", "hello", {}}),
    [](const auto& row) { return std::string(row.param.description); });

TEST(DroppedFilesTest, anAddressOnThisMachinesNameIsLocal)
{
    EXPECT_EQ(
        pathOf("file://" + QSysInfo::machineHostName().toUtf8() + "/tmp/clip.mp4"), Path("/tmp/clip.mp4"));
    EXPECT_EQ(pathOf("file://x" + QSysInfo::machineHostName().toUtf8() + "/tmp/clip.mp4"), Path());
}

// GIO maps the scheme as it maps those of file servers that GVfs has mounted.
TEST(DroppedFilesTest, anAddressOnAMountedFileServerHasThePathOfTheMount)
{
    const GVfsFileLookupFunc toMount = [](GVfs*, const char* uri, gpointer) {
        return g_file_new_build_filename("/mount", uri + std::strlen("server://"), nullptr);
    };
    ASSERT_TRUE(g_vfs_register_uri_scheme(
        g_vfs_get_default(), "server", toMount, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(pathOf("server://host/clip.mp4"), Path("/mount/host/clip.mp4"));
    EXPECT_EQ(pathOf("server://host/clip.mp4%00"), Path());
    EXPECT_TRUE(g_vfs_unregister_uri_scheme(g_vfs_get_default(), "server"));
    EXPECT_EQ(pathOf("server://host/clip.mp4"), Path());
}

TEST(DroppedFilesTest, everyLineIsAnEntryInItsOrder)
{
    const FileNameList expected = {"/b", std::nullopt, "/a"};
    EXPECT_EQ(listOf("file:///b\r\nhttp://x/\r\nfile:///a\r\n"), expected)
        << "lines as the standard has them";
    EXPECT_EQ(listOf("file:///b\nhttp://x/\nfile:///a\n"), expected) << "line feeds alone";
    EXPECT_EQ(listOf("file:///b\nhttp://x/\nfile:///a"), expected) << "no end of the last line";
}

TEST(DroppedFilesTest, commentsAndEmptyLinesAreNoEntries)
{
    EXPECT_EQ(listOf("#file:///c\r\n\r\n# two files\r\nfile:///a\r\n\r\nfile:///b#c\r\n"),
        (FileNameList{"/a", "/b#c"}));
}

TEST(DroppedFilesTest, theAddressesOfAToolkitAreEntries)
{
    QMimeData data;
    data.setUrls(
        {QUrl::fromLocalFile(QStringLiteral("/tmp/my clip ä%.mp4")), QUrl(QStringLiteral("http://x/y"))});
    EXPECT_EQ(fileNameList(data), (FileNameList{"/tmp/my clip ä%.mp4", std::nullopt}));
}

TEST(DroppedFilesTest, aDragWithoutAnEntryCarriesNoList)
{
    for (const char* uriList : {"", "\r\n", "\n\n", "#file:///a\r\n", " \t\r\n"})
        EXPECT_EQ(listOf(uriList), std::nullopt) << uriList;
}

TEST(DroppedFilesTest, aDragOfAnotherTypeCarriesNoList)
{
    QMimeData data;
    EXPECT_EQ(fileNameList(data), std::nullopt);
    data.setText(QStringLiteral("file:///tmp/clip.mp4"));
    data.setData(QStringLiteral("application/x-files"), "file:///tmp/clip.mp4");
    EXPECT_EQ(fileNameList(data), std::nullopt);
}

TEST(DroppedFilesTest, onlyTheFirstEntryCounts)
{
    EXPECT_EQ(firstFile({"/a", "/b", std::nullopt}), Path("/a"));
    EXPECT_EQ(firstFile({std::nullopt, "/b"}), Path());
}

TEST(DroppedFilesDeathTest, aListWithoutAnEntryStopsTheProgram)
{
    EXPECT_SILENT_STOP(firstFile({}));
}

} // namespace tarnwell::test

// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwell::test
{

class BundleTest : public testing::Test
{
protected:
    BundleTest()
    {
        for (const auto* name : {"bin", "libexec/tarnwell", "share/tarnwell"})
            std::filesystem::create_directories(m_folder.path() + name);
    }

    void put(const std::string& name) { writeFile(m_folder.path() + name, "a resource"); }

    /// Whether the two paths lead to the same file; the bundle's own go by way of "..".
    void expectFound(const std::optional<std::string>& path, const std::string& name)
    {
        ASSERT_TRUE(path.has_value());
        EXPECT_EQ(std::filesystem::canonical(*path), std::filesystem::canonical(m_folder.path() + name));
    }

    void makeFolder(const std::string& name) { std::filesystem::create_directory(m_folder.path() + name); }

    Bundle bundle() const { return Bundle(m_folder.path() + "bin"); }

private:
    TemporaryDirectory m_folder;
};

TEST_F(BundleTest, aResourceBesideTheExecutableIsFound)
{
    put("bin/sniffer");
    expectFound(bundle().pathForResource("sniffer"), "bin/sniffer");
}

TEST_F(BundleTest, aToolInItsOwnFolderIsFound)
{
    put("libexec/tarnwell/sniffer");
    expectFound(bundle().pathForResource("sniffer"), "libexec/tarnwell/sniffer");
}

TEST_F(BundleTest, aSharedResourceIsFound)
{
    put("share/tarnwell/sniffer");
    expectFound(bundle().pathForResource("sniffer"), "share/tarnwell/sniffer");
}

TEST_F(BundleTest, anotherProgramOfThatNameBesideTheExecutableComesLast)
{
    put("bin/sniffer");
    put("share/tarnwell/sniffer");
    expectFound(bundle().pathForResource("sniffer"), "share/tarnwell/sniffer");
}

TEST_F(BundleTest, theToolsFolderComesBeforeTheSharedOne)
{
    put("libexec/tarnwell/sniffer");
    put("share/tarnwell/sniffer");
    expectFound(bundle().pathForResource("sniffer"), "libexec/tarnwell/sniffer");
}

TEST_F(BundleTest, aMissingResourceIsNotFound)
{
    put("bin/creator");
    EXPECT_FALSE(bundle().pathForResource("sniffer"));
}

TEST_F(BundleTest, aResourceIsFoundByItsWholeNameOnly)
{
    put("bin/sniffer.exe");
    EXPECT_FALSE(bundle().pathForResource("sniffer"));
}

TEST_F(BundleTest, aFolderOfThatNameIsNoResource)
{
    makeFolder("bin/sniffer");
    EXPECT_FALSE(bundle().pathForResource("sniffer"));
}

TEST_F(BundleTest, aFolderOfThatNameDoesNotHideAResourceFurtherOn)
{
    makeFolder("bin/sniffer");
    put("libexec/tarnwell/sniffer");
    expectFound(bundle().pathForResource("sniffer"), "libexec/tarnwell/sniffer");
}

TEST_F(BundleTest, anEmptyNameIsNoResource)
{
    EXPECT_FALSE(bundle().pathForResource(""));
}

TEST_F(BundleTest, aPictureIsFoundWithoutItsExtension)
{
    put("share/tarnwell/poster.png");
    expectFound(bundle().pathForImageResource("poster"), "share/tarnwell/poster.png");
}

TEST_F(BundleTest, aMissingPictureIsNotFound)
{
    put("share/tarnwell/poster");
    EXPECT_FALSE(bundle().pathForImageResource("poster"));
}

TEST_F(BundleTest, anEmptyFolderHoldsNothing)
{
    EXPECT_FALSE(Bundle(std::string()).pathForResource("no such resource"));
}

TEST_F(BundleTest, theBundleOfTheProgramStandsAroundItsExecutable)
{
    const auto own = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(Bundle::main().pathForResource(own.filename().string()), own.string());
}

} // namespace tarnwell::test

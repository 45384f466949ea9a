// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

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

    /// Creates a file, or a folder if the name ends in "/".
    void create(const std::string& name)
    {
        if (name.ends_with('/'))
            std::filesystem::create_directory(m_folder.path() + name);
        else
            writeFile(m_folder.path() + name, "a resource");
    }

    /// Compares files, because the bundle's paths contain "..". An empty `name` expects no path.
    void expectFound(const std::optional<std::string>& path, const std::string& name)
    {
        ASSERT_EQ(path.has_value(), !name.empty());
        if (path) {
            EXPECT_EQ(std::filesystem::canonical(*path), std::filesystem::canonical(m_folder.path() + name));
        }
    }

    Bundle bundle() const { return Bundle(m_folder.path() + "bin"); }

private:
    TemporaryDirectory m_folder;
};

struct ResourceCase {
    std::string name;
    std::vector<std::string> present;
    std::string found; // by the name "sniffer"
};

class BundleResourceTest : public BundleTest, public testing::WithParamInterface<ResourceCase>
{
};

TEST_P(BundleResourceTest, isTheFirstFileOfThatName)
{
    for (const auto& name : GetParam().present)
        create(name);
    expectFound(bundle().pathForResource("sniffer"), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Files, BundleResourceTest,
    testing::Values(ResourceCase{"besideTheExecutable", {"bin/sniffer"}, "bin/sniffer"},
        ResourceCase{"amongTheTools", {"libexec/tarnwell/sniffer"}, "libexec/tarnwell/sniffer"},
        ResourceCase{"shared", {"share/tarnwell/sniffer"}, "share/tarnwell/sniffer"},
        ResourceCase{"sharedBeforeTheExecutablesFolder", {"bin/sniffer", "share/tarnwell/sniffer"},
            "share/tarnwell/sniffer"},
        ResourceCase{"toolsBeforeShared", {"share/tarnwell/sniffer", "libexec/tarnwell/sniffer"},
            "libexec/tarnwell/sniffer"},
        ResourceCase{"missing", {"bin/creator"}, ""}, ResourceCase{"longerName", {"bin/sniffer.exe"}, ""},
        ResourceCase{"folder", {"bin/sniffer/"}, ""},
        ResourceCase{"folderBeforeAFile", {"libexec/tarnwell/sniffer/", "bin/sniffer"}, "bin/sniffer"}),
    [](const auto& row) { return row.param.name; });

TEST_F(BundleTest, anEmptyNameIsNoResource)
{
    EXPECT_FALSE(bundle().pathForResource(""));
}

TEST_F(BundleTest, aPictureIsFoundWithoutItsExtension)
{
    create("share/tarnwell/poster.png");
    expectFound(bundle().pathForImageResource("poster"), "share/tarnwell/poster.png");
}

TEST_F(BundleTest, aMissingPictureIsNotFound)
{
    create("share/tarnwell/poster");
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

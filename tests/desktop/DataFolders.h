// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <QProcessEnvironment>

#include <filesystem>
#include <string>

namespace tarnwell::test
{

/// Folders of desktop entries for a program that a test starts: it finds the applications that the test adds,
/// and no others.
class DataFolders
{
public:
    QProcessEnvironment environment() const
    {
        auto variables = QProcessEnvironment::systemEnvironment();
        variables.insert(QStringLiteral("XDG_DATA_HOME"), QString::fromStdString(userFolder()));
        variables.insert(QStringLiteral("XDG_DATA_DIRS"), QString::fromStdString(systemFolder()));
        return variables;
    }

    /// For this process, before its first use of GIO: GIO reads the variables once.
    void setEnvironment() const
    {
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString(userFolder()));
        qputenv("XDG_DATA_DIRS", QByteArray::fromStdString(systemFolder()));
    }

    /// Adds an entry; `keys` are the lines of its main group, and of the groups after it.
    void addUserEntry(const std::string& id, const std::string& keys) const { add(userFolder(), id, keys); }
    void addSystemEntry(const std::string& id, const std::string& keys) const
    {
        add(systemFolder(), id, keys);
    }

    void addSystemMediaType(const std::string& type, const std::string& pattern) const
    {
        const std::string folder = systemFolder() + "/mime";
        std::filesystem::create_directories(folder);
        writeFile(folder + "/globs2", "50:" + type + ":" + pattern + "\n");
    }

    /// The applications for the type, separated by semicolons; the first is the default.
    void setApplications(const std::string& type, const std::string& ids) const
    {
        const std::string line = type + "=" + ids + "\n";
        writeFile(userFolder() + "/applications/mimeapps.list",
            "[Default Applications]\n" + line + "[Added Associations]\n" + line);
    }

private:
    std::string userFolder() const { return m_folder.path() + "user"; }
    std::string systemFolder() const { return m_folder.path() + "system"; }

    static void add(const std::string& folder, const std::string& id, const std::string& keys)
    {
        const std::filesystem::path path = folder + "/applications/" + id;
        std::filesystem::create_directories(path.parent_path());
        writeFile(path, "[Desktop Entry]\nType=Application\n" + keys);
    }

    TemporaryDirectory m_folder;
};

} // namespace tarnwell::test

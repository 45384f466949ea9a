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
        variables.insert(QStringLiteral("XDG_DATA_HOME"), QString::fromStdString(m_folder.path() + "user"));
        variables.insert(QStringLiteral("XDG_DATA_DIRS"), QString::fromStdString(m_folder.path() + "system"));
        return variables;
    }

    /// Adds an entry; `keys` are the lines of its main group, and of the groups after it.
    void addUserEntry(const std::string& id, const std::string& keys) const { add("user/", id, keys); }
    void addSystemEntry(const std::string& id, const std::string& keys) const { add("system/", id, keys); }

private:
    void add(const std::string& where, const std::string& id, const std::string& keys) const
    {
        const std::filesystem::path path = m_folder.path() + where + "applications/" + id;
        std::filesystem::create_directories(path.parent_path());
        writeFile(path, "[Desktop Entry]\nType=Application\n" + keys);
    }

    TemporaryDirectory m_folder;
};

} // namespace tarnwell::test

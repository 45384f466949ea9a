// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <QByteArray>
#include <QtGlobal>

#include <filesystem>
#include <string>

namespace tarnwell::test
{

/// While it lives, the desktop's applications are those that a test adds, and no others.
class DataFolders
{
public:
    DataFolders()
    {
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString(m_folder.path() + "user"));
        qputenv("XDG_DATA_DIRS", QByteArray::fromStdString(m_folder.path() + "system"));
    }

    ~DataFolders()
    {
        restore("XDG_DATA_HOME", m_usualHome);
        restore("XDG_DATA_DIRS", m_usualSystem);
    }

    DataFolders(const DataFolders&) = delete;
    DataFolders& operator=(const DataFolders&) = delete;

    void addUserEntry(const std::string& name, const std::string& text) const { add("user/", name, text); }
    void addSystemEntry(const std::string& name, const std::string& text) const
    {
        add("system/", name, text);
    }

private:
    void add(const std::string& where, const std::string& name, const std::string& text) const
    {
        const std::filesystem::path path = m_folder.path() + where + "applications/" + name;
        std::filesystem::create_directories(path.parent_path());
        writeFile(path, text);
    }

    static void restore(const char* variable, const QByteArray& value)
    {
        if (value.isNull())
            qunsetenv(variable);
        else
            qputenv(variable, value);
    }

    TemporaryDirectory m_folder;
    QByteArray m_usualHome = qgetenv("XDG_DATA_HOME");
    QByteArray m_usualSystem = qgetenv("XDG_DATA_DIRS");
};

} // namespace tarnwell::test

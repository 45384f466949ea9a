// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"

#include <QByteArray>

#include <string>

namespace tarnwell::test
{

/// Sets a separate temporary folder for this process during its lifetime.
class OwnTemporaryFolder
{
public:
    OwnTemporaryFolder();
    ~OwnTemporaryFolder();
    OwnTemporaryFolder(const OwnTemporaryFolder&) = delete;
    OwnTemporaryFolder& operator=(const OwnTemporaryFolder&) = delete;

    /// Without a trailing slash.
    std::string path() const { return m_folder.path().substr(0, m_folder.path().size() - 1); }

private:
    TemporaryDirectory m_folder;
    QByteArray m_earlier;
};

} // namespace tarnwell::test

// SPDX-License-Identifier: MIT
#include "tests/support/OwnTemporaryFolder.h"

namespace tarnwell::test
{

namespace
{

constexpr const char* temporaryFolderVariable = "TMPDIR";

} // namespace

OwnTemporaryFolder::OwnTemporaryFolder()
    : m_earlier(qgetenv(temporaryFolderVariable))
{
    qputenv(temporaryFolderVariable, QByteArray::fromStdString(path()));
}

OwnTemporaryFolder::~OwnTemporaryFolder()
{
    if (m_earlier.isNull())
        qunsetenv(temporaryFolderVariable);
    else
        qputenv(temporaryFolderVariable, m_earlier);
}

} // namespace tarnwell::test

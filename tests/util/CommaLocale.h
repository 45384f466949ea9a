// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"

#include <locale>
#include <string>

namespace tarnwell::test
{

/// During its lifetime the process's C and C++ locale has a decimal comma and groups digits with points.
/// Creates the locale itself, because the system may have none installed.
class CommaLocale
{
public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

private:
    TemporaryDirectory m_folder;
    std::locale m_before;
};

} // namespace tarnwell::test

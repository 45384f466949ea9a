// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"

#include <locale>
#include <string>

namespace tarnwell::test
{

/// While it lives, the process writes numbers with a decimal comma and groups digits with points, as C
/// functions and C++ streams see it. It brings its own locale, so that it needs none of the system's.
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

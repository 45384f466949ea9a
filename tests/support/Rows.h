// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// For the last argument of INSTANTIATE_TEST_SUITE_P: names each test after the field `name` of its row.
inline constexpr auto rowName = [](const auto& row) { return std::string(row.param.name); };

} // namespace tarnwell::test

// SPDX-License-Identifier: MIT
#include "probe/HumanReadable.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarnwell::test
{

namespace
{

struct CountCase {
    std::uint64_t bytes;
    std::string text;
};

} // namespace

class HumanByteCountTest : public testing::TestWithParam<CountCase>
{
};

TEST_P(HumanByteCountTest, isRoundedToItsUnit)
{
    EXPECT_EQ(humanByteCount(GetParam().bytes), GetParam().text);
}

std::string countName(const testing::TestParamInfo<CountCase>& row)
{
    return std::to_string(row.param.bytes);
}

INSTANTIATE_TEST_SUITE_P(Bytes, HumanByteCountTest,
    testing::Values(CountCase{0, "Zero KB"}, CountCase{1, "1 byte"}, CountCase{2, "2 bytes"},
        CountCase{500, "500 bytes"}, CountCase{999, "999 bytes"}),
    countName);

INSTANTIATE_TEST_SUITE_P(Kilobytes, HumanByteCountTest,
    testing::Values(CountCase{1000, "1 KB"}, CountCase{1001, "1 KB"}, CountCase{1499, "1 KB"},
        CountCase{1500, "2 KB"}, CountCase{2499, "2 KB"}, CountCase{2500, "3 KB"}, CountCase{12345, "12 KB"},
        CountCase{999499, "999 KB"}),
    countName);

INSTANTIATE_TEST_SUITE_P(Megabytes, HumanByteCountTest,
    testing::Values(CountCase{999500, "1 MB"}, CountCase{999999, "1 MB"}, CountCase{1000000, "1 MB"},
        CountCase{1049999, "1 MB"}, CountCase{1050000, "1.1 MB"}, CountCase{1149999, "1.1 MB"},
        CountCase{1150000, "1.2 MB"}, CountCase{1950000, "2 MB"}, CountCase{12300000, "12.3 MB"},
        CountCase{12349999, "12.3 MB"}, CountCase{100000000, "100 MB"}, CountCase{999949999, "999.9 MB"}),
    countName);

INSTANTIATE_TEST_SUITE_P(Gigabytes, HumanByteCountTest,
    testing::Values(CountCase{999950000, "1 GB"}, CountCase{1000000000, "1 GB"},
        CountCase{1004999999, "1 GB"}, CountCase{1005000000, "1.01 GB"}, CountCase{1095000000, "1.1 GB"},
        CountCase{1100000000, "1.1 GB"}, CountCase{1234567890, "1.23 GB"}, CountCase{1995000000, "2 GB"},
        CountCase{4294967296, "4.29 GB"}, CountCase{999994999999, "999.99 GB"}),
    countName);

INSTANTIATE_TEST_SUITE_P(Terabytes, HumanByteCountTest,
    testing::Values(CountCase{999995000000, "1 TB"}, CountCase{1000000000000, "1 TB"},
        CountCase{1010000000000, "1.01 TB"}, CountCase{1500000000000, "1.5 TB"},
        CountCase{999994999999999, "999.99 TB"}),
    countName);

INSTANTIATE_TEST_SUITE_P(Petabytes, HumanByteCountTest,
    testing::Values(CountCase{999995000000000, "1 PB"}, CountCase{1000000000000000, "1 PB"},
        CountCase{2050000000000000, "2.05 PB"}, CountCase{999994999999999999, "999.99 PB"}),
    countName);

INSTANTIATE_TEST_SUITE_P(Exabytes, HumanByteCountTest,
    testing::Values(CountCase{999995000000000000, "1 EB"}, CountCase{1000000000000000000, "1 EB"},
        CountCase{1005000000000000000, "1.01 EB"}, CountCase{9223372036854775807, "9.22 EB"},
        CountCase{9223372036854775808U, "9.22 EB"},
        CountCase{std::numeric_limits<std::uint64_t>::max(), "18.45 EB"}),
    countName);

} // namespace tarnwell::test

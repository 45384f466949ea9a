// SPDX-License-Identifier: MIT
#include "tests/util/CommaLocale.h"

#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace tarnwell::test
{

namespace
{

class CommaPunctuation : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

void append(std::string& bytes, std::uint32_t number)
{
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

// Format of glibc's LC_NUMERIC file: magic number, number of entries, offset of each entry, entries. The
// separators occur twice, as strings and as wide characters.
std::string numberForms()
{
    constexpr std::uint32_t mark = 0x20031115U ^ LC_NUMERIC;
    const std::vector<std::string> texts = {",", ".", "\3\3"};
    const std::vector<std::uint32_t> characters = {',', '.'};
    constexpr std::uint32_t count = 6;
    std::string offsets;
    std::string entries;
    constexpr std::uint32_t headLength = (2 + count) * sizeof(std::uint32_t);
    for (const auto& text : texts) {
        append(offsets, headLength + static_cast<std::uint32_t>(entries.size()));
        entries.append(text).append(1, '\0');
    }
    entries.resize((entries.size() + 3) / 4 * 4);
    for (const auto character : characters) {
        append(offsets, headLength + static_cast<std::uint32_t>(entries.size()));
        append(entries, character);
    }
    append(offsets, headLength + static_cast<std::uint32_t>(entries.size()));
    entries.append("UTF-8").append(1, '\0');
    std::string head;
    append(head, mark);
    append(head, count);
    return head + offsets + entries;
}

} // namespace

CommaLocale::CommaLocale()
    : m_before(std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation)))
{
    std::filesystem::create_directory(m_folder.path() + "comma");
    writeFile(m_folder.path() + "comma/LC_NUMERIC", numberForms());
    ::setenv("LOCPATH", m_folder.path().c_str(), 1);
    EXPECT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr) << "the C library does not take the locale";
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

CommaLocale::~CommaLocale()
{
    std::setlocale(LC_NUMERIC, "C");
    ::unsetenv("LOCPATH");
    std::locale::global(m_before);
}

} // namespace tarnwell::test

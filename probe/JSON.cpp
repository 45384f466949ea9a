// SPDX-License-Identifier: MIT
#include "probe/JSON.h"

#include "util/Decimal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace tarnwell
{

namespace
{

std::string decimalText(const nlohmann::json& number)
{
    if (number.is_number_unsigned())
        return std::to_string(number.get<std::uint64_t>());
    if (number.is_number_integer())
        return std::to_string(number.get<std::int64_t>());
    constexpr std::size_t longestShortestText = 32;
    std::array<char, longestShortestText> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), number.get<double>());
    return {text.data(), written.ptr};
}

std::int64_t truncatedNumber(const nlohmann::json& number)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    // Integers are taken as such: a double would round those of more than 53 bits.
    if (number.is_number_unsigned())
        return static_cast<std::int64_t>(std::min(number.get<std::uint64_t>(), largest));
    if (number.is_number_integer())
        return number.get<std::int64_t>();
    return truncated(number.get<double>());
}

} // namespace

JSON::JSON(std::shared_ptr<const nlohmann::json> value)
    : m_value(std::move(value))
{
}

std::variant<JSON, std::string> JSON::parse(std::string_view text)
{
    try {
        return JSON(std::make_shared<const nlohmann::json>(nlohmann::json::parse(text)));
    } catch (const nlohmann::json::exception& error) {
        return std::string(error.what());
    }
}

JSON JSON::operator[](std::string_view member) const
{
    if (!hasMember(member))
        return {};
    // Shares the whole text's lifetime, points at the member.
    return JSON(std::shared_ptr<const nlohmann::json>(m_value, &*m_value->find(member)));
}

JSON JSON::operator[](std::size_t index) const
{
    if (!m_value || !m_value->is_array() || index >= m_value->size())
        return {};
    return JSON(std::shared_ptr<const nlohmann::json>(m_value, &(*m_value)[index]));
}

bool JSON::hasMember(std::string_view member) const
{
    return m_value && m_value->is_object() && m_value->contains(member);
}

bool JSON::isNull() const
{
    return !m_value || m_value->is_null();
}

std::size_t JSON::count() const
{
    return m_value && m_value->is_structured() ? m_value->size() : 0;
}

std::string JSON::text() const
{
    if (isNull())
        return {};
    if (m_value->is_string())
        return m_value->get<std::string>();
    if (m_value->is_boolean())
        return m_value->get<bool>() ? "true" : "false";
    return m_value->is_number() ? decimalText(*m_value) : std::string();
}

double JSON::number() const
{
    if (m_value && m_value->is_string())
        return parseDecimal(m_value->get_ref<const std::string&>()).value_or(0);
    return optionalNumber().value_or(0);
}

std::int64_t JSON::integer() const
{
    if (m_value && m_value->is_number())
        return truncatedNumber(*m_value);
    if (m_value && m_value->is_string()) {
        // Read as an integer where possible: a double would round what has more than 53 bits.
        if (const auto exact = parseInteger(m_value->get_ref<const std::string&>()))
            return *exact;
    }
    return truncated(number());
}

std::optional<double> JSON::optionalNumber() const
{
    if (m_value && m_value->is_number())
        return m_value->get<double>();
    if (m_value && m_value->is_boolean())
        return m_value->get<bool>() ? 1 : 0;
    return std::nullopt;
}

bool JSON::operator==(std::string_view literal) const
{
    return m_value && m_value->is_string() && m_value->get_ref<const std::string&>() == literal;
}

bool JSON::operator==(double literal) const
{
    return m_value && m_value->is_number() && m_value->get<double>() == literal;
}

bool JSON::operator==(bool literal) const
{
    return m_value && m_value->is_boolean() && m_value->get<bool>() == literal;
}

} // namespace tarnwell

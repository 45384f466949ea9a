// SPDX-License-Identifier: MIT
#include "probe/JSON.h"

#include "util/Decimal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarnwell
{

namespace
{

std::string decimalText(const nlohmann::json& number)
{
    return number.is_number_float() ? compactDecimal(number.get<double>()) : number.dump();
}

std::int64_t truncatedNumber(const nlohmann::json& number)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    // Integers are not converted to double, which has only 53 bits.
    if (number.is_number_unsigned())
        return static_cast<std::int64_t>(std::min(number.get<std::uint64_t>(), largest));
    if (number.is_number_integer())
        return number.get<std::int64_t>();
    return truncated(number.get<double>());
}

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largestDouble = std::numeric_limits<double>::max();

// `start` is the position of the opening quotation mark. Returns the position after the closing one.
std::size_t endOfString(std::string_view text, std::size_t start)
{
    std::size_t position = start + 1;
    while (position < text.size() && text[position] != '"')
        position += text[position] == '\\' ? 2 : 1;
    return std::min(position + 1, text.size());
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

// parseDecimal also accepts forms that JSON does not: "01", ".5" and "5.".
bool isJSONNumber(std::string_view token)
{
    const std::size_t first = token.starts_with('-') ? 1 : 0;
    const std::size_t point = token.find('.');
    const auto isDigitAt
        = [token](std::size_t index) { return index < token.size() && isDigit(token[index]); };
    return parseDecimal(token) && isDigitAt(first) && !(token[first] == '0' && isDigitAt(first + 1))
        && (point == std::string_view::npos || isDigitAt(point + 1));
}

// Replaces every number beyond double's range by the largest double of the same sign.
std::string withoutOverflows(std::string_view text)
{
    std::string result;
    for (std::size_t position = 0, end = 0; position < text.size(); position = end) {
        end = position + 1;
        if (text[position] == '"')
            end = endOfString(text, position);
        else if (text[position] == '-' || isDigit(text[position]))
            end = std::min(text.find_first_not_of("0123456789+-.eE", position), text.size());
        const auto token = text.substr(position, end - position);
        if (isJSONNumber(token) && std::isinf(*parseDecimal(token)))
            result += compactDecimal(std::copysign(largestDouble, *parseDecimal(token)));
        else
            result += token;
    }
    return result;
}

// The parser refuses a text with a number beyond double's range, although JSON allows it. Reads such numbers
// as infinities, the largest double itself included.
nlohmann::json parsedWithInfinities(std::string_view text)
{
    return nlohmann::json::parse(withoutOverflows(text),
        [](int /*depth*/, nlohmann::json::parse_event_t event, nlohmann::json& value) {
            using Event = nlohmann::json::parse_event_t;
            if (event == Event::value && value.is_number_float()
                && std::abs(value.get<double>()) == largestDouble)
                value = std::copysign(infinity, value.get<double>());
            return true;
        });
}

nlohmann::json parsedValue(std::string_view text)
{
    try {
        return nlohmann::json::parse(text);
    } catch (const nlohmann::json::out_of_range&) {
        return parsedWithInfinities(text);
    }
}

} // namespace

JSON::JSON(std::shared_ptr<const nlohmann::json> value)
    : m_value(std::move(value))
{
}

std::variant<JSON, std::string> JSON::parse(std::string_view text)
{
    // The parser stops at a NUL byte as if the text ended there.
    if (const auto position = text.find('\0'); position != std::string_view::npos)
        return "NUL byte at position " + std::to_string(position);
    try {
        return JSON(std::make_shared<const nlohmann::json>(parsedValue(text)));
    } catch (const nlohmann::json::exception& error) {
        return std::string(error.what());
    }
}

JSON JSON::part(const nlohmann::json& value) const
{
    return JSON(std::shared_ptr<const nlohmann::json>(m_value, &value));
}

JSON JSON::operator[](std::string_view member) const
{
    if (!m_value || !m_value->is_object())
        return {};
    const auto found = m_value->find(member);
    return found == m_value->end() ? JSON() : part(*found);
}

JSON JSON::operator[](std::size_t index) const
{
    if (!m_value || !m_value->is_array() || index >= m_value->size())
        return {};
    return part((*m_value)[index]);
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
        // Parsed as an integer first: a double has only 53 bits.
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

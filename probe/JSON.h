// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tarnwell
{

/// A value of a parsed JSON text. No read fails: a missing value, or one of another kind, reads as null, ""
/// or 0. Copies share the parsed text. Texts are UTF-8.
class JSON
{
public:
    /// The value null.
    JSON() = default;

    /// Returns the value that the whole text represents, or the description of the error in one line. Numbers
    /// beyond double's range are infinite.
    static std::variant<JSON, std::string> parse(std::string_view text);

    /// The member or element; null if it is missing or the value is of another kind. Look-ups chain.
    JSON operator[](std::string_view member) const;
    JSON operator[](std::size_t index) const;

    /// Whether the value is an object with this member. The member's value may be null.
    bool hasMember(std::string_view member) const;

    bool isNull() const;

    /// Elements of an array, members of an object, otherwise 0.
    std::size_t count() const;

    /// A string unchanged, a number as decimal text (see compactDecimal), a boolean as "true" or "false";
    /// otherwise "".
    std::string text() const;

    /// A number, a string parsed as a decimal number, or a boolean as 1 or 0; otherwise 0.
    double number() const;

    /// The same, truncated. Beyond 64 bits the nearest 64-bit integer.
    std::int64_t integer() const;

    /// A number, or a boolean as 1 or 0. Empty for every other kind, including strings.
    std::optional<double> optionalNumber() const;

    /// Values of different kinds are never equal: the text "90" does not equal the number 90.
    bool operator==(std::string_view literal) const;
    bool operator==(const char* literal) const { return *this == std::string_view(literal); }
    bool operator==(double literal) const;
    bool operator==(bool literal) const;
    bool operator==(std::nullptr_t) const { return isNull(); }

private:
    explicit JSON(std::shared_ptr<const nlohmann::json> value);
    JSON part(const nlohmann::json& value) const;

    std::shared_ptr<const nlohmann::json>
        m_value; // shares ownership of the whole text; nullptr: the value null
};

} // namespace tarnwell

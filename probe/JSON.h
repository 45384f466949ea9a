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

/// A value of a parsed JSON text, read tolerantly: whatever is missing or of another kind than asked for
/// reads as null, "" or 0, and never fails. Copies share the parsed text and are cheap. Texts are UTF-8.
class JSON
{
public:
    /// Null.
    JSON() = default;

    /// The whole text as one value, or the parser's description of what is wrong with it.
    static std::variant<JSON, std::string> parse(std::string_view text);

    /// The member or element; null where there is none or the value is of the wrong kind. Look-ups chain.
    JSON operator[](std::string_view member) const;
    JSON operator[](std::size_t index) const;

    /// Whether an object has the member at all, be its value null.
    bool hasMember(std::string_view member) const;

    bool isNull() const;

    /// Elements of an array, members of an object, otherwise 0.
    std::size_t count() const;

    /// A string as it is, a number as decimal text, a boolean as "true" or "false"; otherwise "".
    std::string text() const;

    /// A number, a string that spells a decimal number, or a boolean as 1 or 0; otherwise 0.
    double number() const;

    /// The same, truncated; beyond 64 bits the nearest integer there is.
    std::int64_t integer() const;

    /// A number, or a boolean as 1 or 0. Absent for every other kind, strings that spell a number included.
    std::optional<double> optionalNumber() const;

    /// Equality with a literal holds between values of one kind only: "90" equals no number.
    bool operator==(std::string_view literal) const;
    bool operator==(const char* literal) const { return *this == std::string_view(literal); }
    bool operator==(double literal) const;
    bool operator==(bool literal) const;
    bool operator==(std::nullptr_t) const { return isNull(); }

private:
    explicit JSON(std::shared_ptr<const nlohmann::json> value);

    std::shared_ptr<const nlohmann::json> m_value; // null: the value is null
};

} // namespace tarnwell

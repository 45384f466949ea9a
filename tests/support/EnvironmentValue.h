// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <string>

namespace tarnwell::test
{

/// Sets a variable of the environment, which the programs that are started inherit, for its lifetime.
class EnvironmentValue
{
public:
    EnvironmentValue(const char* name, const std::string& value)
        : m_name(name)
        , m_earlier(qgetenv(name))
    {
        qputenv(name, QByteArray::fromStdString(value));
    }
    ~EnvironmentValue() { m_earlier.isNull() ? qunsetenv(m_name) : qputenv(m_name, m_earlier); }
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;

private:
    const char* m_name;
    QByteArray m_earlier;
};

} // namespace tarnwell::test

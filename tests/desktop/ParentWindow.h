// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/RealInput.h"
#include "tests/support/WindowTest.h"

#include <QPushButton>
#include <QWidget>

#include <gtest/gtest.h>

namespace tarnwell::test
{

/// A window for sheets: large enough that none of them covers its button, which counts the clicks on it.
class ParentWindow : public QWidget
{
public:
    ParentWindow()
        : m_button(QStringLiteral("Press"), this)
    {
        setWindowTitle(QStringLiteral("Parent"));
        resize(1100, 900);
        m_button.setGeometry(10, 10, 80, 30);
        connect(&m_button, &QPushButton::clicked, this, [this] { ++m_clicks; });
        show();
        waitForKeyboard(*this);
    }

    QPushButton& button() { return m_button; }
    int clicks() const { return m_clicks; }

private:
    QPushButton m_button;
    int m_clicks = 0;
};

} // namespace tarnwell::test

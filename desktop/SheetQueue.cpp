// SPDX-License-Identifier: MIT
#include "desktop/SheetQueue.h"

#include "desktop/InputGate.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QEventLoop>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace tarnwell
{

namespace
{

constexpr std::chrono::seconds longestWaitForScreen(1);
constexpr std::chrono::milliseconds exposureCheckInterval(5);

bool isOnScreen(const QDialog& sheet)
{
    return sheet.windowHandle() != nullptr && sheet.windowHandle()->isExposed();
}

} // namespace

void SheetQueue::begin(QDialog* sheet, Completion completion)
{
    const auto isThis = [sheet](const Entry& entry) { return entry.sheet == sheet; };
    if (std::any_of(m_entries.begin(), m_entries.end(), isThis))
        return;
    m_entries.push_back({sheet, std::move(completion)});
    connect(sheet, &QDialog::finished, this, [this, sheet](int result) { remove(sheet, result); });
    connect(sheet, &QObject::destroyed, this, [this] { remove(nullptr, QDialog::Rejected); });
    if (m_entries.size() == 1)
        showFirst();
}

void SheetQueue::end(QDialog* sheet)
{
    if (sheet->isVisible())
        sheet->done(QDialog::Accepted); // reaches remove by way of finished
    else
        remove(sheet, QDialog::Accepted);
}

void SheetQueue::waitUntilPainted(QDialog* sheet)
{
    if (!sheet->isVisible())
        return;
    const InputGate gate;
    const QDeadlineTimer deadline(longestWaitForScreen);
    while (!isOnScreen(*sheet) && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, static_cast<int>(exposureCheckInterval.count()));
    sheet->repaint();
}

void SheetQueue::showFirst()
{
    if (!m_entries.empty() && !m_entries.front().sheet->isVisible())
        m_entries.front().sheet->open();
}

// `sheet` is null for one that was destroyed: its entry no longer points at anything.
void SheetQueue::remove(QDialog* sheet, int result)
{
    const auto entry = std::find_if(
        m_entries.begin(), m_entries.end(), [sheet](const Entry& each) { return each.sheet == sheet; });
    if (entry == m_entries.end())
        return;
    const Completion completion = std::move(entry->completion);
    m_entries.erase(entry);
    if (sheet != nullptr)
        sheet->disconnect(this);
    showFirst();
    if (completion)
        completion(result);
}

} // namespace tarnwell

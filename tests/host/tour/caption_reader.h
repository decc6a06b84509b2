// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/tour_card.h"

#include <QApplication>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <utility>

/// @file
/// A reader of a tour: reads each card and goes on with Space, also while the tour is in a modal
/// dialog.

namespace corvane
{

class CaptionReader
{
public:
    /// Calls `lookAround` with each card.
    explicit CaptionReader(std::function<void()> lookAround = {})
        : m_lookAround(std::move(lookAround))
    {
        m_look.setInterval(1);
        QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] { look(); });
        m_look.start();
    }

    /// The card that is to be seen; null without one.
    static TourCard *card()
    {
        for (QWidget *top : QApplication::topLevelWidgets())
            if (auto *const card = qobject_cast<TourCard *>(top))
                return card->isVisible() ? card : nullptr;
        return nullptr;
    }

    /// A window that is not blocked by a modal one: it gets what is typed.
    static QWindow *windowWithKeys()
    {
        QWidget *window = QApplication::activeModalWidget();
        for (QWidget *top : QApplication::topLevelWidgets())
            if (window == nullptr && top->isVisible() && top->windowType() != Qt::ToolTip)
                window = top;
        return window->windowHandle();
    }

    QStringList captions; ///< so far

private:
    void look()
    {
        const TourCard *const shown = card();
        if (shown == nullptr || (!captions.isEmpty() && captions.constLast() == shown->text()))
            return;
        captions += shown->text();
        if (m_lookAround)
            m_lookAround();
        // Not from here: a timer does not fire again while its own slot is in another event loop.
        QTimer::singleShot(0, &m_look, [] { QTest::keyClick(windowWithKeys(), Qt::Key_Space); });
    }

    std::function<void()> m_lookAround;
    QTimer m_look;
};

} // namespace corvane

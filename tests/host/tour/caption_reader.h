// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QLabel>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <utility>

/// @file
/// A reader of a tour: reads each caption and goes on with Space, also while the tour is in a modal
/// dialog.

namespace corvane
{

class CaptionReader
{
public:
    /// Calls `lookAround` with each caption.
    explicit CaptionReader(std::function<void()> lookAround = {})
        : m_lookAround(std::move(lookAround))
    {
        m_look.setInterval(1);
        QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] { look(); });
        m_look.start();
    }

    static QLabel *caption()
    {
        for (QWidget *top : QApplication::topLevelWidgets())
            if (auto *const label = qobject_cast<QLabel *>(top))
                return label->isVisible() ? label : nullptr;
        return nullptr;
    }

    QStringList captions; ///< so far

private:
    void look()
    {
        const QLabel *const label = caption();
        if (label == nullptr || (!captions.isEmpty() && captions.constLast() == label->text()))
            return;
        captions += label->text();
        if (m_lookAround)
            m_lookAround();
        // Not from here: a timer does not fire again while its own slot is in another event loop.
        QTimer::singleShot(0, &m_look, [] { QTest::keyClick(windowWithKeys(), Qt::Key_Space); });
    }

    /// A window that is not blocked by a modal one.
    static QWindow *windowWithKeys()
    {
        QWidget *window = QApplication::activeModalWidget();
        for (QWidget *top : QApplication::topLevelWidgets())
            if (window == nullptr && top->isVisible())
                window = top;
        return window->windowHandle();
    }

    std::function<void()> m_lookAround;
    QTimer m_look;
};

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

namespace corvane
{

/// What a card of a tour tells.
struct TourCaption {
    int number = 0; ///< of the step, from 1; 0 for the card at the end
    int count = 0;  ///< of the steps
    QString title;
    QString text;
    QPixmap picture; ///< of a step that is looked at again; else none
};

/// The card that tells people of a step of a tour, with its buttons. It never takes the focus, and
/// what is pressed on it is asked with answerAt(): the tour takes all input itself, since menus and
/// dialogs in its way would take it from the card.
class TourCard : public QFrame
{
    Q_OBJECT

public:
    enum Answer { None, Back, Next, End };

    TourCard();

    /// Shows a caption in a column of the screen: at its top, or at its bottom where a window that is
    /// wider than the screen has room for reaches into the column.
    void show(const TourCaption &caption, const QRect &column, const QRect &window);
    using QFrame::show;

    /// What a click at a place of the screen asks for.
    Answer answerAt(const QPoint &globalPlace) const;

    const QString &text() const { return m_told; }

private:
    QLabel *m_step;
    QLabel *m_text;
    QLabel *m_picture;
    QPushButton *m_back;
    QPushButton *m_next;
    QPushButton *m_end;
    QString m_told;
};

} // namespace corvane

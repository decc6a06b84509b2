// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/tour_card.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace corvane
{

TourCard::TourCard()
    : QFrame(nullptr, Qt::ToolTip | Qt::WindowStaysOnTopHint), m_step(new QLabel),
      m_text(new QLabel), m_picture(new QLabel), m_back(new QPushButton(tr("Back"))),
      m_next(new QPushButton(tr("Next"))), m_end(new QPushButton(tr("End")))
{
    setObjectName(QStringLiteral("tourCard"));
    setAccessibleName(tr("Guided tour"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setAttribute(Qt::WA_ShowWithoutActivating);
    m_step->setObjectName(QStringLiteral("tourStep"));
    m_text->setWordWrap(true);
    m_text->setObjectName(QStringLiteral("tourText"));
    m_picture->setObjectName(QStringLiteral("tourPicture"));
    m_picture->setAlignment(Qt::AlignCenter);
    auto *const keys = new QLabel(tr("Space goes on, Backspace goes back, Escape ends the tour."));
    keys->setWordWrap(true);
    auto *const column = new QVBoxLayout(this);
    column->setSizeConstraint(QLayout::SetMinimumSize);
    column->addWidget(m_step);
    column->addWidget(m_text);
    column->addWidget(m_picture);
    auto *const row = new QHBoxLayout;
    for (QPushButton *button : {m_back, m_next, m_end}) {
        button->setFocusPolicy(Qt::NoFocus);
        button->setObjectName(QStringLiteral("tour") + button->text());
        row->addWidget(button);
    }
    column->addLayout(row);
    column->addWidget(keys);
}

void TourCard::show(const TourCaption &caption, const QRect &column, const QRect &window)
{
    constexpr int gap = 10;
    const bool isEnd = caption.number == 0;
    m_told = caption.text;
    m_step->setText(isEnd ? tr("The end")
                          : tr("Step %1 of %2").arg(caption.number).arg(caption.count));
    m_text->setText(QStringLiteral("<b>%1</b><p>%2</p>")
                        .arg(caption.title.toHtmlEscaped(), caption.text.toHtmlEscaped()));
    m_back->setEnabled(isEnd || caption.number > 1);
    m_next->setVisible(!isEnd);
    setFixedWidth(column.width() - 2 * gap);
    const int inner = width() - 2 * (layout()->contentsMargins().left() + frameWidth());
    m_picture->setVisible(!caption.picture.isNull());
    if (!caption.picture.isNull()) {
        const double scale = caption.picture.devicePixelRatio();
        QPixmap small = caption.picture.scaledToWidth(static_cast<int>(inner * scale),
                                                      Qt::SmoothTransformation);
        small.setDevicePixelRatio(scale);
        m_picture->setPixmap(small);
    }
    // Labels know their height only for a width.
    m_text->setFixedHeight(m_text->heightForWidth(inner));
    layout()->activate();
    resize(width(), sizeHint().height());
    const bool isInTheWay = column.intersects(window);
    move(column.left() + gap, isInTheWay ? column.bottom() - gap - height() : column.top() + gap);
    show();
    raise();
}

TourCard::Answer TourCard::answerAt(const QPoint &globalPlace) const
{
    const std::pair<const QPushButton *, Answer> answers[] = {
        {m_back, Back}, {m_next, Next}, {m_end, End}};
    for (const auto &[button, answer] : answers)
        if (button->isVisible() && button->isEnabled() &&
            button->rect().contains(button->mapFromGlobal(globalPlace)))
            return answer;
    return None;
}

} // namespace corvane

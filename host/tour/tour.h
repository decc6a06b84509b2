// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/tour_card.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace corvane
{

/// A step of a guided tour.
struct TourStep {
    QString picture;                    ///< name for its picture's file; empty for a step without
    QString title;                      ///< of the picture
    QString caption;                    ///< a few sentences for the reader
    std::function<QWidget *()> target;  ///< asked until it gives a widget that is to be seen
    std::function<void(QWidget *)> act; ///< what the user then does; may be empty
};

/// Plays steps one after the other in the real windows: waits for the window of a step, takes its
/// picture and does what the user would do. Modal dialogs may open in between; the tour goes on
/// inside them.
class Tour : public QObject
{
    Q_OBJECT

public:
    explicit Tour(std::vector<TourStep> steps, QObject *parent = nullptr);
    ~Tour() override;

    /// Writes the pictures and `captions.md` into a folder, which exists. Without a folder nothing
    /// is written.
    void setFolder(const QString &folder) { m_folder = folder; }
    /// Plays for people: arranges the windows side by side and shows a card with each caption,
    /// which waits for them. They go on with Next or Space, look at earlier steps again with Back
    /// or Backspace, and end the tour with End or Escape. At the end there is a card with
    /// `goodBye`.
    void playForPeople(const QString &goodBye);

    void start();

    /// Number of pictures so far.
    int pictures() const { return m_pictures; }

Q_SIGNALS:
    /// A step is about to be played, after so many.
    void stepped(int done);
    /// With what went wrong, empty when nothing did.
    void finished(const QString &fault);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void look();
    void play(const TourStep &step, QWidget *target);
    void goOn();
    bool keepPicture(const TourStep &step);
    void showCard(const TourStep &step, QWidget *target);
    void showEnd();
    void showCaption();
    void answer(TourCard::Answer answer);
    void finish(const QString &fault);

    std::vector<TourStep> m_steps;
    std::size_t m_next = 0;
    QString m_folder;
    QString m_captions;
    int m_pictures = 0;
    std::optional<QString> m_goodBye; ///< set while it plays for people
    int m_captionCount = 0;           ///< of all steps
    std::vector<TourCaption> m_shown; ///< so far, each with its picture
    std::size_t m_lookedAt = 0;       ///< the one on the card
    bool m_isWaiting = false;         ///< for people
    bool m_isOver = false;            ///< all steps are played
    int m_looks = 0;                  ///< in vain, for the step that is next
    bool m_isPlaying = false;
    QPointer<QWidget> m_seen;    ///< the target at the last look
    QImage m_picture;            ///< of its window then, for a step that keeps one
    std::function<void()> m_act; ///< what is to be done when the reader has had time
    QTimer m_timer;
    std::unique_ptr<TourCard> m_card;
    QRect m_column; ///< of the screen, for the card
    QRect m_window; ///< the frame of the one that it tells of
};

} // namespace corvane

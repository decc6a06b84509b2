// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

class QLabel;

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
    /// Shows each caption for a while, for people to read. They go on at once with Space and end
    /// the tour with Escape.
    void setSpeed(int millisecondsPerCaption) { m_pause = millisecondsPerCaption; }

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
    void showCaption(const TourStep &step, const QWidget *target);
    void finish(const QString &fault);

    std::vector<TourStep> m_steps;
    std::size_t m_next = 0;
    QString m_folder;
    QString m_captions;
    int m_pictures = 0;
    int m_pause = 0;
    int m_looks = 0; ///< in vain, for the step that is next
    bool m_isPlaying = false;
    QPointer<QWidget> m_seen;    ///< the target at the last look
    QImage m_picture;            ///< of its window then, for a step that keeps one
    std::function<void()> m_act; ///< what is to be done when the reader has had time
    QTimer m_timer;
    QTimer m_readingTime;
    QLabel *m_caption = nullptr;
};

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/tour.h"

#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/tour/tour_stage.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <algorithm>
#include <utility>

namespace corvane
{

namespace
{

constexpr int lookInterval = 50;                // ms
constexpr int mostLooks = 60000 / lookInterval; // a minute

/// The window itself, or for a menu the one that it belongs to.
QWidget *windowBehind(QWidget *window)
{
    const bool isMenu = window->windowType() == Qt::Popup && window->parentWidget() != nullptr;
    return isMenu ? window->parentWidget()->window() : window;
}

/// A window as it is to be seen: a menu with the window that it belongs to.
QImage pictureOf(QWidget *window)
{
    const QPixmap picture = window->grab();
    QWidget *const behind = windowBehind(window);
    if (behind == window)
        return picture.toImage();
    QPixmap both = behind->grab();
    QPainter(&both).drawPixmap(behind->mapFromGlobal(window->mapToGlobal(QPoint(0, 0))), picture);
    return both.toImage();
}

void writePicture(const QString &path, const QImage &picture)
{
    QBuffer png;
    if (!png.open(QIODevice::WriteOnly) || !picture.save(&png, "PNG"))
        throw InputError(path, QStringLiteral("drawing"), QStringLiteral("an error"),
                         QStringLiteral("memory for the picture"));
    writeFile(path, png.data());
}

} // namespace

Tour::Tour(std::vector<TourStep> steps, QObject *parent)
    : QObject(parent), m_steps(std::move(steps))
{
    m_timer.setInterval(lookInterval);
    connect(&m_timer, &QTimer::timeout, this, &Tour::look);
    m_captionCount =
        static_cast<int>(std::count_if(m_steps.begin(), m_steps.end(), [](const TourStep &step) {
            return !step.caption.isEmpty();
        }));
}

Tour::~Tour() = default;

void Tour::playForPeople(const QString &goodBye)
{
    m_goodBye = goodBye;
}

void Tour::start()
{
    if (m_goodBye) {
        qApp->installEventFilter(this);
        m_card = std::make_unique<TourCard>();
        if (QWidget *const first = m_steps.empty() ? nullptr : m_steps.front().target())
            arrangeWindows(first->window());
    }
    m_timer.start();
}

void Tour::look()
{
    if (m_isPlaying)
        return;
    if (m_next == m_steps.size()) {
        if (m_goodBye)
            showEnd();
        else
            finish({});
        return;
    }
    const TourStep &step = m_steps[m_next];
    QWidget *const target = step.target();
    const bool isThere = target != nullptr && target->isVisible();
    const bool isPictured = isThere && !step.picture.isEmpty() && !m_folder.isEmpty();
    const QImage picture = isPictured ? pictureOf(target->window()) : QImage();
    // Seen twice in a row and looking the same: layouts and paints of the first time are done.
    if (!isThere || m_seen != target || m_picture != picture) {
        m_seen = isThere ? target : nullptr;
        m_picture = picture;
        if (++m_looks > mostLooks)
            finish(tr("Step %1 of the tour (%2) found no window.")
                       .arg(m_next + 1)
                       .arg(step.title.isEmpty() ? step.picture : step.title));
        return;
    }
    m_seen = nullptr;
    m_looks = 0;
    Q_EMIT stepped(int(m_next));
    play(step, target);
}

void Tour::play(const TourStep &step, QWidget *target)
{
    ++m_next;
    if (!m_picture.isNull() && !keepPicture(step))
        return;
    m_act = [act = step.act, guarded = QPointer<QWidget>(target)] {
        if (act && !guarded.isNull())
            act(guarded);
    };
    m_isPlaying = true;
    if (m_goodBye && !step.caption.isEmpty())
        showCard(step, target);
    else // not from here: this timer does not fire again while its own slot is in another event
         // loop
        QTimer::singleShot(0, this, &Tour::goOn);
}

void Tour::goOn()
{
    m_isPlaying = false;
    std::exchange(m_act, nullptr)();
}

bool Tour::keepPicture(const TourStep &step)
{
    const QString file =
        QStringLiteral("%1-%2.png").arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(step.picture);
    const QImage picture = std::exchange(m_picture, QImage());
    try {
        writePicture(QDir(m_folder).filePath(file), picture);
    } catch (const InputError &error) {
        finish(QString::fromUtf8(error.what()));
        return false;
    }
    m_captions +=
        QStringLiteral("## %1\n\n![%1](%2)\n\n%3\n\n").arg(step.title, file, step.caption);
    return true;
}

void Tour::showCard(const TourStep &step, QWidget *target)
{
    QWidget *const window = target->window();
    // A menu closes when what is behind it moves.
    if (window->windowType() != Qt::Popup)
        arrangeWindows(window);
    m_column = stageOf(window->screen()->availableGeometry()).card;
    m_window = windowBehind(window)->frameGeometry();
    m_shown.push_back({static_cast<int>(m_shown.size()) + 1, m_captionCount, step.title,
                       step.caption, QPixmap::fromImage(pictureOf(window))});
    m_lookedAt = m_shown.size() - 1;
    m_isWaiting = true;
    showCaption();
}

void Tour::showEnd()
{
    m_timer.stop();
    m_isOver = true;
    if (QWidget *const first = m_steps.empty() ? nullptr : m_steps.front().target())
        arrangeWindows(first->window());
    if (m_column.isNull())
        m_column = stageOf(QGuiApplication::primaryScreen()->availableGeometry()).card;
    m_lookedAt = m_shown.size();
    m_isWaiting = true;
    showCaption();
}

/// The card of the step that is looked at; an earlier one with its picture.
void Tour::showCaption()
{
    if (m_lookedAt == m_shown.size()) {
        m_card->show({0, m_captionCount, tr("That was the tour"), *m_goodBye, {}}, m_column,
                     m_window);
        return;
    }
    TourCaption caption = m_shown[m_lookedAt];
    const bool isNow = !m_isOver && m_lookedAt + 1 == m_shown.size();
    if (isNow)
        caption.picture = QPixmap();
    m_card->show(caption, m_column, m_window);
}

void Tour::answer(TourCard::Answer answer)
{
    if (answer == TourCard::End) {
        finish(m_isOver ? QString() : tr("The tour was ended."));
        return;
    }
    if (!m_isWaiting || answer == TourCard::None)
        return;
    if (answer == TourCard::Back) {
        m_lookedAt -= m_lookedAt > 0 ? 1 : 0;
        showCaption();
        return;
    }
    const std::size_t last = m_isOver ? m_shown.size() : m_shown.size() - 1;
    if (m_lookedAt < last) {
        ++m_lookedAt;
        showCaption();
    } else if (m_isOver) {
        finish({});
    } else {
        m_isWaiting = false;
        goOn();
    }
}

bool Tour::eventFilter(QObject *watched, QEvent *event)
{
    // What the tour does is sent; what people do comes from the system.
    if (!event->spontaneous())
        return QObject::eventFilter(watched, event);
    TourCard::Answer asked = TourCard::None;
    switch (event->type()) {
    case QEvent::KeyPress:
        switch (static_cast<QKeyEvent *>(event)->key()) {
        case Qt::Key_Escape:
            asked = TourCard::End;
            break;
        case Qt::Key_Backspace:
        case Qt::Key_Left:
            asked = TourCard::Back;
            break;
        case Qt::Key_Space:
        case Qt::Key_Right:
        case Qt::Key_Return:
            asked = TourCard::Next;
            break;
        default:
            break;
        }
        break;
    case QEvent::MouseButtonPress:
        if (m_card)
            asked = m_card->answerAt(static_cast<QMouseEvent *>(event)->globalPos());
        break;
    case QEvent::ShortcutOverride:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        break;
    default:
        return QObject::eventFilter(watched, event);
    }
    // Not from here: what follows may open a dialog, and an event is to be done with.
    if (asked != TourCard::None)
        QTimer::singleShot(0, this, [this, asked] { answer(asked); });
    return true;
}

void Tour::finish(const QString &fault)
{
    m_timer.stop();
    m_isWaiting = false;
    m_act = nullptr;
    qApp->removeEventFilter(this);
    m_card.reset();
    QString said = fault;
    if (!m_folder.isEmpty() && fault.isEmpty()) {
        try {
            writeFile(QDir(m_folder).filePath(QStringLiteral("captions.md")), m_captions.toUtf8());
        } catch (const InputError &error) {
            said = QString::fromUtf8(error.what());
        }
    }
    Q_EMIT finished(said);
}

} // namespace corvane

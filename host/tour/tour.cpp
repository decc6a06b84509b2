// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/tour.h"

#include "host/files/input_error.h"
#include "host/files/output_file.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
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
    m_readingTime.setSingleShot(true);
    connect(&m_readingTime, &QTimer::timeout, this, &Tour::goOn);
}

Tour::~Tour()
{
    delete m_caption;
}

void Tour::start()
{
    if (m_pause > 0)
        qApp->installEventFilter(this);
    m_timer.start();
}

void Tour::look()
{
    if (m_isPlaying)
        return;
    if (m_next == m_steps.size()) {
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
    const bool isShown = m_pause > 0 && !step.caption.isEmpty();
    if (isShown)
        showCaption(step, target);
    m_act = [act = step.act, guarded = QPointer<QWidget>(target)] {
        if (act && !guarded.isNull())
            act(guarded);
    };
    m_isPlaying = true;
    // Not from here: this timer does not fire again while its own slot is in another event loop.
    m_readingTime.start(isShown ? m_pause : 0);
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

void Tour::showCaption(const TourStep &step, const QWidget *target)
{
    if (m_caption == nullptr) {
        m_caption = new QLabel(nullptr, Qt::ToolTip | Qt::WindowStaysOnTopHint);
        m_caption->setMargin(12);
        m_caption->setWordWrap(true);
        m_caption->setFixedWidth(420);
        m_caption->setFrameShape(QFrame::StyledPanel);
        m_caption->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    m_caption->setText(QStringLiteral("<b>%1</b><p>%2</p><p><small>%3</small></p>")
                           .arg(step.title.toHtmlEscaped(), step.caption.toHtmlEscaped(),
                                tr("Space goes on, Escape ends the tour.")));
    m_caption->adjustSize();
    const QRect window = windowBehind(target->window())->frameGeometry();
    // Below the window, or where the screen ends there, on its lower edge.
    constexpr int gap = 10;
    int top = window.bottom() + gap;
    if (top + m_caption->height() > target->screen()->availableGeometry().bottom())
        top = window.bottom() - m_caption->height() - gap;
    m_caption->move(window.center().x() - m_caption->width() / 2, top);
    m_caption->show();
    m_caption->raise();
}

bool Tour::eventFilter(QObject *watched, QEvent *event)
{
    // What the tour does is sent; what people do comes from the system.
    if (!event->spontaneous())
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::KeyPress:
        switch (static_cast<QKeyEvent *>(event)->key()) {
        case Qt::Key_Escape:
            finish(tr("The tour was ended."));
            break;
        case Qt::Key_Space:
            if (m_readingTime.isActive())
                m_readingTime.start(0);
            break;
        default:
            break;
        }
        return true;
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

void Tour::finish(const QString &fault)
{
    m_timer.stop();
    m_readingTime.stop();
    qApp->removeEventFilter(this);
    delete m_caption;
    m_caption = nullptr;
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

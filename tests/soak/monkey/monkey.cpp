// SPDX-License-Identifier: GPL-3.0-or-later
//
// A user without a plan: random events for the workbench, the plugin and all their windows.
//
//   Corvane --data DIR [--seed N] [--events M] [--replay FILE]
//
// tests/soak/monkey makes the data and the sandbox, in which alone this program can write, and
// starts it. Each event is written to monkey-N.events in the working folder before it happens, with
// its time and what is to be seen; --replay plays such a file again and tells where it
// comes to another sight. TERM ends it with its report. Ends with 1 if something was found, with 3
// and a stack if the event loop stood still; a crash is the sanitizers' to tell. The program is
// named as the host, which the plugin asks for, and what the host starts under its own name it
// hands to the real one.
#include "host/workbench/application.h"
#include "tests/soak/monkey/monkey_events.h"
#include "tests/soak/monkey/monkey_stage.h"
#include "tests/soak/monkey/monkey_watch.h"

#include <QCommandLineParser>
#include <QDesktopServices>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QProgressDialog>
#include <QScopeGuard>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace monkey
{

namespace
{

constexpr int eventsOfAStage = 1500;

/// Asked to end: the next event is the last, and the report is made.
std::atomic<bool> endIsWanted{false};

/// Does one event after the other, in whatever event loop runs, until the stage is over; then
/// leaves all loops that the events have led into.
class Monkey : public QObject
{
public:
    Monkey(quint64 seed, const QStringList &files, long events, const QString &replayed)
        : m_source(seed, files), m_events(events),
          m_kept(QStringLiteral("monkey-%1.events").arg(seed)), m_replayed(replayed)
    {
        if (replayed.isEmpty())
            m_kept.open(QIODevice::WriteOnly | QIODevice::Truncate);
        else
            m_replayed.open(QIODevice::ReadOnly);
        connect(&m_pulse, &QTimer::timeout, this, &Monkey::pulse);
        connect(&m_heart, &QTimer::timeout, this, [this] { stalls.beat(); });
        m_heart.start(50);
    }

    bool isDone() const
    {
        if (m_replayed.isOpen())
            return endIsWanted || (m_replayed.atEnd() && !Event::ofLine(m_next));
        return endIsWanted || eventCount >= m_events;
    }

    /// Of the next stage: drawn, or as it was.
    int stageKind()
    {
        if (!m_replayed.isOpen()) {
            const int kind = m_source.pick(stageKinds);
            keep(QStringLiteral("stage\t%1").arg(kind));
            return kind;
        }
        while (!m_next.startsWith("stage\t") && !m_replayed.atEnd())
            readNext();
        const int kind = m_next.section('\t', 1).toInt();
        readNext();
        return kind;
    }

    void play(Stage &stage)
    {
        m_stage = &stage;
        m_stageEvents = 0;
        m_leaving = 0;
        m_level = 0;
        m_age.start();
        m_pulse.start(0);
        QCoreApplication::exec();
        m_pulse.stop();
        m_stage = nullptr;
    }

    StallWatch stalls;
    long missed = 0; ///< events of a replay that found nothing to go to

private:
    /// A timer does not come again while its own slot is in another event loop: the event is
    /// posted. None is done within another, unless that has led into an event loop of its own.
    void pulse()
    {
        if (m_isPosted || QThread::currentThread()->loopLevel() <= m_level)
            return;
        m_isPosted = true;
        QTimer::singleShot(0, this, &Monkey::act);
    }

    void act()
    {
        m_isPosted = false;
        const int before = std::exchange(m_level, QThread::currentThread()->loopLevel());
        // Also when an error comes through, which the application catches.
        const auto restored = qScopeGuard([this, before] { m_level = before; });
        if (m_level > before)
            actNow();
    }

    void actNow()
    {
        if (m_leaving > 0 || isDone() || m_stage->isOver() || isStageDone()) {
            if (m_leaving == 0)
                endStage();
            leave();
            return;
        }
        if (m_replayed.isOpen()) {
            playAgain();
            return;
        }
        ++m_stageEvents;
        const std::optional<Event> event = m_source.next();
        if (!event)
            return;
        ++eventCount;
        keep(QStringList{QString::number(m_age.elapsed()), sightOf(*event), event->line()}.join(
            '\t'));
        missed += perform(*event) ? 0 : 1;
    }

    /// What is to be seen after all events, which must be the same when they are played again.
    void endStage()
    {
        const QString end = QStringLiteral("end\t") + shownWindows();
        if (!m_replayed.isOpen())
            keep(end);
        else if (!endIsWanted && !m_next.isEmpty() && !m_next.startsWith("stage\t") &&
                 m_next != end)
            noteFinding(QStringLiteral("the replay has come to\n  %1\nand the events to\n  %2")
                            .arg(end, m_next));
    }

    /// When there is to be seen what was to be seen before, however long that takes, and not before
    /// its time, since what is not seen may come with time, too. What goes to the window of a work
    /// does not wait, since the work may end, and is left out when it has; so is what went to
    /// something that was disabled then.
    void playAgain()
    {
        const std::optional<Event> event = Event::ofLine(m_next);
        const bool isSeen = event && sightOf(*event) == m_sight;
        const bool isOfWork = event && (goesToWork(*event) || m_sight.endsWith(toDisabled));
        const int patience = isOfWork ? 1000 : 6000;
        const bool isDue = m_age.elapsed() >= m_due || (isSeen && isOfWork);
        if (event && (!isDue || (!isSeen && ++m_tries < patience))) {
            QThread::msleep(5);
            return;
        }
        m_tries = 0;
        ++eventCount;
        const QStringList before{m_next, m_sight};
        readNext(); // what comes next may be for an event loop that this one leads into
        if (isSeen && perform(*event))
            return;
        if (isOfWork) {
            ++missed;
            return;
        }
        noteFinding(
            QStringLiteral("the replay has lost its way at\n  %1\nwhere there was\n  %2\nand "
                           "there is\n  %3")
                .arg(before.first(), before.last(), event ? sightOf(*event) : QString()));
        while (!m_next.isEmpty() && !m_next.startsWith("stage\t"))
            readNext();
    }

    bool isStageDone() const
    {
        return m_replayed.isOpen() ? !Event::ofLine(m_next) : m_stageEvents >= eventsOfAStage;
    }

    void keep(const QString &line)
    {
        m_kept.write(line.toUtf8() + '\n');
        m_kept.flush();
    }

    /// An event has its time and its sight before it.
    void readNext()
    {
        m_next = QString::fromUtf8(m_replayed.readLine()).remove('\n');
        bool isTime = false;
        const qint64 time = m_next.section('\t', 0, 0).toLongLong(&isTime);
        if (isTime) {
            m_due = time;
            m_sight = m_next.section('\t', 1, 1);
            m_next = m_next.section('\t', 2);
        }
    }

    /// Closes what is in the way, one at a time, until only the event loop of `play` runs.
    void leave()
    {
        if (m_level <= 1 && !QApplication::activePopupWidget() &&
            !QApplication::activeModalWidget()) {
            QCoreApplication::exit();
            return;
        }
        if (++m_leaving > 20)
            QThread::msleep(5); // what is in work has to end
        if (m_leaving == 10000) {
            noteFinding(QStringLiteral("windows that cannot be closed"));
            std::raise(SIGUSR1); // ends with the stack
        }
        if (QWidget *const popup = QApplication::activePopupWidget()) {
            popup->close();
        } else if (QWidget *const modal = QApplication::activeModalWidget()) {
            if (qobject_cast<QProgressDialog *>(modal) != nullptr)
                modal->close(); // which cancels the work
            else if (auto *const dialog = qobject_cast<QDialog *>(modal))
                dialog->reject();
            else
                modal->close();
        } else if (QWidget *const window = reachableWindows().value(0)) {
            QTest::keyClick(window->windowHandle(), Qt::Key_Escape); // ends what is dragged
            QTest::mouseRelease(window->windowHandle(), Qt::LeftButton);
        }
    }

    EventSource m_source;
    const long m_events;
    QFile m_kept;
    QFile m_replayed;
    QString m_next;      ///< what is to be played next
    qint64 m_due = 0;    ///< and when, in ms of its stage
    QString m_sight;     ///< and what is to be seen then
    QElapsedTimer m_age; ///< of the stage
    Stage *m_stage = nullptr;
    int m_stageEvents = 0;
    int m_leaving = 0;
    QTimer m_pulse;
    QTimer m_heart;
    int m_tries = 0; ///< to play an event again whose window is not there yet
    bool m_isPosted = false;
    int m_level = 0; ///< of the event loop in which an event is being done
};

/// Nothing of the system is opened, and files are neither deleted nor renamed.
class Sandbox : public QObject
{
    Q_OBJECT

public:
    Sandbox()
    {
        for (const char *scheme : {"file", "http", "https", "mailto"})
            QDesktopServices::setUrlHandler(scheme, this, "open");
        qApp->installEventFilter(this);
    }

public Q_SLOTS:
    void open(const QUrl &) { ++opened; }

public:
    int opened = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *const dialog =
            event->type() == QEvent::Polish ? qobject_cast<QFileDialog *>(watched) : nullptr;
        if (dialog != nullptr) {
            dialog->setOption(QFileDialog::ReadOnly);
            // What it offers depends on how far a thread of Qt has read the folder.
            if (auto *const name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                name->setCompleter(nullptr);
        }
        return false;
    }
};

int run(const QCommandLineParser &options)
{
    const WindowWatch windows;
    const Sandbox sandbox;
    watchWarnings();
    std::signal(SIGTERM, [](int) { endIsWanted = true; });
    const Files files(options.value("data"));
    const quint64 seed = options.value("seed").toULongLong();
    long stages = 0;
    QString reached;
    {
        Monkey monkey(seed, files.all(), options.value("events").toLong(), options.value("replay"));
        while (!monkey.isDone()) {
            Stage stage(files, monkey.stageKind());
            QObject::connect(&stage.listenedSession(), &corvane::Session::logged,
                             [](const QString &text) {
                                 if (text.startsWith("An error was caught in"))
                                     noteFinding(text);
                             });
            monkey.play(stage);
            ++stages;
        }
        std::printf("seed %llu: %ld events in %ld windows' stages, %ld that found nothing, longest "
                    "%.2f s without an answer, %d pages opened\n",
                    seed, eventCount.load(), stages, monkey.missed, monkey.stalls.longest(),
                    sandbox.opened);
    }
    if (testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed())
        noteFinding(QStringLiteral("a stage could not be set up or left"));
    QStringList classes = windows.classes().values();
    classes.sort();
    std::printf("windows: %s\n", qPrintable(classes.join(' ')));
    std::printf("findings: %d\n", findings().size());
    return findings().isEmpty() ? 0 : 1;
}

} // namespace

} // namespace monkey

int main(int argc, char **argv)
{
    const QString first = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("--help");
    if (!QStringList{"--data", "--seed", "--events", "--replay", "--help"}.contains(first)) {
        execv(CORVANE_PROGRAM, argv);
        return 127;
    }
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setStyle(QStringLiteral("Fusion"));
    corvane::Application application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOptions({{"data", "The folder of the data.", "folder"},
                        {"seed", "Of the random numbers.", "number", "1"},
                        {"events", "How many.", "number", "10000"},
                        {"replay", "The events of that file.", "file"}});
    options.process(application);
    return monkey::run(options);
}

#include "monkey.moc"

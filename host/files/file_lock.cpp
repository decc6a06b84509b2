// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_lock.h"

#include "host/files/file_system.h"
#include "host/files/hidden_name.h"
#include "host/files/input_error.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <atomic>

namespace corvane
{

namespace
{

namespace fs = std::filesystem;

constexpr std::chrono::minutes longestSilence(10);

quint64 nextNumber()
{
    static std::atomic<quint64> number{0};
    return ++number;
}

/// Unset when there is no such file, or it cannot be read.
std::optional<QByteArray> textAt(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    constexpr qint64 longest = 4096;
    return file.read(longest);
}

/// How long ago the holder touched its lock, by the clock of the file system where that can be
/// asked.
std::chrono::seconds silenceAt(const QString &path)
{
    const HiddenPath own(QFileInfo(path).path());
    QFile probe(own.path());
    if (!probe.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return std::chrono::seconds(0);
    return silenceOf(path, own);
}

bool isStale(const QString &path, const std::optional<LockHolder> &holder, const LockHolder &own,
             const JobCheck &hasEnded)
{
    if (!holder) // half a text: its maker was killed in between, or is at it
        return silenceAt(path) > longestSilence;
    switch (stateOf(holder->process)) {
    case ProcessState::Runs:
        return false;
    case ProcessState::IsGone:
        return true;
    case ProcessState::IsElsewhere:
        break;
    }
    const bool isOwnJobBefore =
        !own.job.isEmpty() && own.job == holder->job && own.restart > holder->restart;
    return isOwnJobBefore || silenceAt(path) > longestSilence ||
           (!holder->job.isEmpty() && hasEnded && hasEnded(*holder));
}

[[noreturn]] void fail(const QString &path, const QString &found)
{
    throw InputError(path, QStringLiteral("locking"), found,
                     QStringLiteral("a folder in which a file can be made"));
}

} // namespace

QByteArray LockHolder::text() const
{
    const QJsonObject object{{QStringLiteral("format"), QStringLiteral("Corvane lock")},
                             {QStringLiteral("version"), 1},
                             {QStringLiteral("host"), QString::fromStdString(process.host)},
                             {QStringLiteral("boot"), QString::fromStdString(process.boot)},
                             {QStringLiteral("process"), QString::number(process.number)},
                             {QStringLiteral("start"), QString::number(process.start)},
                             {QStringLiteral("job"), job},
                             {QStringLiteral("restart"), restart},
                             {QStringLiteral("number"), QString::number(number)}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<LockHolder> LockHolder::of(const QByteArray &text)
{
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    if (object[QStringLiteral("format")].toString() != QLatin1String("Corvane lock"))
        return std::nullopt;
    const auto word = [&](const char *key) { return object[QLatin1String(key)].toString(); };
    return LockHolder{{word("host").toStdString(), word("boot").toStdString(),
                       word("process").toLongLong(), word("start").toULongLong()},
                      word("job"),
                      object[QStringLiteral("restart")].toInt(),
                      word("number").toULongLong()};
}

QString LockHolder::words() const
{
    // Behind the last point of the host's name is a sum that tells machines of one name apart.
    const QString host = QString::fromStdString(process.host);
    const int point = host.lastIndexOf(QLatin1Char('.'));
    QString words = QStringLiteral("process %1 on %2")
                        .arg(process.number)
                        .arg(point > 0 ? host.left(point) : host);
    if (!job.isEmpty())
        words += QStringLiteral(", job %1").arg(job);
    return words;
}

FileLock::FileLock(const QString &path, const QString &job, int restart)
    : m_path(path), m_own{thisProcess(), job, restart, nextNumber()}
{
}

FileLock::~FileLock()
{
    if (m_file == nullptr)
        return;
    // A machine that slept for long comes back to locks that are others' now. One that cannot be
    // read for want of something is our own: it must not stay as long as this process.
    const std::optional<QByteArray> text = textAt(m_path);
    if (text && text != m_own.text())
        m_file->forget();
}

bool FileLock::take(const JobCheck &hasEnded)
{
    constexpr int mostTries = 3; // others may take and break it in between
    for (int tries = 0; tries < mostTries; ++tries) {
        if (make(m_own.text()))
            return true;
        if (!breakStale(hasEnded))
            return false;
    }
    return false;
}

/// The file appears with its text in it, where the file system can do that.
bool FileLock::make(const QByteArray &text)
{
    const QFileInfo place(m_path);
    const auto lock = holdSignals();
    const HiddenPath written(place.path());
    {
        QFile file(written.path());
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) ||
            file.write(text) != text.size())
            fail(m_path, file.errorString());
    }
    std::error_code error;
    fs::create_hard_link(nativePath(written.path()), nativePath(m_path), error);
    if (error == std::errc::file_exists)
        return false;
    if (error) { // without links, or no such file system
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
            if (QFileInfo::exists(m_path))
                return false;
            fail(m_path, file.errorString());
        }
        if (file.write(text) != text.size()) {
            const QString reason = file.errorString();
            file.remove();
            fail(m_path, reason);
        }
    }
    m_file = std::make_unique<HiddenPath>(HiddenPath::Named{place.path(), place.fileName()});
    return true;
}

/// Removes a lock whose holder is gone; says whether it is worth another try. Two that see the same
/// stale lock must not both remove it, for the second would remove the new one of the first: who
/// wants to break a lock takes the claim first, and looks once more while nobody else can break it.
bool FileLock::breakStale(const JobCheck &hasEnded)
{
    bool isThere = true;
    const auto stale = [&] {
        const std::optional<QByteArray> text = textAt(m_path);
        isThere = text.has_value();
        if (!isThere)
            return true; // given back meanwhile
        const std::optional<LockHolder> holder = LockHolder::of(*text);
        m_holder =
            holder ? holder->words() : QStringLiteral("a process that does not say its name");
        return isStale(m_path, holder, m_own, hasEnded);
    };
    if (!stale())
        return false;
    const QFileInfo place(m_path);
    const HiddenPath::Named claim{place.path(), place.fileName() + QStringLiteral(".claim")};
    const QString claimPath = claim.folder + QLatin1Char('/') + claim.name;
    const auto lock = holdSignals();
    QFile file(claimPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        // Held for milliseconds, but by one who was killed in them.
        if (silenceAt(claimPath) > longestSilence)
            QFile::remove(claimPath);
        return false;
    }
    file.close();
    const HiddenPath claimed(claim);
    if (stale() && isThere)
        m_wasBroken = QFile::remove(m_path);
    return true;
}

std::optional<LockHolder> holderOf(const QString &path)
{
    const std::optional<QByteArray> text = textAt(path);
    if (!text)
        return std::nullopt;
    std::optional<LockHolder> holder = LockHolder::of(*text);
    if (!holder || stateOf(holder->process) == ProcessState::IsGone)
        return std::nullopt;
    if (stateOf(holder->process) == ProcessState::IsElsewhere &&
        QFileInfo(path).lastModified().secsTo(QDateTime::currentDateTime()) >
            std::chrono::seconds(longestSilence).count())
        return std::nullopt;
    return holder;
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_set.h"

#include "host/files/disk.h"
#include "host/files/file_system.h"
#include "host/files/hidden_name.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/listing.h"
#include "host/files/output_file.h"
#include "host/files/output_record.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <thread>

namespace corvane
{

namespace
{

namespace fs = std::filesystem;

const QString formatName = QStringLiteral("Corvane set of files");
const QString ending = QStringLiteral(".json");

QString unfinishedIn(const QString &folder)
{
    return folder + QStringLiteral("/.corvane-unfinished");
}

/// The list of a set. It has the name that its hidden folder had, which tells who moves the files.
struct SetList {
    QString path;
    HiddenName name;
    QString writer;
    QStringList files;
};

void writeList(const HiddenPath &hidden, const QString &writer, const QStringList &files)
{
    const QJsonObject object{{QStringLiteral("format"), formatName},
                             {QStringLiteral("version"), 1},
                             {QStringLiteral("writer"), writer},
                             {QStringLiteral("files"), QJsonArray::fromStringList(files)}};
    writeFile(hidden.path() + QLatin1Char('/') + QFileInfo(hidden.path()).fileName() + ending,
              QJsonDocument(object).toJson());
}

std::optional<SetList> readList(const QString &path)
{
    QString base = QFileInfo(path).fileName();
    base.chop(ending.size());
    const std::optional<HiddenName> name = HiddenName::of(base);
    const auto bytes = name ? bytesIfThere(path) : std::nullopt;
    if (!bytes)
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(*bytes).object();
    SetList list{path, *name, object[QStringLiteral("writer")].toString(), {}};
    for (const QJsonValue value : object[QStringLiteral("files")].toArray())
        list.files += QFileInfo(value.toString()).fileName();
    return list;
}

/// The sets that are on their way into a folder: one, or none.
std::vector<SetList> listsIn(const QString &folder)
{
    const QString unfinished = unfinishedIn(folder);
    std::vector<SetList> lists;
    for (const QString &file :
         namesInFolder(unfinished, {QStringLiteral(".*") + ending}, Listed::Files))
        if (const std::optional<SetList> list = readList(unfinished + QLatin1Char('/') + file))
            lists.push_back(*list);
    return lists;
}

[[noreturn]] void failToReplace(const QString &path, const QString &found)
{
    throw InputError(path, QStringLiteral("writing"), found,
                     QStringLiteral("a file that can be replaced"));
}

/// Any number of processes may do this at the same time: each step is made by one of them.
QStringList finish(const SetList &set, const QString &folder)
{
    const QString unfinished = unfinishedIn(folder);
    for (const QString &file : set.files) {
        const QString target = folder + QLatin1Char('/') + file;
        const std::error_code error = renameOver(unfinished + QLatin1Char('/') + file, target);
        const bool wasMoved = error == std::errc::no_such_file_or_directory;
        if (error && !wasMoved)
            failToReplace(target, wordsFor(error));
    }
    QStringList said = recordOutputs(folder, set.writer, set.files);
    std::error_code ignored;
    fs::remove(nativePath(set.path), ignored);
    // Stays when the next set is in it already.
    fs::remove(nativePath(unfinished), ignored);
    return said;
}

void requireReplaceable(const QString &path)
{
    std::error_code error;
    if (fs::is_directory(nativePath(path), error))
        failToReplace(path, QStringLiteral("a folder"));
    if (const int fault = faultOfReplacing(nativePath(path)))
        failToReplace(path, wordsFor(std::error_code(fault, std::generic_category())));
}

bool isOwn(const ProcessIdentity &process)
{
    const ProcessIdentity own = thisProcess();
    return process.host == own.host && process.boot == own.boot && process.number == own.number &&
           process.start == own.start;
}

} // namespace

QStringList moveUp(HiddenPath &hidden, const QString &folder, const QString &writer)
{
    constexpr int longestWait = 60000;           // ms; others need a few
    constexpr int longestWaitWithoutList = 2000; // the list is the last to go
    QDir(hidden.path())
        .remove(QLatin1String(outputRecordName)); // of a command that this one made use of
    const QStringList files =
        namesInFolder(hidden.path(), {QStringLiteral("*"), QStringLiteral(".*")}, Listed::Files);
    for (const QString &file : files)
        requireReplaceable(folder + QLatin1Char('/') + file);
    writeList(hidden, writer, files);
    QStringList said;
    QElapsedTimer waiting;
    waiting.start();
    for (;;) {
        {
            const auto lock = holdSignals();
            const std::error_code error = hidden.renameTo(unfinishedIn(folder));
            if (!error) {
                for (const SetList &set : listsIn(folder))
                    said += finish(set, folder);
                return said;
            }
            if (!QFileInfo::exists(unfinishedIn(folder)))
                failToReplace(folder, wordsFor(error));
            said += finishLeftSets(folder, hidden);
        }
        const bool isListed = !listsIn(folder).empty();
        if (waiting.hasExpired(isListed ? longestWait : longestWaitWithoutList))
            throw InputError(unfinishedIn(folder), QStringLiteral("writing"),
                             isListed ? QStringLiteral("files that another command moves up")
                                      : QStringLiteral("files that no list names"),
                             isListed ? QStringLiteral("that it comes to its end")
                                      : QStringLiteral("none: move them away by hand"));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

QStringList finishLeftSets(const QString &folder, const HiddenPath &own)
{
    // While signals are held no other thread of this process moves files.
    const auto lock = holdSignals();
    QStringList said;
    for (const SetList &set : listsIn(folder)) {
        if (!isOwn(set.name.owner) && !set.name.isLeftBehind(silenceOf(unfinishedIn(folder), own)))
            continue;
        said += finish(set, folder);
        said +=
            QStringLiteral("%1: %2 was ended before all its files were in their place; now they "
                           "are")
                .arg(printable(shownPath(folder), 4096), quoted(set.writer));
    }
    // Of one that came as far as that the empty folder is left.
    std::error_code isNotEmpty;
    fs::remove(nativePath(unfinishedIn(folder)), isNotEmpty);
    return said;
}

void refuseUnfinished(const QString &path)
{
    const QFileInfo given(path);
    const QFileInfo file(given.isSymLink() ? given.canonicalFilePath() : path);
    for (const SetList &set : listsIn(file.path())) {
        if (!set.files.contains(file.fileName()))
            continue;
        const bool isAtIt = stateOf(set.name.owner) == ProcessState::Runs;
        throw InputError(path, QStringLiteral("opening"),
                         isAtIt ? QStringLiteral("a file of a set that %1 is putting in its place")
                                      .arg(quoted(set.writer))
                                : QStringLiteral("a file of a set that is not complete: %1 was "
                                                 "ended on its way")
                                      .arg(quoted(set.writer)),
                         isAtIt ? QStringLiteral("a complete one: try once more")
                                : QStringLiteral("a complete one: run that command once more"));
    }
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/output_record.h"

#include "host/files/file_system.h"
#include "host/files/hidden_name.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/json_file.h"
#include "host/files/output_file.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <map>

namespace corvane
{

namespace
{

namespace fs = std::filesystem;

const QString formatName = QStringLiteral("Corvane outputs");

struct Output {
    QString writer;
    qint64 length = 0;
    QDateTime time;
};

using Outputs = std::map<QString, Output>; ///< by the name of the file

QString within(const QString &folder, const QString &name)
{
    return folder + QLatin1Char('/') + name;
}

QString recordIn(const QString &folder)
{
    return within(folder, QLatin1String(outputRecordName));
}

/// A path in one line for the user.
QString shown(const QString &path)
{
    return printable(shownPath(path), 4096);
}

// ---- the file

/// Whether a name stays within its folder. What a record could name beyond it is not ours.
bool isNameOfOutput(const QString &name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           name != QLatin1String(outputRecordName) &&
           std::all_of(name.begin(), name.end(), isForFileNames);
}

void addEntry(const QString &path, const QJsonValue &value, Outputs &outputs)
{
    const QJsonObject entry = value.toObject();
    const QString name = entry[QStringLiteral("file")].toString();
    const Output output{
        entry[QStringLiteral("writer")].toString(),
        wholeNumberOf(entry[QStringLiteral("bytes")], -1),
        QDateTime::fromString(entry[QStringLiteral("time")].toString(), Qt::ISODateWithMs)};
    if (!isNameOfOutput(name) || output.writer.isEmpty() || output.length < 0 ||
        !output.time.isValid())
        throw InputError(path, QStringLiteral("file %1").arg(outputs.size() + 1), quoted(name),
                         QStringLiteral("the name of a file in this folder, with its writer, "
                                        "length and time"));
    outputs[name] = output;
}

/// Without a record nothing is known. Throws InputError for one that is damaged.
Outputs readRecord(const QString &folder)
{
    constexpr qint64 longest = qint64(1) << 26;
    const QString path = recordIn(folder);
    if (!QFileInfo(path).isSymLink() && !QFileInfo::exists(path))
        return {};
    const QJsonObject record = QJsonDocument::fromJson(InputFile(path).all(longest)).object();
    if (record[QStringLiteral("format")].toString() != formatName ||
        record[QStringLiteral("version")].toInt() != 1)
        throw InputError(path, QStringLiteral("content"), QStringLiteral("something else"),
                         QStringLiteral("a record of version 1"));
    Outputs outputs;
    for (const QJsonValue value : record[QStringLiteral("files")].toArray())
        addEntry(path, value, outputs);
    return outputs;
}

void writeRecord(const QString &folder, const Outputs &outputs)
{
    QJsonArray files;
    for (const auto &[name, output] : outputs)
        files.append(
            QJsonObject{{QStringLiteral("file"), name},
                        {QStringLiteral("writer"), output.writer},
                        {QStringLiteral("bytes"), static_cast<double>(output.length)},
                        {QStringLiteral("time"), output.time.toUTC().toString(Qt::ISODateWithMs)}});
    const QJsonObject record{{QStringLiteral("format"), formatName},
                             {QStringLiteral("version"), 1},
                             {QStringLiteral("files"), files}};
    writeFile(recordIn(folder), QJsonDocument(record).toJson());
}

// ---- what goes and what stays

bool isAsWritten(const QFileInfo &file, const Output &output)
{
    constexpr qint64 coarsestClock = 2000; // ms, of the file systems in use
    return file.isFile() && !file.isSymLink() && file.size() == output.length &&
           std::abs(file.lastModified().msecsTo(output.time)) <= coarsestClock;
}

/// Whether a file is one of these: also one whose name differs in its letters' case, where the file
/// system makes no difference.
bool isAmong(const QString &name, const QStringList &files, const QString &folder)
{
    return std::any_of(files.begin(), files.end(), [&](const QString &file) {
        std::error_code ignored;
        return file == name || (file.compare(name, Qt::CaseInsensitive) == 0 &&
                                fs::equivalent(nativePath(within(folder, file)),
                                               nativePath(within(folder, name)), ignored));
    });
}

/// Removes a file that is as it was written. Gives a line for the user where it stays.
QStringList removeOutput(const QString &path, const Output &output)
{
    const QFileInfo file(path);
    if (!file.exists() && !file.isSymLink())
        return {};
    const QString stays = QStringLiteral("%1: an earlier run wrote it and this one did not; it "
                                         "stays, since ")
                              .arg(shown(path));
    if (!isAsWritten(file, output))
        return {stays + QStringLiteral("it was changed meanwhile")};
    std::error_code error;
    fs::remove(nativePath(path), error);
    return error ? QStringList{stays + QStringLiteral("it cannot be removed: ") + wordsFor(error)}
                 : QStringList();
}

/// Files of other writers that stay beside files that took the place of some of theirs.
QStringList linesOnMixedSets(const QString &folder, const QString &writer, const Outputs &before,
                             const QStringList &files)
{
    std::map<QString, QStringList> left; // by writer
    for (const auto &[name, output] : before)
        if (!isAmong(name, files, folder) && QFileInfo::exists(within(folder, name)))
            left[output.writer] += name;
    QStringList lines;
    for (const auto &[other, names] : left) {
        const bool isMixed =
            std::any_of(files.begin(), files.end(), [&, &owner = other](const QString &file) {
                const auto known = before.find(file);
                return known != before.end() && known->second.writer == owner;
            });
        if (other == writer || !isMixed)
            continue;
        constexpr int mostNames = 3;
        const QString more = names.size() > mostNames
                                 ? QStringLiteral(" and %1 more").arg(names.size() - mostNames)
                                 : QString();
        lines += QStringLiteral("%1: some files of %2 were replaced, others stay beside the new "
                                "ones: %3%4")
                     .arg(shown(folder), quoted(other),
                          printable(names.mid(0, mostNames).join(QStringLiteral(", ")), 800), more);
    }
    return lines;
}

} // namespace

QStringList recordOutputs(const QString &folder, const QString &writer, const QStringList &files)
{
    QStringList said;
    Outputs before;
    try {
        before = readRecord(folder);
    } catch (const InputError &error) {
        said += QString::fromUtf8(error.what()) +
                QStringLiteral("; files of earlier runs stay where this one did not replace them");
    }
    said += linesOnMixedSets(folder, writer, before, files);
    Outputs now;
    for (const auto &[name, output] : before) {
        if (output.writer != writer)
            now[name] = output;
        else if (!isAmong(name, files, folder))
            said += removeOutput(within(folder, name), output);
    }
    for (const QString &name : files) {
        const QFileInfo file(within(folder, name));
        if (file.exists())
            now[name] = {writer, file.size(), file.lastModified()};
    }
    // All files are in their place: that the record is not, is no reason to refuse them.
    try {
        writeRecord(folder, now);
    } catch (const InputError &error) {
        said += QString::fromUtf8(error.what()) +
                QStringLiteral("; the next run will leave the files of this one where they are");
    }
    return said;
}

} // namespace corvane

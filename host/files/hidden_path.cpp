// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/hidden_path.h"

#include "host/files/disk.h"
#include "host/files/file_system.h"
#include "host/files/hidden_name.h"

#include <QDir>
#include <QFileInfo>

#include <set>

namespace corvane
{

namespace
{

namespace fs = std::filesystem;

struct Registry {
    std::recursive_mutex mutex;
    std::set<HiddenPath *> paths;
    quint64 made = 0;
};

/// Never destroyed: a signal may come while the process ends by itself.
Registry &registry()
{
    static auto *const all = new Registry;
    return *all;
}

QString newName()
{
    const auto lock = holdSignals();
    return HiddenName{thisProcess(), registry().made++}.text();
}

void removeEmpty(const QStringList &folders)
{
    std::error_code isNotEmpty;
    for (const QString &folder : folders)
        if (!fs::remove(nativePath(folder), isNotEmpty))
            return;
}

} // namespace

HiddenPath::HiddenPath(const QString &folder, QStringList madeFolders)
    : m_folder(folder), m_path(folder + QLatin1Char('/') + newName()),
      m_madeFolders(std::move(madeFolders))
{
    const auto lock = holdSignals();
    registry().paths.insert(this);
}

HiddenPath::HiddenPath(const Named &place)
    : m_folder(place.folder), m_path(place.folder + QLatin1Char('/') + place.name),
      m_hasOwnName(false)
{
    const auto lock = holdSignals();
    registry().paths.insert(this);
}

HiddenPath::~HiddenPath()
{
    const auto lock = holdSignals();
    if (registry().paths.erase(this) > 0)
        remove();
}

void HiddenPath::forget()
{
    const auto lock = holdSignals();
    registry().paths.erase(this);
}

void HiddenPath::remove() const
{
    // Under another name, so that no thread puts something into a folder that is being emptied.
    const QString aside = m_folder + QLatin1Char('/') + newName();
    std::error_code isNotThere;
    fs::rename(nativePath(m_path), nativePath(aside), isNotThere);
    removeAll(isNotThere ? m_path : aside);
    removeEmpty(m_madeFolders);
}

std::error_code HiddenPath::renameTo(const QString &target)
{
    const auto lock = holdSignals();
    const std::error_code error = renameOver(m_path, target);
    if (!error)
        registry().paths.erase(this);
    return error;
}

std::unique_lock<std::recursive_mutex> holdSignals()
{
    return std::unique_lock(registry().mutex);
}

void removeHiddenPaths()
{
    auto lock = holdSignals();
    for (const HiddenPath *path : registry().paths)
        path->remove();
    // Other threads go on, and one that makes its folder when it writes may have made it again.
    // What has a name that others take, too, may be theirs by now.
    for (const HiddenPath *path : registry().paths)
        if (path->m_hasOwnName)
            path->remove();
    lock.release(); // held until the end
}

void touchHiddenPaths()
{
    const auto lock = holdSignals();
    for (const HiddenPath *path : registry().paths)
        touch(nativePath(path->path()));
}

std::chrono::seconds silenceOf(const QString &path, const HiddenPath &own)
{
    touch(nativePath(own.path()));
    std::error_code isGone;
    const auto now = fs::last_write_time(nativePath(own.path()), isGone);
    const auto then = fs::last_write_time(nativePath(path), isGone);
    return isGone ? std::chrono::seconds(0)
                  : std::chrono::duration_cast<std::chrono::seconds>(now - then);
}

void removeLeftBehind(const QString &folder, const HiddenPath &own)
{
    const QStringList names =
        QDir(folder).entryList({QLatin1String(hiddenPrefix) + QLatin1Char('*')},
                               QDir::AllEntries | QDir::System | QDir::Hidden);
    for (const QString &name : names) {
        const std::optional<HiddenName> hidden = HiddenName::of(name);
        const QString path = folder + QLatin1Char('/') + name;
        // Of two processes that remove the same one comes too late. One of another user's stays.
        if (hidden && hidden->isLeftBehind(silenceOf(path, own)))
            removeAll(path);
    }
}

QStringList makeFolders(const QString &path)
{
    QStringList missing;
    // Not from the root on: the current folder may have a name that is not UTF-8.
    for (QString folder = QDir::cleanPath(path);
         !QFileInfo::exists(folder) && !QFileInfo(folder).isRoot();
         folder = QFileInfo(folder).path())
        missing.prepend(folder);
    QStringList made;
    for (const QString &folder : qAsConst(missing)) {
        std::error_code error;
        if (fs::create_directory(nativePath(folder), error))
            made.prepend(folder);
        if (error) {
            removeEmpty(made);
            throw std::system_error(error);
        }
    }
    return made;
}

} // namespace corvane

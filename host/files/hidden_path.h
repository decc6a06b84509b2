// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <mutex>
#include <system_error>

namespace corvane
{

/// A name for a file or folder in work, beside what it is to become. Whatever its owner makes there
/// is gone with this object, and also when a signal ends the process.
class HiddenPath
{
public:
    /// A name in a folder that no other process has. `madeFolders` were made for it: they go, too,
    /// the first one first, if there is nothing else in them.
    explicit HiddenPath(const QString &folder, QStringList madeFolders = {});
    /// A name of its own that this process alone may use, such as that of a lock.
    struct Named {
        QString folder, name;
    };
    explicit HiddenPath(const Named &place);
    ~HiddenPath();
    HiddenPath(const HiddenPath &) = delete;
    HiddenPath &operator=(const HiddenPath &) = delete;

    const QString &path() const { return m_path; }

    /// Leaves what is there where it is: it is no longer this object's.
    void forget();

    /// Renames what is there, over a file of that name; it then stays. Neither is done when it
    /// fails.
    std::error_code renameTo(const QString &target);

private:
    void remove() const;
    friend void removeHiddenPaths();

    QString m_folder;
    QString m_path;
    QStringList m_madeFolders;
    bool m_hasOwnName = true; ///< or one that other processes take, too
};

/// While the lock is held no signal ends the process: it waits. For steps that belong together and
/// are short.
[[nodiscard]] std::unique_lock<std::recursive_mutex> holdSignals();

/// Removes what is at all hidden paths of this process, and lets no thread make another: for a
/// process that is about to end.
void removeHiddenPaths();

/// Tells other machines that this process still works at its hidden paths.
void touchHiddenPaths();

/// How long ago a file or folder was last touched. `own` stands in the same file system, whose
/// clock is the one that counts.
std::chrono::seconds silenceOf(const QString &path, const HiddenPath &own);

/// Removes what processes that are gone have left at hidden paths of a folder, of which `own` is
/// one.
void removeLeftBehind(const QString &folder, const HiddenPath &own);

/// Makes a folder with those above it that are missing, and returns the ones that it made, the
/// innermost first. Throws std::system_error, and then has made none.
QStringList makeFolders(const QString &path);

} // namespace corvane

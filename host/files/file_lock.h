// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/hidden_path.h"
#include "host/files/process_identity.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// @file
/// Locks as files, for folders that machines share: whoever makes the file holds the lock. It says
/// who that is; startHousekeeping() touches it every half a minute and removes it when a signal
/// ends the process. One whose process is gone, or has not touched it for ten minutes from another
/// machine, is broken by the next who wants it.

namespace corvane
{

/// Who holds a lock.
struct LockHolder {
    ProcessIdentity process;
    QString job;        ///< of a batch system; empty without one
    int restart = 0;    ///< how often that system has started the job again
    quint64 number = 0; ///< of the lock among those of the process

    QByteArray text() const; ///< a line of JSON
    static std::optional<LockHolder> of(const QByteArray &text);

    /// "process 4711 on host a, job 17", for people.
    QString words() const;
};

/// What a batch system knows of the holder of a lock: whether its job has ended.
using JobCheck = std::function<bool(const LockHolder &holder)>;

class FileLock
{
public:
    /// Nothing is locked yet. `job` and `restart` are those of this process.
    explicit FileLock(const QString &path, const QString &job = {}, int restart = 0);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    /// Takes the lock if nobody holds it, and says whether this object has it now. It is given back
    /// with the object, unless another one has broken it meanwhile. Throws InputError when no file
    /// can be made there.
    bool take(const JobCheck &hasEnded = {});

    /// Who held the lock when it could not be taken, or before it was broken, in words.
    const QString &holder() const { return m_holder; }
    /// Whether it was taken from a holder that is gone.
    bool wasBroken() const { return m_wasBroken; }

private:
    bool make(const QByteArray &text);
    bool breakStale(const JobCheck &hasEnded);

    QString m_path;
    LockHolder m_own;
    QString m_holder;
    bool m_wasBroken = false;
    std::unique_ptr<HiddenPath> m_file;
};

/// Who holds the lock of that path now; unset when nobody does, or nobody who still works. For
/// those that only look.
std::optional<LockHolder> holderOf(const QString &path);

} // namespace corvane

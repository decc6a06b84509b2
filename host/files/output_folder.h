// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace corvane
{

/// A set of files that appear in a folder together or not at all: they are written into a hidden
/// folder inside it and moved up by commit(). Destroyed without a commit it leaves nothing, and a
/// folder that it had to make is gone again.
class OutputFolder
{
public:
    /// Makes the folder when it is missing. Throws InputError when nothing can be written there.
    explicit OutputFolder(const QString &path);
    ~OutputFolder();
    OutputFolder(const OutputFolder &) = delete;
    OutputFolder &operator=(const OutputFolder &) = delete;

    /// Where to write the file of that name now, and where it will be after the commit.
    QString path(const QString &name) const;
    QString finalPath(const QString &name) const;

    /// Moves every file to its place, over older ones of the same name. Throws InputError.
    void commit();

private:
    QString m_path;
    bool m_made;
    std::optional<QTemporaryDir> m_hidden;
};

} // namespace corvane

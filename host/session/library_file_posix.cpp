// SPDX-License-Identifier: GPL-3.0-or-later
//
// Of a library for another machine the system says that the file is not there, and one whose end is
// missing ends the program that loads it with a bus error.
#include "host/session/library_file.h"

#include <QFile>
#include <algorithm>
#include <cstring>
#include <link.h>

namespace corvane
{

namespace
{

using Head = ElfW(Ehdr);
using Part = ElfW(Phdr);

/// Reads a record at a place of a file; false when it is not there as a whole.
template <typename Record>
bool readAt(QFile &file, quint64 place, Record &record)
{
    return file.seek(static_cast<qint64>(place)) &&
           file.read(reinterpret_cast<char *>(&record), sizeof record) == sizeof record;
}

bool isLibrary(const Head &head)
{
    return std::memcmp(head.e_ident, ELFMAG, SELFMAG) == 0;
}

bool isForThisComputer(const Head &head)
{
    QFile program(QStringLiteral("/proc/self/exe"));
    Head own{};
    return !program.open(QIODevice::ReadOnly) || !readAt(program, 0, own) ||
           (head.e_ident[EI_CLASS] == own.e_ident[EI_CLASS] &&
            head.e_ident[EI_DATA] == own.e_ident[EI_DATA] && head.e_machine == own.e_machine);
}

/// Bytes of the file up to the end of the last part that is mapped; 0 when its head has no such
/// list.
quint64 mappedBytes(QFile &file, const Head &head)
{
    quint64 end = 0;
    for (quint64 n = 0; n < head.e_phnum && head.e_phentsize == sizeof(Part); ++n) {
        Part part{};
        const bool isThere = readAt(file, head.e_phoff + n * sizeof part, part);
        if (isThere && part.p_type == PT_LOAD)
            end = std::max<quint64>(end, part.p_offset + part.p_filesz);
    }
    return end;
}

} // namespace

QString libraryFault(const QString &path)
{
    QFile file(path);
    Head head{};
    if (!file.open(QIODevice::ReadOnly) || !readAt(file, 0, head) || !isLibrary(head))
        return {};
    if (!isForThisComputer(head))
        return QStringLiteral("was built for another kind of computer");
    const quint64 needed = mappedBytes(file, head);
    if (static_cast<quint64>(file.size()) < needed)
        return QStringLiteral("is cut off: it has %1 bytes of at least %2")
            .arg(file.size())
            .arg(needed);
    return {};
}

} // namespace corvane

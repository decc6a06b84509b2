// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_kind.h"

#include <gtest/gtest.h>

namespace corvane
{

TEST(FileKind, IsToldByTheEndingInAnyCaseOfLetters)
{
    for (const auto &[path, kind] : {std::pair{"/a/sub.vmr", FileKind::Vmr},
                                     {"sub.VTC", FileKind::Vtc},
                                     {"sub.1.voi", FileKind::Voi},
                                     {"sub.Prt", FileKind::Prt},
                                     {"sub_T1w.nii", FileKind::Nifti},
                                     {"sub_T1w.NII.GZ", FileKind::Nifti},
                                     {"sub.nrrd", FileKind::Nrrd},
                                     {"sub.nhdr", FileKind::Nrrd},
                                     {"sub.gz", FileKind::Other},
                                     {"sub_events.tsv", FileKind::Table},
                                     {"labels.CTAB", FileKind::Table},
                                     {"motion.1d", FileKind::Table},
                                     {"sub.vtc.txt", FileKind::Table},
                                     {"sub.docx", FileKind::Other},
                                     {"vmr", FileKind::Other},
                                     {"", FileKind::Other}})
        EXPECT_EQ(fileKind(QString::fromLatin1(path)), kind) << path;
}

TEST(FileKind, GivesNamesTheirEndingsAndTakesThemOff)
{
    EXPECT_EQ(fileName(QStringLiteral("sub.1"), FileKind::Vtc), QStringLiteral("sub.1.vtc"));
    EXPECT_EQ(fileName(QStringLiteral("sub"), FileKind::Nifti), QStringLiteral("sub.nii"));
    EXPECT_EQ(nameWithoutEnding(QStringLiteral("/a.b/sub.1.vtc")), QStringLiteral("sub.1"));
    EXPECT_EQ(nameWithoutEnding(QStringLiteral("sub.Nii.gz")), QStringLiteral("sub"));
    EXPECT_EQ(nameWithoutEnding(QStringLiteral("sub_events.tsv")), QStringLiteral("sub_events"));
    EXPECT_EQ(nameWithoutEnding(QStringLiteral("notes.md")), QStringLiteral("notes.md"));
}

TEST(FileKind, MakesFiltersForFileDialogs)
{
    EXPECT_EQ(
        fileFilter(QStringLiteral("Anatomies"), {FileKind::Vmr, FileKind::Nifti, FileKind::Nrrd}),
        QStringLiteral("Anatomies (*.vmr *.nii *.nii.gz *.nrrd *.nhdr)"));
}

TEST(FileKind, TellsAllItsEndings)
{
    EXPECT_EQ(knownEndings(),
              QStringLiteral(".vmr, .vtc, .voi, .prt, .nii, .nii.gz, .nrrd, .nhdr, .tsv, .ctab, "
                             ".par, .1D and .txt"));
}

} // namespace corvane

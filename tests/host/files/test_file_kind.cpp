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
                                     {"sub.vtc.txt", FileKind::Other},
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
    EXPECT_EQ(nameWithoutEnding(QStringLiteral("notes.txt")), QStringLiteral("notes.txt"));
}

TEST(FileKind, MakesFiltersForFileDialogs)
{
    EXPECT_EQ(
        fileFilter(QStringLiteral("Anatomies"), {FileKind::Vmr, FileKind::Nifti, FileKind::Nrrd}),
        QStringLiteral("Anatomies (*.vmr *.nii *.nii.gz *.nrrd *.nhdr)"));
}

} // namespace corvane

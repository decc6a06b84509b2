// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which process is the host: a program is started under several names, and its file is replaced
// while it runs. A function that only a library of the program has is none of the host's.
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>

namespace
{

struct ModuleCase {
    const char *name;   ///< of the program's file
    const char *change; ///< see host_module_probe.cpp
    bool isHost;
};

std::ostream &operator<<(std::ostream &stream, const ModuleCase &which)
{
    return stream << which.name << ", " << which.change;
}

class HostModule : public testing::TestWithParam<ModuleCase>
{
};

TEST_P(HostModule, IsToldByTheNameUnderWhichItWasLoaded)
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QString::fromUtf8(GetParam().name));
    ASSERT_TRUE(QFile::copy(QStringLiteral(PROBE), program));
    const int status = QProcess::execute(program, {QString::fromUtf8(GetParam().change)});
    EXPECT_EQ(status, GetParam().isHost ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(
    Names, HostModule,
    testing::Values(ModuleCase{"Corvane", "keep", true}, ModuleCase{"Corvane", "delete", true},
                    ModuleCase{"Corvane", "replace", true}, ModuleCase{"Workbench", "keep", false},
                    ModuleCase{"Workbench", "delete", false},
                    ModuleCase{"Workbench", "replace", false},
                    // A renamed program has its new name.
                    ModuleCase{"Corvane", "rename", false},
                    // Files may be named like the mark of a deleted one.
                    ModuleCase{"Corvane (deleted)", "keep", false},
                    ModuleCase{"Corvane (deleted)", "delete", false},
                    ModuleCase{"Corvane", "decoy", true}, ModuleCase{"Workbench", "decoy", false},
                    ModuleCase{" (deleted)", "keep", false}, ModuleCase{"deleted)", "keep", false},
                    ModuleCase{"C", "delete", false}));

TEST(HostModule, OfALinkIsTheFileBehindIt)
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("Corvane"));
    const QString link = folder.filePath(QStringLiteral("corvane-workbench"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(PROBE), program));
    ASSERT_TRUE(QFile::link(program, link));
    EXPECT_EQ(QProcess::execute(link, {QStringLiteral("keep")}), 0);
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
//
// Five hundred subjects in one session of the workbench with the plugin: each with an anatomy, a
// run, VOIs and a protocol of its own, added to the table, computed and compared by clicks and
// keys.
//
//   many_subjects/Corvane          QT_QPA_PLATFORM=offscreen and a HOME of its own; some minutes
#include "tests/host/module/module_session.h"

#include <QFile>
#include <QListWidget>

#include <cstdio>
#include <filesystem>

namespace corvane
{

namespace
{

constexpr int subjects = 500;

/// What the system tells of the memory of this process, without its mapped files.
QByteArray ownMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("RssAnon:"))
            return line.simplified();
    return {};
}

class ManySubjects : public ModuleSession
{
protected:
    /// The same file under another name.
    QString copy(const QString &file, int number) const
    {
        const QFileInfo info(file);
        const QString path = info.dir().filePath(
            QStringLiteral("s%1.%2").arg(QString::number(number), info.suffix()));
        std::filesystem::create_hard_link(file.toStdString(), path.toStdString());
        return path;
    }
};

TEST_F(ManySubjects, AreAddedAndComputed)
{
    const SubjectFiles files = writeSmallSubject(folder);
    std::vector<SubjectFiles> all;
    QStringList anatomies;
    for (int n = 0; n < subjects; ++n) {
        all.push_back({copy(files.vmr, n), copy(files.vtc, n), copy(files.voi, n), {}});
        anatomies += all.back().vmr;
    }
    openWorkbench(anatomies);
    startPlugin();
    for (int n = 0; n < subjects; ++n) {
        const QString name = QStringLiteral("subject %1").arg(n);
        addSubject(name, all[std::size_t(n)]);
        selectProfile(name);
        chooseVois({0, 1, 2, 3, 4, 5});
        compute();
        ASSERT_EQ(results()->count(), n + 1);
    }
    std::printf("%s without mapped files\n", ownMemory().constData());
    const Eigen::MatrixXf first = finished(0).matrices.front();
    EXPECT_GT(first.cwiseAbs().maxCoeff(), 0.0F);
    EXPECT_EQ(finished(subjects - 1).matrices.front(), first);
    closeWorkbench();
}

} // namespace

} // namespace corvane

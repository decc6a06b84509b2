// SPDX-License-Identifier: GPL-3.0-or-later
// A dataset of thousands is indexed one participant at a time: the system tells what was opened.
#include "host/derivatives/run_index.h"
#include "tests/host/support/host_files.h"

#include <sys/inotify.h>
#include <unistd.h>

namespace corvane
{
namespace
{

/// Tells whether folders were listed, or files in them opened.
class WatchedFolders
{
public:
    explicit WatchedFolders(const QStringList &folders) : m_queue(inotify_init1(IN_NONBLOCK))
    {
        for (const QString &folder : folders)
            EXPECT_GE(inotify_add_watch(m_queue, folder.toUtf8().constData(), IN_OPEN | IN_ACCESS),
                      0);
    }
    ~WatchedFolders() { close(m_queue); }
    WatchedFolders(const WatchedFolders &) = delete;
    WatchedFolders &operator=(const WatchedFolders &) = delete;

    bool wereTouched() const
    {
        char events[4096];
        return read(m_queue, events, sizeof events) > 0;
    }

private:
    int m_queue;
};

TEST(RunIndex, OpensNoFolderOfAParticipantWhoIsNotAskedFor)
{
    const TemporaryFolder folder;
    QStringList others;
    for (const char *participant : {"sub-01", "sub-02"}) {
        const QString own = folder.path(participant);
        ASSERT_TRUE(QDir().mkpath(own + QStringLiteral("/func")));
        putBytes(own + QStringLiteral("/func/%1_task-rest_space-T1w_desc-preproc_bold.nii.gz")
                           .arg(QLatin1String(participant)),
                 {});
        others = QStringList{own, own + QStringLiteral("/func")};
    }
    const WatchedFolders watched(others);
    RunFilter filter;
    filter.participants = QStringList{QStringLiteral("01")};
    EXPECT_EQ(indexRuns(folder.path(), filter).size(), 1U);
    EXPECT_FALSE(watched.wereTouched());

    filter.participants = QStringList{QStringLiteral("02")};
    EXPECT_EQ(indexRuns(folder.path(), filter).size(), 1U);
    EXPECT_TRUE(watched.wereTouched());
}

} // namespace
} // namespace corvane

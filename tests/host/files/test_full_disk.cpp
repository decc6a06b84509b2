// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/vtc_writer.h"
#include "tests/host/support/host_files.h"

#include <csignal>
#include <sys/resource.h>

namespace corvane
{

namespace
{

/// Files of this process may have this many bytes as long as the object lives.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};

TEST(VtcWriter, NoticesAFullDiskBeforeTheWork)
{
    const TemporaryFolder folder;
    const VtcInfo info = smallVtcInfo();
    const QString path = folder.path("run.vtc");
    std::string error;
    {
        const FileSizeLimit limit(100);
        error = errorOf([&] { VtcWriter writer(path, info); });
    }
    const auto length = vtcFileHeader(info).size() + info.sampleCount() * 2;
    EXPECT_EQ(error, path.toStdString() + ": writing: found File too large, expected room for " +
                         std::to_string(length) + " bytes");
    EXPECT_TRUE(folder.entries().isEmpty());
}

} // namespace

} // namespace corvane

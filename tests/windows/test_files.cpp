// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files on Windows: paths of every kind, targets that are open or locked, and folders that may not
// be written.
#include "host/files/image_reader.h"
#include "host/files/listing.h"
#include "host/files/output_folder.h"
#include "host/files/vtc_writer.h"
#include "tests/host/support/host_files.h"

#include <QFileInfo>
#include <gmock/gmock.h>
#include <nodalis/csv.h>
#include <windows.h>

#include <functional>

namespace corvane
{

namespace
{

/// One way in which the program writes a file. Throws InputError.
struct Writer {
    const char *name;
    std::function<void(const QString &path)> write;
};

void writeVtc(const QString &path)
{
    VtcWriter writer(path, smallVtcInfo());
    const std::vector<short> samples = numberedSamples<short>(smallVtcInfo());
    for (std::size_t t = 0; t < 4; ++t) {
        for (std::size_t voxel = 0; voxel < 12; ++voxel)
            writer.shortVolume()[voxel] = samples[4 * voxel + t];
        writer.addVolume();
    }
    writer.commit();
}

void writeTable(const QString &path)
{
    if (!nodalis::to_csv(Eigen::MatrixXf::Identity(3, 3), path.toStdString()))
        throw InputError(path, QStringLiteral("writing"), QStringLiteral("an error"),
                         QStringLiteral("room for the table"));
}

void writeIntoFolder(const QString &path)
{
    const QFileInfo place(path);
    OutputFolder folder(place.path(), QStringLiteral("test"));
    writeFile(folder.path(place.fileName()), "text\n");
    EXPECT_EQ(folder.commit(), QStringList());
}

std::vector<Writer> writers()
{
    return {{"a.vmr", [](const QString &path) { writeVmr(path, zeroVmr()); }},
            {"a.vtc", writeVtc},
            {"a.voi", [](const QString &path) { writeVoiFile(path, smallVoiSet()); }},
            {"a.csv", writeTable},
            {"a.txt", writeIntoFolder}};
}

/// A file or folder that another program keeps for itself.
class Locked
{
public:
    explicit Locked(const QString &path)
        : m_handle(CreateFileW(path.toStdWString().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                               FILE_FLAG_BACKUP_SEMANTICS, nullptr)) // folders, too
    {
        EXPECT_NE(m_handle, INVALID_HANDLE_VALUE) << path.toStdString();
    }
    ~Locked() { CloseHandle(m_handle); }
    Locked(const Locked &) = delete;
    Locked &operator=(const Locked &) = delete;

private:
    HANDLE m_handle;
};

/// A folder of every kind that users have.
class Places : public testing::TestWithParam<const char *>
{
protected:
    void SetUp() override
    {
        place = base.path(GetParam());
        if (place.endsWith(QLatin1String("long"))) {
            while (place.size() < 400)
                place += QStringLiteral("/a folder with quite a long name");
        }
        ASSERT_TRUE(QDir().mkpath(place));
    }

    QString path(const char *name) const { return place + QLatin1Char('/') + QLatin1String(name); }
    QStringList entries() const
    {
        return QDir(place).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                     QDir::NoDotAndDotDot);
    }

    TemporaryFolder base;
    QString place;
};

TEST_P(Places, EveryFileIsWrittenAndReplaced)
{
    for (const Writer &writer : writers()) {
        putBytes(path(writer.name), "old");
        EXPECT_EQ(errorOf([&] { writer.write(path(writer.name)); }), "no error") << writer.name;
        EXPECT_GT(QFileInfo(path(writer.name)).size(), 3) << writer.name;
        EXPECT_EQ(errorOf([&] { writer.write(path(writer.name)); }), "no error") << writer.name;
    }
    EXPECT_EQ(entries().join(' ').toStdString(),
              ".corvane-outputs.json a.csv a.txt a.vmr a.voi a.vtc");
    EXPECT_EQ(readVmr(path("a.vmr")).type, Vmr::UChar);
    EXPECT_TRUE(verifyVtcChecksum(VtcFile(path("a.vtc"))));
    EXPECT_TRUE(readVoiFile(path("a.voi")) == smallVoiSet());
    EXPECT_EQ(bytesOf(path("a.csv")), "1,0,0\n0,1,0\n0,0,1\n");
    EXPECT_EQ(bytesOf(path("a.txt")), "text\n");
}

TEST_P(Places, AnImageIsRead)
{
    putBytes(path("a.nrrd"), QByteArray("NRRD0004\ntype: uchar\ndimension: 3\nspace: RAS\n"
                                        "sizes: 2 1 1\nspace directions: (1,0,0) (0,1,0) (0,0,1)\n"
                                        "encoding: raw\n\n") +
                                 "\x05\x09");
    QStringList notes;
    const Image3d<float> image = readImage(path("a.nrrd"), notes);
    EXPECT_EQ(image.voxels, (std::vector<float>{5.0f, 9.0f}));
}

TEST_P(Places, TheNamesInAFolderAreListed)
{
    putBytes(path("file.txt"), "text");
    putBytes(path(".hidden"), "text");
    ASSERT_TRUE(QDir(place).mkdir(QStringLiteral("folder")));
    const QStringList all{QStringLiteral("*"), QStringLiteral(".*")};
    const auto names = [&](Listed kind) {
        return namesInFolder(place, all, kind).join(' ').toStdString();
    };
    EXPECT_EQ(names(Listed::Files), ".hidden file.txt");
    EXPECT_EQ(names(Listed::Folders), "folder");
    EXPECT_EQ(names(Listed::Everything), ".hidden file.txt folder");
    EXPECT_EQ(namesInFolder(path("folder"), all, Listed::Everything), QStringList());
    EXPECT_EQ(namesInFolder(path("none"), all, Listed::Everything), QStringList());
    EXPECT_EQ(namesInFolder(path("file.txt"), all, Listed::Everything), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Kinds, Places,
                         testing::Values("plain", "with spaces (and more)",
                                         "Gr\xc3\xb6\xc3\x9f"
                                         "e",
                                         "\xe6\xb8\xac\xe5\xae\x9a \xf0\x9f\xa7\xa0", "long"));

TEST(Targets, ThatAnotherProgramKeepsStayAsTheyAre)
{
    const TemporaryFolder folder;
    for (const Writer &writer : writers()) {
        const QString path = folder.path(writer.name);
        putBytes(path, "kept");
        {
            const Locked locked(path);
            EXPECT_THAT(errorOf([&] { writer.write(path); }),
                        testing::StartsWith(path.toStdString() + ": "))
                << writer.name;
        }
        EXPECT_EQ(bytesOf(path), "kept") << writer.name;
        EXPECT_EQ(folder.entries(), QStringList(QString::fromLatin1(writer.name)));
        QFile::remove(path);
    }
}

TEST(Targets, ThatTheProgramItselfHasOpenStayReadable)
{
    const TemporaryFolder folder;
    const QString path = folder.path("a.vtc");
    writeVtc(path);
    const VtcFile open(path);
    EXPECT_THAT(errorOf([&] { writeVtc(path); }), testing::StartsWith(path.toStdString() + ": "));
    EXPECT_TRUE(verifyVtcChecksum(open));
    EXPECT_EQ(folder.entries(), QStringList(QStringLiteral("a.vtc")));
}

TEST(Folders, ThatCannotBeListedAreSaid)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a.txt"), "text");
    const Locked keeper(folder.path(""));
    EXPECT_THAT(
        errorOf([&] { namesInFolder(folder.path(""), {QStringLiteral("*")}, Listed::Everything); }),
        testing::HasSubstr("listing"));
}

TEST(Folders, ThatMayNotBeWrittenAreSaid)
{
    const QString folder = qEnvironmentVariable("TESSERA_READ_ONLY_FOLDER");
    ASSERT_TRUE(QFileInfo(folder).isDir());
    for (const Writer &writer : writers()) {
        const QString path = folder + QLatin1Char('/') + QLatin1String(writer.name);
        EXPECT_NE(errorOf([&] { writer.write(path); }), "no error") << writer.name;
        EXPECT_FALSE(QFileInfo::exists(path)) << writer.name;
    }
}

} // namespace

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/gzip_file.h"

#include "host/files/byte_source.h"
#include "tests/host/support/host_files.h"

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace corvane
{
namespace
{

QByteArray randomBytes(std::mt19937 &generator, int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(generator()); });
    return bytes;
}

void write(GzipFile &file, const QByteArray &bytes)
{
    file.write(bytes.constData(), bytes.size());
}

TEST(GzipFile, HoldsWhatWasWrittenInPieces)
{
    const TemporaryFolder folder;
    std::mt19937 generator(1);
    QByteArray all;
    GzipFile file(folder.path("packed.gz"));
    for (const int length : {0, 1, 300, 300000, 0, 70000}) {
        const QByteArray piece = randomBytes(generator, length / 2) + QByteArray(length / 2, 'x');
        write(file, piece);
        all += piece;
    }
    file.commit();

    QByteArray read(all.size() + 1, '\0');
    const std::unique_ptr<ByteSource> source = openBytes(folder.path("packed.gz"));
    ASSERT_EQ(source->read(read.data(), read.size()), all.size());
    EXPECT_EQ(read.left(all.size()), all);
    EXPECT_LT(QFileInfo(folder.path("packed.gz")).size(), all.size() * 6 / 10);
}

/// No name, no time, and no system, by which files of two machines would differ.
TEST(GzipFile, DoesNotTellWhereAndWhenItWasWritten)
{
    const TemporaryFolder folder;
    GzipFile file(folder.path("packed.gz"));
    write(file, "text");
    file.commit();
    const QByteArray bytes = bytesOf(folder.path("packed.gz"));
    EXPECT_EQ(bytes.left(4).toHex(), "1f8b0800");
    EXPECT_EQ(bytes.mid(4, 4).toHex(), "00000000");
    EXPECT_EQ(bytes.mid(9, 1).toHex(), "ff");
}

/// A packer may take an address for data, by which one file of some thousands differs.
TEST(GzipFile, DoesNotDependOnItsPlaceInMemory)
{
    const TemporaryFolder folder;
    std::mt19937 generator(1);
    for (int content = 0; content < 700; ++content) {
        const QByteArray twice = randomBytes(generator, 9).repeated(2) + QByteArray(8000, 0);
        std::vector<std::unique_ptr<GzipFile>> files;
        for (int place = 0; place < 16; ++place)
            files.push_back(std::make_unique<GzipFile>(folder.path(QString::number(place))));
        for (const auto &file : files) {
            write(*file, twice);
            file->commit();
        }
        for (int place = 1; place < 16; ++place)
            ASSERT_EQ(bytesOf(folder.path(QString::number(place))).toHex(),
                      bytesOf(folder.path("0")).toHex())
                << content;
    }
}

TEST(GzipFile, LeavesNothingWithoutACommit)
{
    const TemporaryFolder folder;
    {
        GzipFile file(folder.path("packed.gz"));
        write(file, QByteArray(1 << 20, 'x'));
    }
    EXPECT_TRUE(folder.entries().isEmpty());
}

} // namespace
} // namespace corvane

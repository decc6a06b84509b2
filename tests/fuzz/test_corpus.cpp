// SPDX-License-Identifier: GPL-3.0-or-later
//
// Malformed files, most of which a fuzzer has found: tests/corpus/READER/... Each is refused with
// an error of one line that names it.
#include "tests/fuzz/readers.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace
{

class Corpus : public testing::TestWithParam<reading::Reader>
{
};

TEST_P(Corpus, IsRefused)
{
    const QDir folder(QStringLiteral(CORPUS_FOLDER "/") + QLatin1String(GetParam().name));
    if (!folder.exists()) // texts, of which the others tests have the bad ones
        return;
    const QStringList names = folder.entryList(QDir::Files);
    EXPECT_FALSE(names.isEmpty());
    for (const QString &name : names) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_NE(reading::errorOf(GetParam(), file.readAll()), "") << name.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Corpus, testing::ValuesIn(reading::begin(), reading::end()),
                         [](const testing::TestParamInfo<reading::Reader> &reader) {
                             return std::string(reader.param.name);
                         });

TEST(CorpusFolders, AreThoseOfReaders)
{
    for (const QString &name :
         QDir(QStringLiteral(CORPUS_FOLDER)).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        EXPECT_TRUE(std::any_of(reading::begin(), reading::end(), [&](const reading::Reader &one) {
            return name == QLatin1String(one.name);
        })) << name.toStdString();
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
//
// The way from a study's files to matrices, tests, pages and figures, in other languages, folders
// and homes: every file is the same byte for byte, and so is what is printed.
#include "tests/host/support/host_files.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

/// What the commands left and said. Files by their paths, without hidden ones: these hold times and
/// the machine's name.
struct Outcome {
    QMap<QString, QByteArray> files;
    QByteArray output;
    QByteArray errors;
};

/// Each line is a command, in the folder of the study.
QStringList commands()
{
    const QString func = QStringLiteral("study/sub-01/ses-a/func/sub-01_ses-a_task-nback");
    const QString run =
        func + QStringLiteral("_space-MNI152NLin2009cAsym_res-2_desc-preproc_bold.nii.gz");
    const QString labels =
        QStringLiteral("study/atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg");
    const QString atlas = QStringLiteral(" --atlas %1.nii.gz --labels %1.tsv").arg(labels);
    const QString events = QStringLiteral(" --events ") + func + QStringLiteral("_events.tsv");
    return {
        QStringLiteral("example --study --subjects 4 study"),
        QStringLiteral("import --functional ") + run + atlas + events +
            QStringLiteral(" --name my --out imported"),
        QStringLiteral("compute --anatomy imported/my.vmr --vtc imported/my.vtc --voi "
                       "imported/my.voi --use-protocol --plots --out computed"),
        QStringLiteral("connectome --bold ") + run + atlas + events +
            QStringLiteral(" --confounds ") + func +
            QStringLiteral("_desc-confounds_timeseries.tsv --clean 24P --plots --page --out "
                           "connected"),
        QStringLiteral("graph computed/connectivity_0_0back.csv --mst --out graphed"),
        QStringLiteral("compare graphed/features.csv graphed/features.csv --column strength "
                       "--column-b clustering_coeff --out compared"),
        QStringLiteral("cohort study made participant --task-id rest --session-id a --clean 24P "
                       "--nprocs 1") +
            atlas,
        QStringLiteral("cohort study made group --formula group --contrast p=group[Patient] "
                       "--permutations 50 --plots --page"),
        QStringLiteral("figure connected --view ring --out figure.png"),
        QStringLiteral("figure connected --view ring --out figure.svg"),
        QStringLiteral("figure connected --view ring --out figure.pdf"),
        QStringLiteral("figure connected --view ring --out figure.tsv"),
    };
}

Outcome outcomeIn(const QString &folder, const QProcessEnvironment &environment)
{
    Outcome outcome;
    EXPECT_TRUE(QDir().mkpath(folder));
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environment);
    for (const QString &command : commands()) {
        process.start(QStringLiteral(CORVANE_PROGRAM), command.split(QLatin1Char(' ')));
        EXPECT_TRUE(process.waitForFinished(120000));
        const QByteArray errors = process.readAllStandardError();
        EXPECT_EQ(process.exitCode(), 0) << command.toStdString() << '\n' << errors.toStdString();
        outcome.output += process.readAllStandardOutput();
        outcome.errors += errors;
    }
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        // A summary names the protocol by its whole path.
        outcome.files[QDir(folder).relativeFilePath(path)] =
            bytesOf(path).replace(folder.toUtf8(), "FOLDER");
    }
    return outcome;
}

/// Files that only one of two has, or that differ.
std::vector<std::string> differences(const Outcome &one, const Outcome &other)
{
    std::vector<std::string> names;
    QMap<QString, QByteArray> all = other.files;
    for (auto file = one.files.begin(); file != one.files.end(); ++file)
        if (!all.contains(file.key()) || all.take(file.key()) != file.value())
            names.push_back(file.key().toStdString());
    for (const QString &only : all.keys())
        names.push_back(only.toStdString());
    return names;
}

/// How two contents of a file differ.
std::string difference(const QByteArray &one, const QByteArray &other)
{
    const auto end = one.begin() + std::min(one.size(), other.size());
    const auto place = std::mismatch(one.begin(), end, other.begin()).first - one.begin();
    return std::to_string(one.size()) + " bytes and " + std::to_string(other.size()) +
           ", which differ from byte " + std::to_string(place) + " on";
}

class Surroundings : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<TemporaryFolder>();
        s_plain = outcomeIn(s_folder->path("plain"), plainEnvironment());
        ASSERT_GT(s_plain.files.size(), 100);
    }
    static void TearDownTestSuite() { s_folder.reset(); }

    static QProcessEnvironment plainEnvironment()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        return environment;
    }

    /// All is as in the plain folder.
    static void expectPlain(const Outcome &outcome)
    {
        for (const std::string &name : differences(s_plain, outcome)) {
            const QString file = QString::fromStdString(name);
            ADD_FAILURE() << name << ": "
                          << difference(s_plain.files[file], outcome.files.value(file));
        }
        EXPECT_EQ(outcome.output.toStdString(), s_plain.output.toStdString());
        EXPECT_EQ(outcome.errors.toStdString(), s_plain.errors.toStdString());
    }

    /// A language, made of the system's sources.
    static QProcessEnvironment inLanguage(const QString &language, const QString &encoding)
    {
        const QString name = language + QLatin1Char('.') + encoding;
        const QString places = s_folder->path("locales");
        EXPECT_TRUE(QDir().mkpath(places));
        QProcess localedef;
        localedef.start(QStringLiteral("localedef"),
                        {QStringLiteral("-i"), language, QStringLiteral("-f"), encoding,
                         places + QLatin1Char('/') + name});
        EXPECT_TRUE(localedef.waitForFinished(120000));
        EXPECT_TRUE(QFileInfo(places + QLatin1Char('/') + name).isDir())
            << "the sources of languages are in Debian's package locales";
        QProcessEnvironment environment = plainEnvironment();
        environment.insert(QStringLiteral("LOCPATH"), places);
        environment.insert(QStringLiteral("LC_ALL"), name);
        environment.insert(QStringLiteral("LANG"), name);
        environment.insert(QStringLiteral("LANGUAGE"), language);
        return environment;
    }

    static std::unique_ptr<TemporaryFolder> s_folder;
    static Outcome s_plain;
};

std::unique_ptr<TemporaryFolder> Surroundings::s_folder;
Outcome Surroundings::s_plain;

/// Not even root can write below a device.
TEST_F(Surroundings, GermanWithAHomeThatNobodyCanWriteTo)
{
    QProcessEnvironment environment = inLanguage(QStringLiteral("de_DE"), QStringLiteral("UTF-8"));
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/dev/null"));
    expectPlain(outcomeIn(s_folder->path("de"), environment));
}

TEST_F(Surroundings, TurkishInAPathOf250Characters)
{
    QString folder = s_folder->path("tr");
    while (folder.size() < 249)
        folder += QLatin1Char('/') + QString(std::min(50, 249 - folder.size()), QLatin1Char('n'));
    ASSERT_EQ(folder.size(), 250);
    expectPlain(outcomeIn(folder, inLanguage(QStringLiteral("tr_TR"), QStringLiteral("UTF-8"))));
}

TEST_F(Surroundings, PersianWithoutAHome)
{
    QProcessEnvironment environment = inLanguage(QStringLiteral("fa_IR"), QStringLiteral("UTF-8"));
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    environment.remove(QStringLiteral("HOME"));
    expectPlain(outcomeIn(s_folder->path("fa"), environment));
}

/// Only that plugins get another text for the protocol's path is said there, and in the summary.
TEST_F(Surroundings, GermanOfOldEncodingInAFolderOfForeignLetters)
{
    const Outcome outcome =
        outcomeIn(s_folder->path("gr\xc3\xbc\xc3\x9f \xe6\xbc\xa2\xe5\xad\x97 "
                                 "\xd8\xa7\xdb\x8c\xd8\xb1\xd8\xa7\xd9\x86 \xf0\x9f\xa7\xa0"),
                  inLanguage(QStringLiteral("de_DE"), QStringLiteral("ISO-8859-1")));
    EXPECT_THAT(differences(s_plain, outcome), ElementsAre("computed/summary.json"));
    const auto summary = [](const Outcome &of) {
        QJsonObject json =
            QJsonDocument::fromJson(of.files[QStringLiteral("computed/summary.json")]).object();
        json.remove(QStringLiteral("warnings"));
        return json;
    };
    EXPECT_FALSE(summary(outcome).isEmpty());
    EXPECT_EQ(summary(outcome), summary(s_plain));
    EXPECT_EQ(outcome.output.toStdString(), s_plain.output.toStdString());
    EXPECT_THAT(outcome.errors.toStdString(),
                HasSubstr("The path of the linked protocol has characters that Latin-1 lacks"));
}

/// Pictures lack their letters, which is said; all else is the same.
TEST_F(Surroundings, NoFonts)
{
    putBytes(s_folder->path("fonts.conf"),
             "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig/>");
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(QStringLiteral("FONTCONFIG_FILE"), s_folder->path("fonts.conf"));
    const Outcome outcome = outcomeIn(s_folder->path("letterless"), environment);
    EXPECT_EQ(outcome.files.keys(), s_plain.files.keys());
    for (const std::string &name : differences(s_plain, outcome))
        EXPECT_THAT(name, testing::MatchesRegex(".*[.](png|svg|pdf|html)"));
    EXPECT_EQ(outcome.output.toStdString(), s_plain.output.toStdString());
    EXPECT_THAT(outcome.errors.toStdString(),
                HasSubstr("no font is installed: pictures have no letters\n"));
}

} // namespace
} // namespace corvane

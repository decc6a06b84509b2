// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program when the system refuses it something once: writing, renaming, opening, mapping,
// memory, a thread. Some calls of each kind; tests/soak/faults tries them all.
#include "tests/host/study/known_study.h"

#include <QProcess>
#include <gmock/gmock.h>

#include <set>

namespace corvane
{
namespace
{

using testing::HasSubstr;
using testing::StartsWith;

using Files = QMap<QString, QByteArray>;

/// A call of the program that is refused something.
struct Fault {
    const char *kind; ///< with the least bytes behind it for "memory"
    const char *path = "";
    int least = 0; ///< bytes
};

struct FaultedRun : ProgramRun {
    quint64 seen = 0; ///< calls of the kind
};

FaultedRun runFaulted(const QStringList &arguments, const Fault &fault, quint64 number)
{
    const TemporaryFolder folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
    environment.insert(
        QStringLiteral("TESSERA_FAULT"),
        QStringLiteral("%1:%2:%3")
            .arg(QLatin1String(fault.kind), QString::number(number), QString::number(fault.least)));
    environment.insert(QStringLiteral("TESSERA_FAULT_PATH"), QLatin1String(fault.path));
    environment.insert(QStringLiteral("TESSERA_FAULT_SEEN"), folder.path("seen"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(CORVANE_PROGRAM), arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    FaultedRun run;
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    const QByteArray bytes = bytesOf(folder.path("seen"));
    EXPECT_EQ(bytes.size(), int(sizeof run.seen));
    std::memcpy(&run.seen, bytes.constData(), sizeof run.seen);
    return run;
}

/// At most so many numbers from 1 to `count`, with the first and the last.
std::set<quint64> spaced(quint64 count, quint64 most)
{
    std::set<quint64> numbers;
    for (quint64 n = 0; n < most && count > 0; ++n)
        numbers.insert(1 + n * (count - 1) / (most - 1));
    return numbers;
}

/// Files of the program that it is to replace by others of the same names.
class Faults : public testing::TestWithParam<Fault>
{
protected:
    Faults()
    {
        m_study.add(m_old);
        m_study.add(m_new);
        EXPECT_EQ(runCorvane(arguments(m_old)).status, 0);
        m_before = KnownStudy::filesBelow(m_study.out());
        EXPECT_EQ(runCorvane(arguments(m_new)).status, 0);
        m_wanted = KnownStudy::filesBelow(m_study.out());
        EXPECT_EQ(m_before.keys(), m_wanted.keys());
        EXPECT_NE(m_before, m_wanted);
    }

    /// One run, cleaned by the confounds of this one or another, which changes its files.
    QStringList arguments(const KnownRun &cleaner) const
    {
        return m_study.connectome(m_new, cleaner, m_study.out());
    }
    void putOld() const
    {
        EXPECT_TRUE(QDir(m_study.out()).removeRecursively());
        EXPECT_EQ(runCorvane(arguments(m_old)).status, 0);
    }

    KnownStudy m_study;
    const KnownRun m_old{"01", "a"};
    const KnownRun m_new{"01", "b"};
    Files m_before;
    Files m_wanted;
};

TEST_P(Faults, EndAsAMessageAndLeaveTheOldFilesOrTheNew)
{
    putOld();
    const FaultedRun whole = runFaulted(arguments(m_new), GetParam(), 0);
    ASSERT_EQ(whole.status, 0) << whole.errors.constData();
    ASSERT_GT(whole.seen, 0U);
    int refused = 0;
    for (const quint64 number : spaced(whole.seen, 12)) {
        putOld();
        const FaultedRun run = runFaulted(arguments(m_new), GetParam(), number);
        const Files found = KnownStudy::filesBelow(m_study.out());
        if (run.status == 0) {
            EXPECT_EQ(found, m_wanted) << number;
        } else {
            ++refused;
            EXPECT_EQ(run.status, 1) << number;
            EXPECT_THAT(run.errors.toStdString(), StartsWith("Corvane: ")) << number;
        }
        for (auto file = found.begin(); file != found.end(); ++file)
            EXPECT_TRUE(file.value() == m_before.value(file.key()) ||
                        file.value() == m_wanted.value(file.key()))
                << number << ' ' << file.key().toStdString();
        EXPECT_EQ(runCorvane(arguments(m_new)).status, 0) << number;
        EXPECT_EQ(KnownStudy::filesBelow(m_study.out()), m_wanted) << number;
        EXPECT_EQ(KnownStudy::leftBelow(m_study.out()), QStringList()) << number;
    }
    EXPECT_GT(refused, 0);
}

INSTANTIATE_TEST_SUITE_P(Each, Faults,
                         testing::Values(Fault{"write"}, Fault{"rename"}, Fault{"folder"},
                                         Fault{"open"}, Fault{"memory", "", 4096}, Fault{"thread"}),
                         [](const testing::TestParamInfo<Fault> &fault) {
                             return std::string(fault.param.kind);
                         });

TEST(Fault, OfAThreadIsTold)
{
    const FaultedRun run = runFaulted({QStringLiteral("--version")}, {"thread"}, 1);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors.toStdString(), "Corvane: the system gives no further thread for this\n");
}

/// What cannot be read must not pass for what is not there.
TEST(Fault, OfOpeningIsNoAbsenceToAStudy)
{
    KnownStudy study;
    study.addParticipants(2);
    const QString step = QStringLiteral("participant");
    ASSERT_EQ(study.cohort(step).status, 0);
    const Files wanted = KnownStudy::filesBelow(study.out());
    const QByteArray out = study.out().toUtf8();
    const QByteArray data = study.dataset().toUtf8();
    const QStringList again = study.arguments(step);
    const QStringList status{QStringLiteral("cohort"), study.out(), QStringLiteral("status"),
                             QStringLiteral("--collect")};
    int refused = 0;
    for (const auto &[arguments, path] :
         {std::pair(status, out), std::pair(again, out), std::pair(again, data)}) {
        const Fault fault{"open", path.constData()};
        const quint64 calls = runFaulted(arguments, fault, 0).seen;
        EXPECT_GT(calls, 5U);
        for (const quint64 number : spaced(calls, 25)) {
            const FaultedRun run = runFaulted(arguments, fault, number);
            if (run.status == 0) {
                EXPECT_EQ(KnownStudy::filesBelow(study.out()), wanted)
                    << number << run.output.constData() << run.errors.constData();
            }
            refused += run.status == 0 ? 0 : 1;
            ASSERT_EQ(study.cohort(step).status, 0) << number;
            EXPECT_EQ(KnownStudy::filesBelow(study.out()), wanted) << number;
        }
    }
    EXPECT_GT(refused, 5);
}

/// The regions are read more than once, and without them there would be a matrix of none.
TEST(Fault, OfOpeningIsNoResultWithoutRegions)
{
    KnownStudy study;
    const KnownRun run("01");
    study.add(run);
    const QString made = study.path(QStringLiteral("made/my."));
    ASSERT_EQ(runCorvane({QStringLiteral("import"), QStringLiteral("--anatomy"), study.atlas(),
                          QStringLiteral("--functional"),
                          study.file(run, "_space-T1w_desc-preproc_bold.nii.gz"),
                          QStringLiteral("--atlas"), study.atlas(), QStringLiteral("--name"),
                          QStringLiteral("my"), QStringLiteral("--out"),
                          study.path(QStringLiteral("made"))})
                  .status,
              0);
    const QStringList arguments{
        QStringLiteral("compute"),    QStringLiteral("--anatomy"),  made + QStringLiteral("vmr"),
        QStringLiteral("--vtc"),      made + QStringLiteral("vtc"), QStringLiteral("--voi"),
        made + QStringLiteral("voi"), QStringLiteral("--out"),      study.out()};
    const Fault fault{"open", "my.voi"};
    const quint64 calls = runFaulted(arguments, fault, 0).seen;
    const Files wanted = KnownStudy::filesBelow(study.out());
    EXPECT_GT(wanted.size(), 3);
    EXPECT_GT(calls, 1U);
    for (quint64 number = 1; number <= calls; ++number) {
        QDir(study.out()).removeRecursively();
        const FaultedRun faulted = runFaulted(arguments, fault, number);
        EXPECT_EQ(faulted.status, 1) << number;
        EXPECT_THAT(faulted.errors.toStdString(), HasSubstr("my.voi: "));
        EXPECT_EQ(KnownStudy::filesBelow(study.out()), Files()) << number;
    }
}

/// A folder that cannot be listed must not pass for an empty one: half of a set would stay behind.
TEST(Fault, OfListingIsNoEmptyFolder)
{
    KnownStudy study;
    study.addParticipants(1);
    const TemporaryFolder folder;
    putBytes(folder.path("matrix.csv"), "0,1\n1,0\n");
    const QStringList arguments{QStringLiteral("graph"), folder.path("matrix.csv"),
                                QStringLiteral("--mst"), QStringLiteral("--out"),
                                folder.path("out")};
    const Fault fault{"open", ".corvane-unfinished"};
    const quint64 calls = runFaulted(arguments, fault, 0).seen;
    const Files wanted = KnownStudy::filesBelow(folder.path("out"));
    ASSERT_EQ(wanted.size(), 2);
    ASSERT_GT(calls, 0U);
    for (quint64 number = 1; number <= calls; ++number) {
        QDir(folder.path("out")).removeRecursively();
        const FaultedRun run = runFaulted(arguments, fault, number);
        if (run.status == 0) {
            EXPECT_EQ(KnownStudy::filesBelow(folder.path("out")), wanted) << number;
        } else {
            EXPECT_THAT(run.errors.toStdString(), HasSubstr("Too many open files")) << number;
        }
        EXPECT_EQ(runCorvane(arguments).status, 0) << number;
        EXPECT_EQ(KnownStudy::filesBelow(folder.path("out")), wanted) << number;
    }
}

} // namespace
} // namespace corvane

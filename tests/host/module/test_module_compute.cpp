// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plugin's module in a program named as the host: its exports, and the way from files to the
// comparison of two subjects. What it computes is what the command line writes, byte for byte.
#include "plugin/plugin_interface.h"
#include "tests/gui_test.h"
#include "tests/host/module/module_session.h"
#include "tests/host/support/listened_session.h"
#include "tests/host/support/program.h"
#include "tests/support/reference_folder.h"

#include <QCheckBox>
#include <QDir>
#include <QLibrary>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTest>
#include <gmock/gmock.h>
#include <nodalis/nodalis.h>

// The class's type information is in the module alone.
#if defined(__GNUC__)
#define CALLS_MODULE __attribute__((no_sanitize("vptr")))
#else
#define CALLS_MODULE
#endif

namespace corvane
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

using Text = const char *(*)();

CALLS_MODULE bool initPlugin(CVZQPluginInterface *plugin)
{
    return plugin->initPlugin();
}

CALLS_MODULE bool execute(CVZQPluginInterface *plugin)
{
    return plugin->execute();
}

CALLS_MODULE void discard(CVZQPluginInterface *plugin)
{
    delete plugin;
}

/// A function of the module by its exported name.
template <typename Function>
Function exported(const char *name)
{
    QLibrary module(QStringLiteral(MODULE_FILE));
    const auto function = reinterpret_cast<Function>(module.resolve(name));
    EXPECT_NE(function, nullptr) << name << ": " << module.errorString().toStdString();
    return function;
}

/// The subject's matrices as `Corvane compute` makes them of the same files and settings.
class CommandLine
{
public:
    CommandLine(const TemporaryFolder &folder, const SubjectFiles &files,
                const FinishedSubject &subject, const QStringList &settings, bool useProtocol)
        : m_folder(folder.path("out " + subject.name))
    {
        QStringList seeds;
        for (const int seed : subject.seeds)
            seeds += QString::number(seed);
        QStringList arguments{"compute", "--anatomy", files.vmr,       "--vtc", files.vtc, "--voi",
                              files.voi, "--seeds",   seeds.join(','), "--out", m_folder};
        if (useProtocol)
            arguments += "--use-protocol";
        const ProgramRun run = runCorvane(arguments + settings);
        EXPECT_EQ(run.status, 0) << run.errors.constData();
    }
    ~CommandLine() { QDir(m_folder).removeRecursively(); }
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    QByteArray timeseries() const { return bytesOf(m_folder + "/timeseries.csv"); }
    /// Of kind "connectivity" or "mst".
    QString path(const QString &kind, int slice) const
    {
        const QStringList names = {kind + ".csv",
                                   QStringLiteral("%1_%2_*.csv").arg(kind).arg(slice)};
        const QStringList found = QDir(m_folder).entryList(names, QDir::Files);
        EXPECT_EQ(found.size(), 1) << kind.toStdString() << " " << slice;
        return m_folder + '/' + found.value(0);
    }
    int slices() const { return QDir(m_folder).entryList({"connectivity*.csv"}).size(); }

private:
    QString m_folder;
};

class ModuleCompute : public ModuleSession
{
protected:
    /// The dumps of the last compute, which must be what the command line wrote.
    void expectDumpsOf(const CommandLine &command)
    {
        QMap<QString, QByteArray> dumps = takeDumps();
        const int slices = command.slices();
        EXPECT_EQ(dumps.size(), 1 + 4 * slices);
        EXPECT_EQ(dumps.value("connectivity_ts.csv"), command.timeseries());
        for (int slice = 0; slice < slices; ++slice) {
            const QString name = QStringLiteral("correlation_mtx_%1").arg(slice);
            EXPECT_TRUE(dumps.contains(name + ".csv"));
            EXPECT_TRUE(dumps.contains(name + "_treatment_pass_1.csv"));
            EXPECT_EQ(dumps.value(name + "_treatment_pass_2.csv"),
                      bytesOf(command.path("connectivity", slice)));
            EXPECT_EQ(dumps.value(name + "_mst.csv"), bytesOf(command.path("mst", slice)));
        }
    }

    /// Compares both finished subjects; gives the lines that were added.
    QStringList compared()
    {
        auto *const output = find<QPlainTextEdit>(mainDialog(), "plain_GraphResults");
        const QString before = output->toPlainText();
        click(mainDialog(), "btn_ComputeGraphDistance");
        return output->toPlainText().mid(before.size()).split('\n', Qt::SkipEmptyParts);
    }

    /// The table of distances that belongs to two matrices.
    static QStringList distances(const QString &one, const QString &other)
    {
        Eigen::MatrixXf a = readTable(one);
        Eigen::MatrixXf b = readTable(other);
        const auto text = [pad = int(b.rows())](Eigen::MatrixXf x, Eigen::MatrixXf y) {
            const auto distance = nodalis::distances::spectral_euclidean(x, y, pad);
            return QString::number(double(distance), 'g', 6);
        };
        return {text(a, a) + '\t' + text(a, b) + '\t', "0\t" + text(b, b) + '\t'};
    }

    struct Choice {
        SubjectFiles files;
        bool useProtocol;
    };

    void expectTheRoad(const Choice &one, const Choice &other);
};

/// Two subjects, computed with other seeds and settings each, and compared.
void ModuleCompute::expectTheRoad(const Choice &one, const Choice &other)
{
    SCOPED_TRACE(testing::Message()
                 << "protocols used: " << one.useProtocol << ", " << other.useProtocol);
    turnDumpsOn();
    startPlugin();
    setUseProtocol(one.useProtocol);
    addSubject("first", one.files);
    setUseProtocol(other.useProtocol);
    addSubject("second", other.files);
    click(mainDialog(), "chkBox_ShowResults");

    selectProfile("first");
    chooseVois({4, 0, 2});
    setUseProtocol(one.useProtocol);
    compute();
    ASSERT_EQ(results()->count(), 1);
    EXPECT_EQ(finished(0).seeds.size(), 3);
    const CommandLine first(folder, one.files, finished(0), {}, one.useProtocol);
    expectDumpsOf(first);
    EXPECT_EQ(first.slices() > 1, one.useProtocol);

    selectProfile("second");
    click(mainDialog(), "rbtn_PartialCorrelation");
    click(mainDialog(), "rbtn_PositiveMtx");
    chooseVois({1, 3, 5, 2, 6});
    setUseProtocol(other.useProtocol);
    compute();
    ASSERT_EQ(results()->count(), 2);
    EXPECT_EQ(finished(1).seeds.size(), 5);
    const CommandLine second(folder, other.files, finished(1),
                             {"--measure", "partial-correlation", "--values", "positive"},
                             other.useProtocol);
    expectDumpsOf(second);
    EXPECT_EQ(second.slices() > 1, other.useProtocol);

    // Subjects are compared by their first matrices.
    showPage(results());
    for (int item = 0; item < 2; ++item)
        QTest::mouseClick(results()->viewport(), Qt::LeftButton, {},
                          results()->visualItemRect(results()->item(item)).center());
    const QString padded = "Group matrix sizes do not match. They will be padded with zeros.";
    const QString working = "Computing distance score...";
    const QStringList whole{padded, "Will full the full-weighted connectivity matrices.", working};
    EXPECT_EQ(compared(),
              whole + distances(first.path("connectivity", 0), second.path("connectivity", 0)));
    click(mainDialog(), "cbox_grp_useFilteredMatrix");
    const QStringList filtered{padded, "Will use the MST-filtered connectivity matrices.", working};
    EXPECT_EQ(compared(), filtered + distances(first.path("mst", 0), second.path("mst", 0)));

    const QPointer<QWidget> dialog = mainDialog();
    click(mainDialog(), "btn_CloseDialog");
    ASSERT_TRUE(QTest::qWaitFor([&dialog] { return dialog.isNull(); }));
}

} // namespace

TEST_F(ModuleCompute, OfRealRecordingsIsThatOfTheCommandLine)
{
    if (!haveRecordings())
        GTEST_SKIP() << "no real recordings in " << referenceFolder();
    const SubjectFiles one = importRecording(folder, "run001", Events::Imported);
    const SubjectFiles other = importRecording(folder, "run002", Events::Imported);
    const SubjectFiles bare = importRecording(folder, "run003", Events::LeftOut);
    openWorkbench({one.vmr, other.vmr, bare.vmr});
    expectTheRoad({one, false}, {other, false});
    expectTheRoad({one, true}, {bare, false});
    expectTheRoad({one, true}, {other, true});
}

TEST_F(ModuleCompute, OfTheExampleIsThatOfTheCommandLine)
{
    const SubjectFiles example = writeExampleSubject(folder);
    openWorkbench({example.vmr});
    expectTheRoad({example, false}, {example, true});
    expectTheRoad({example, true}, {example, false});
}

// ---- the exports, without the workbench

TEST(ModuleExports, HaveTheTextsOfThePlugin)
{
    EXPECT_STREQ(exported<Text>("getPluginName")(), "Tessera Analysis");
    EXPECT_STREQ(exported<Text>("getPluginDescription")(), "");
    EXPECT_THAT(exported<Text>("getAuthor")(), MatchesRegex("<i>.+</i>"));
    EXPECT_STREQ(exported<Text>("getGUIScript")(), "");
    EXPECT_STREQ(exported<Text>("getPluginVersion")(), "");
    EXPECT_STREQ(exported<Text>("qxtVersion")(), "0.7.0");
}

TEST(ModuleExports, StartThePluginWhereAnAnatomyIsOpen)
{
    ListenedSession host;
    std::vector<std::string> &said = host.log;
    const std::vector<std::string> &messages = host.messages;

    CVZQPluginInterface *const plugin = exported<CVZQPluginInterface *(*)()>("createPlugin")();
    EXPECT_FALSE(initPlugin(plugin));
    EXPECT_THAT(messages,
                ElementsAre("This plugin requires a VMR to operate. Make sure that a VMR is open "
                            "and that its window is selected."));
    EXPECT_EQ(said, messages);

    const TemporaryFolder folder;
    const SubjectFiles files = writeSmallSubject(folder);
    host.session.workspace().openVmr(files.vmr);
    said.clear();
    EXPECT_TRUE(initPlugin(plugin));
    EXPECT_EQ(messages.size(), 1u);
    ASSERT_EQ(said.size(), 3u);
    EXPECT_EQ(said[0], "\n Starting Tessera Analysis Plugin , using Nodalis");
    EXPECT_TRUE(execute(plugin));
    EXPECT_EQ(said.back(), "Executing plugin...");

    QPointer<QWidget> dialog;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->inherits("Tessera"))
            dialog = window;
    ASSERT_FALSE(dialog.isNull());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Tessera Analysis Plugin"));
    dialog->close();
    EXPECT_TRUE(QTest::qWaitFor([&dialog] { return dialog.isNull(); }));
    discard(plugin);
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/save_dialog.h"
#include "tests/plots/line_plot_fixture.h"
#include "tests/support/modal_driver.h"
#include "tests/support/other_user.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <limits>
#include <memory>
#include <sys/resource.h>

namespace
{

void pressSave(QFileDialog &dialog, const QString &path)
{
    auto *name = dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    auto *buttons = dialog.findChild<QDialogButtonBox *>();
    ASSERT_TRUE(name != nullptr && buttons != nullptr);
    name->setText(path);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Save), Qt::LeftButton);
}

/// While it lives, no file of this process grows beyond a few bytes, as on a full disk.
class FullDisk
{
public:
    FullDisk()
    {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = 10;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        signal(SIGXFSZ, SIG_DFL);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit before{};
};

/// A plot of two lines, the first of them hidden, and a folder to export into.
class LinePlotExport : public LinePlotTest
{
protected:
    void SetUp() override
    {
        const float inf = std::numeric_limits<float>::infinity();
        window.addSeries({1, 0.123456789f, -2.5f, 1e-7f, 1234567, inf, 0}, QString(), 0);
        window.addSeries({7, 7, 7, 7, 7, 7, 7}, QString(), 0);
        window.finishPlot({}, false);
        show();
        checkBox(0)->setChecked(false);
        ASSERT_TRUE(folder.isValid());
    }

    /// Runs an export whose dialog saves to that path.
    void exportTo(const QString &path, void (LinePlot::*save)())
    {
        driver.expect<QFileDialog>([path](QFileDialog &dialog) { pressSave(dialog, path); });
        (window.*save)();
    }

    QString in(const char *name) const { return folder.filePath(QLatin1String(name)); }
    QStringList files() const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<cannot be read>");
    }

    static constexpr const char *firstLine = "1,0.123457,-2.5,1e-07,1.23457e+06,0";

    QTemporaryDir folder;
    ModalDriver driver;
};

TEST_F(LinePlotExport, the_context_menu_opens_off_the_mouse_by_the_views_place)
{
    QStringList texts;
    QPoint place;
    QTimer::singleShot(0, &window, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (const QAction *action : menu->actions())
            texts += action->text();
        place = menu->pos();
        menu->close();
    });
    const QPoint inView(20, 30);
    QTest::mouseClick(window.windowHandle(), Qt::RightButton, {}, view()->mapTo(&window, inView));
    // The press asks for the menu in the coordinates of the view; the window takes them for its
    // own.
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return texts == QStringList({"Export to image...", "Export to CSV..."});
    }));
    EXPECT_EQ(place, window.mapToGlobal(inView));
}

TEST_F(LinePlotExport, the_entries_of_the_context_menu_export)
{
    int chosen = 0;
    for (const char *suffix : {"png", "csv"}) {
        const QString path = in("plot.") + QLatin1String(suffix);
        driver.expect<QFileDialog>([path](QFileDialog &dialog) { pressSave(dialog, path); });
        QTimer::singleShot(0, &window, [chosen] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            QTest::mouseClick(menu, Qt::LeftButton, {},
                              menu->actionGeometry(menu->actions().value(chosen)).center());
        });
        window.showContextMenu(QPoint(20, 30));
        ++chosen;
    }
    EXPECT_EQ(files(), QStringList({"plot.csv", "plot.png"}));
    EXPECT_EQ(contents(in("plot.csv")), firstLine);
}

TEST_F(LinePlotExport, the_dialogs_ask_for_any_file_of_their_kind)
{
    const auto look = [](const char *filter, const char *suffix) {
        return [filter, suffix](QFileDialog &dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Save as...");
            EXPECT_EQ(dialog.nameFilters(), QStringList(filter));
            EXPECT_EQ(dialog.fileMode(), QFileDialog::AnyFile);
            EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
            EXPECT_EQ(dialog.defaultSuffix(), suffix);
            dialog.reject();
        };
    };
    driver.expect<QFileDialog>(look("PNG (*.png)", "png"));
    window.saveImage();
    driver.expect<QFileDialog>(look("Comma-separated values (*.csv)", "csv"));
    window.saveCSV();
    EXPECT_EQ(files(), QStringList());
}

TEST_F(LinePlotExport, csv_holds_the_first_lines_values_and_nothing_else)
{
    exportTo(in("values.csv"), &LinePlot::saveCSV);
    EXPECT_EQ(contents(in("values.csv")), firstLine);
}

TEST_F(LinePlotExport, a_name_without_ending_gets_one)
{
    exportTo(in("values"), &LinePlot::saveCSV);
    exportTo(in("picture"), &LinePlot::saveImage);
    EXPECT_EQ(files(), QStringList({"picture.png", "values.csv"}));
}

TEST_F(LinePlotExport, csv_of_ten_long_lines_is_one_line)
{
    LinePlot plot((QString()));
    plot.prepareChart();
    std::vector<float> values(2000);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = float(i) / 8;
    for (int row = 0; row < 10; ++row)
        plot.addSeries(values, QString(), 0);
    plot.finishPlot({}, false);
    driver.expect<QFileDialog>([this](QFileDialog &dialog) { pressSave(dialog, in("long.csv")); });
    plot.saveCSV();
    const QByteArray text = contents(in("long.csv"));
    const QList<QByteArray> fields = text.split(',');
    ASSERT_EQ(fields.size(), 2000);
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(fields[i].toDouble(), i / 8.0);
    EXPECT_FALSE(text.contains('\n'));
}

TEST_F(LinePlotExport, csv_of_a_plot_without_lines_is_empty)
{
    LinePlot plot((QString()));
    plot.prepareChart();
    driver.expect<QFileDialog>([this](QFileDialog &dialog) { pressSave(dialog, in("none.csv")); });
    plot.saveCSV();
    EXPECT_EQ(contents(in("none.csv")), "");
    EXPECT_EQ(files(), QStringList("none.csv"));
}

TEST_F(LinePlotExport, the_picture_is_the_view_as_it_is_seen)
{
    const QImage seen = view()->grab().toImage();
    exportTo(in("plot.png"), &LinePlot::saveImage);
    QImage saved;
    ASSERT_TRUE(saved.load(in("plot.png"), "PNG"));
    EXPECT_EQ(saved.size(), view()->size() * window.devicePixelRatio());
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32),
              seen.convertToFormat(QImage::Format_RGB32));
}

TEST_F(LinePlotExport, an_existing_file_is_replaced_when_the_user_agrees)
{
    QFile file(in("values.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(10000, 'x'));
    file.close();
    for (const QMessageBox::StandardButton answer : {QMessageBox::No, QMessageBox::Yes}) {
        driver.expect<QFileDialog>([this, answer](QFileDialog &dialog) {
            driver.expect<QMessageBox>([&dialog, answer](QMessageBox &box) {
                box.button(answer)->click();
                if (answer == QMessageBox::No)
                    dialog.reject();
            });
            pressSave(dialog, in("values.csv"));
        });
        window.saveCSV();
        EXPECT_EQ(contents(in("values.csv")).size(),
                  answer == QMessageBox::Yes ? int(qstrlen(firstLine)) : 10000);
    }
    EXPECT_EQ(contents(in("values.csv")), firstLine);
}

TEST_F(LinePlotExport, a_target_that_cannot_be_opened_ends_quietly)
{
    QFile plain(in("plain"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.close();
    // The dialog lets such a path through when the folder becomes a file behind its back.
    for (auto save : {&LinePlot::saveCSV, &LinePlot::saveImage}) {
        driver.expect<QFileDialog>([this](QFileDialog &dialog) {
            ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("gone")));
            const QString path = in("gone/plot");
            dialog.setDirectory(in("gone"));
            QObject::connect(&dialog, &QDialog::accepted, &dialog, [this] {
                ASSERT_TRUE(QDir(folder.path()).rmdir(QStringLiteral("gone")));
                ASSERT_TRUE(QFile::copy(in("plain"), in("gone")));
            });
            pressSave(dialog, path);
        });
        (window.*save)();
        EXPECT_EQ(files(), QStringList({"gone", "plain"}));
        EXPECT_EQ(contents(in("gone")), "");
        ASSERT_TRUE(QFile::remove(in("gone")));
    }
}

TEST_F(LinePlotExport, a_full_disk_leaves_nothing_behind)
{
    for (auto save : {&LinePlot::saveCSV, &LinePlot::saveImage}) {
        std::unique_ptr<FullDisk> full;
        driver.expect<QFileDialog>([this, &full](QFileDialog &dialog) {
            QObject::connect(&dialog, &QDialog::accepted, &dialog,
                             [&full] { full = std::make_unique<FullDisk>(); });
            pressSave(dialog, in("plot"));
        });
        (window.*save)();
        full.reset();
        EXPECT_EQ(files(), QStringList());
    }
}

TEST_F(LinePlotExport, a_picture_so_small_that_it_is_written_at_the_end_is_not_left_in_part)
{
    QPixmap dot(4, 4);
    dot.fill(Qt::red);
    {
        const FullDisk full;
        savePicture(dot, in("dot.png"));
    }
    EXPECT_EQ(files(), QStringList());
    savePicture(dot, in("dot.png"));
    EXPECT_EQ(files(), QStringList("dot.png"));
}

TEST_F(LinePlotExport, a_full_disk_leaves_an_existing_file_as_it_was)
{
    QFile file(in("values.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    std::unique_ptr<FullDisk> full;
    driver.expect<QFileDialog>([this, &full](QFileDialog &dialog) {
        QObject::connect(&dialog, &QDialog::accepted, &dialog,
                         [&full] { full = std::make_unique<FullDisk>(); });
        driver.expect<QMessageBox>([](QMessageBox &box) { box.button(QMessageBox::Yes)->click(); });
        pressSave(dialog, in("values.csv"));
    });
    window.saveCSV();
    full.reset();
    EXPECT_EQ(files(), QStringList("values.csv"));
    EXPECT_EQ(contents(in("values.csv")), "precious");
}

TEST_F(LinePlotExport, an_existing_file_is_written_where_its_folder_takes_no_new_one)
{
    const QFile::Permissions anyone = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    const QFile::Permissions mayEnter =
        anyone | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    for (const char *name : {"values.csv", "plot.png"}) {
        QFile file(in(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(100'000, 'x'));
        ASSERT_TRUE(file.setPermissions(anyone | QFile::WriteOwner | QFile::WriteGroup |
                                        QFile::WriteOther));
    }
    const QImage seen = view()->grab().toImage();

    const auto replace = [this](const char *name, void (LinePlot::*save)()) {
        std::unique_ptr<OtherUser> user;
        driver.expect<QFileDialog>([this, name, &user](QFileDialog &dialog) {
            QObject::connect(&dialog, &QDialog::accepted, &dialog,
                             [&user] { user = std::make_unique<OtherUser>(); });
            driver.expect<QMessageBox>(
                [](QMessageBox &box) { box.button(QMessageBox::Yes)->click(); });
            pressSave(dialog, in(name));
        });
        (window.*save)();
    };
    ASSERT_TRUE(QFile::setPermissions(folder.path(), mayEnter));
    replace("values.csv", &LinePlot::saveCSV);
    replace("plot.png", &LinePlot::saveImage);
    ASSERT_TRUE(QFile::setPermissions(folder.path(), mayEnter | QFile::WriteOwner));

    EXPECT_EQ(files(), QStringList({"plot.png", "values.csv"}));
    EXPECT_EQ(contents(in("values.csv")), firstLine);
    QImage saved;
    ASSERT_TRUE(saved.load(in("plot.png"), "PNG"));
    EXPECT_EQ(saved.convertToFormat(QImage::Format_RGB32),
              seen.convertToFormat(QImage::Format_RGB32));
}

TEST_F(LinePlotExport, the_window_may_go_while_its_dialog_is_open)
{
    for (auto save : {&LinePlot::saveCSV, &LinePlot::saveImage}) {
        QPointer<LinePlot> plot = new LinePlot(QStringLiteral("Degree"));
        plot->prepareChart();
        plot->addSeries({1, 2, 3}, QString(), 0);
        plot->finishPlot({}, false);
        driver.expect<QFileDialog>([&plot](QFileDialog &) { delete plot; });
        (plot->*save)();
        EXPECT_TRUE(plot.isNull());
    }
    EXPECT_EQ(files(), QStringList());
}

TEST_F(LinePlotExport, the_window_may_go_while_its_menu_is_open)
{
    QPointer<LinePlot> plot = new LinePlot(QStringLiteral("Degree"));
    plot->prepareChart();
    plot->show();
    QTimer::singleShot(0, plot, [&plot] { delete plot; });
    plot->showContextMenu(QPoint(5, 5));
    EXPECT_TRUE(plot.isNull());
}

} // namespace

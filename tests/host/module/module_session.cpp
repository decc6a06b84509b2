// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/module/module_session.h"

#include "engine/connectivity_object.h"
#include "host/session/session.h"
#include "host/workbench/log_pane.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProgressDialog>
#include <QSettings>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

// The class's type information is in the module alone.
#if defined(__GNUC__)
#define READS_MODULE __attribute__((no_sanitize("vptr")))
#else
#define READS_MODULE
#endif

namespace corvane
{

namespace
{

const QStringList moduleClasses = {"Tessera",  "ConnectivityObjectUI", "CircularPlot", "ViewMatrix",
                                   "LinePlot", "TimeseriesLinePlot"};

bool isOf(const QWidget *window, const QString &className)
{
    return window->metaObject()->className() == className;
}

/// Counts the progress dialogs that appear while it lives.
class ProgressWatch : public QObject
{
public:
    ProgressWatch() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *const dialog = qobject_cast<QProgressDialog *>(watched);
        if (dialog != nullptr && event->type() == QEvent::Show) {
            ++shown;
            EXPECT_EQ(dialog->labelText(), QStringLiteral("Processing..."));
        }
        return false;
    }

    int shown = 0;
};

} // namespace

ModuleSession::ModuleSession()
{
    // The plugin's settings are below the user's folder.
    qputenv("HOME", folder.path().toUtf8());
}

ModuleSession::~ModuleSession()
{
    if (workbench != nullptr)
        closeWorkbench();
    EXPECT_EQ(moduleWindows(), QStringList()) << "windows that outlive the workbench";
}

// ---- the workbench

void ModuleSession::openWorkbench(const QStringList &anatomies)
{
    workbench = std::make_unique<MainWindow>(session);
    workbench->loadPluginFolder(QStringLiteral(MODULE_FOLDER));
    workbench->openFiles(anatomies);
    workbench->show();
    workbench->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(workbench.get()));
}

void ModuleSession::takeResultsForExported()
{
    for (const QWidget *window : QApplication::topLevelWidgets())
        for (QObject *part : window->findChildren<QObject *>())
            if (part->property("unsavedResults").isValid())
                part->setProperty("unsavedResults", QString());
}

void ModuleSession::closeWorkbench()
{
    takeResultsForExported();
    EXPECT_TRUE(workbench->close());
    workbench.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ModuleSession::startPlugin()
{
    auto *const menu = workbench->findChild<QMenu *>(QStringLiteral("pluginsMenu"));
    ASSERT_EQ(menu->actions().size(), 1) << "the build has one plugin";
    QAction *const start = menu->actions().constFirst();
    ASSERT_EQ(start->data().toString(), QStringLiteral("Tessera Analysis"));
    whenMenuOpens([start](QMenu &opened) {
        QTest::mouseClick(&opened, Qt::LeftButton, {}, opened.actionGeometry(start).center());
    });
    QMenuBar *const bar = workbench->menuBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu->menuAction()).center());
    ASSERT_TRUE(QTest::qWaitFor([] { return windowsOf("Tessera").size() == 1; }));
}

std::string ModuleSession::logged() const
{
    return workbench->log().text().toStdString();
}

void ModuleSession::turnDumpsOn()
{
    const QString parent = folder.path(QStringLiteral("dumps%1").arg(++m_dumpFolders));
    const QString settings = folder.path("Documents/CVExtensions/Plugins_64");
    ASSERT_TRUE(QDir().mkpath(parent));
    ASSERT_TRUE(QDir().mkpath(settings));
    QSettings ini(settings + QStringLiteral("/tessera_plugin.ini"), QSettings::IniFormat);
    ini.setValue(QStringLiteral("nodalis/dump_all"), true);
    ini.setValue(QStringLiteral("nodalis/dump_output_dir"), parent);
    m_dumps = parent;
}

QMap<QString, QByteArray> ModuleSession::takeDumps()
{
    const QStringList made = QDir(m_dumps).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    EXPECT_EQ(made.size(), 1) << "one folder for each main dialog";
    const QDir dumps(m_dumps + QLatin1Char('/') + made.value(0));
    QMap<QString, QByteArray> files;
    for (const QString &name : dumps.entryList(QDir::Files)) {
        files[name] = bytesOf(dumps.filePath(name));
        EXPECT_TRUE(QFile::remove(dumps.filePath(name)));
    }
    return files;
}

// ---- windows and widgets

QList<QWidget *> ModuleSession::windowsOf(const char *className)
{
    QList<QWidget *> found;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && isOf(window, QString::fromLatin1(className)))
            found += window;
    return found;
}

QWidget *ModuleSession::windowOf(const char *className)
{
    const QList<QWidget *> found = windowsOf(className);
    EXPECT_EQ(found.size(), 1) << className;
    return found.value(0);
}

QStringList ModuleSession::moduleWindows()
{
    QStringList found;
    for (const QWidget *window : QApplication::topLevelWidgets())
        for (const QString &className : moduleClasses)
            if (isOf(window, className))
                found += className;
    found.sort();
    return found;
}

void ModuleSession::showPage(const QWidget *widget)
{
    for (const QTabWidget *tabs : widget->window()->findChildren<QTabWidget *>()) {
        QTabBar *const bar = tabs->tabBar();
        for (int tab = 0; tab < tabs->count(); ++tab)
            if (tabs->widget(tab)->isAncestorOf(widget))
                QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(tab).center());
    }
}

void ModuleSession::click(QWidget *widget)
{
    showPage(widget);
    ASSERT_TRUE(widget->isVisible()) << widget->objectName().toStdString();
    ASSERT_TRUE(widget->isEnabled()) << widget->objectName().toStdString();
    // A check box is clicked on its mark.
    const bool isPushButton = qobject_cast<QPushButton *>(widget) != nullptr;
    const QPoint place =
        isPushButton ? widget->rect().center() : QPoint(8, widget->rect().center().y());
    QTest::mouseClick(widget, Qt::LeftButton, {}, place);
}

void ModuleSession::click(const QWidget *window, const char *name)
{
    auto *const widget = find<QWidget>(window, name);
    ASSERT_NE(widget, nullptr);
    click(widget);
}

void ModuleSession::clickAt(QWidget *widget, const QPoint &at, Qt::MouseButton button)
{
    QWidget *const window = widget->window();
    QTest::mouseClick(window->windowHandle(), button, {}, widget->mapTo(window, at));
}

void ModuleSession::whenMenuOpens(const std::function<void(QMenu &)> &act)
{
    QTimer::singleShot(0, this->workbench.get(), [this, act] {
        if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget()))
            act(*menu);
        else
            whenMenuOpens(act);
    });
}

void ModuleSession::chooseFromMenu(QWidget *widget, const QString &entry)
{
    whenMenuOpens([entry](QMenu &menu) {
        for (QAction *action : menu.actions())
            if (action->text() == entry) {
                QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
                return;
            }
        ADD_FAILURE() << "no " << entry.toStdString();
        menu.close();
    });
    clickAt(widget, {4, 4}, Qt::RightButton);
}

void ModuleSession::exportTo(const QString &path, const std::function<void()> &start)
{
    modals.expectFile(path);
    start();
    EXPECT_EQ(modals.remaining(), 0u);
}

// ---- the dataset

int ModuleSession::addRow(const QString &name)
{
    click(mainDialog(), "btn_AddSubject");
    auto *const table = find<QTableView>(mainDialog(), "tbl_Subjects");
    const int row = table->model()->rowCount() - 1;
    const QModelIndex index = table->model()->index(row, NameColumn);
    const QPoint place = table->visualRect(index).center();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    auto *const editor = table->viewport()->findChild<QLineEdit *>();
    EXPECT_NE(editor, nullptr);
    if (editor != nullptr) {
        editor->selectAll();
        QTest::keyClicks(editor, name);
        QTest::keyClick(editor, Qt::Key_Return);
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return index.data() == name; })) << name.toStdString();
    return row;
}

QWidget *ModuleSession::cell(int row, int column)
{
    const auto *const table = find<QTableView>(mainDialog(), "tbl_Subjects");
    return table->indexWidget(table->model()->index(row, column));
}

QPushButton *ModuleSession::fileButton(int row, int column)
{
    return qobject_cast<QPushButton *>(cell(row, column));
}

void ModuleSession::chooseAnatomy(int row, const QString &vmr)
{
    auto *const box = qobject_cast<QComboBox *>(cell(row, VmrColumn));
    const int item = box->findText(QFileInfo(vmr).fileName());
    ASSERT_GT(item, 0) << vmr.toStdString();
    while (box->currentIndex() < item)
        QTest::keyClick(box, Qt::Key_Down);
    ASSERT_EQ(box->currentIndex(), item);
}

void ModuleSession::chooseFile(int row, int column, const QString &path)
{
    modals.expectFile(path);
    click(fileButton(row, column));
}

int ModuleSession::addSubject(const QString &name, const SubjectFiles &files)
{
    const int row = addRow(name);
    chooseAnatomy(row, files.vmr);
    chooseFile(row, VtcColumn, files.vtc);
    if (!files.prt.isEmpty())
        chooseFile(row, PrtColumn, files.prt);
    chooseFile(row, VoiColumn, files.voi);
    return row;
}

// ---- the compute

void ModuleSession::selectProfile(const QString &name)
{
    auto *const profiles = find<QComboBox>(mainDialog(), "cBox_connectivityProfile");
    const int item = profiles->findText(name);
    ASSERT_GT(item, 0) << name.toStdString();
    showPage(profiles);
    while (profiles->currentIndex() != item)
        QTest::keyClick(profiles, profiles->currentIndex() < item ? Qt::Key_Down : Qt::Key_Up);
}

void ModuleSession::chooseVois(const QVector<int> &vois)
{
    modals.expect<QDialog>([vois](QDialog &dialog) {
        auto *const list = dialog.findChild<QListWidget *>();
        for (const int voi : vois) {
            list->scrollToItem(list->item(voi));
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualItemRect(list->item(voi)).center());
        }
        const auto *const buttons = dialog.findChild<QDialogButtonBox *>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    });
    click(mainDialog(), "btn_ConfigureVOIs");
}

void ModuleSession::setUseProtocol(bool use)
{
    auto *const box = find<QCheckBox>(mainDialog(), "cbox_UseProtocol");
    if (box->isChecked() != use)
        click(box);
    ASSERT_EQ(box->isChecked(), use);
}

void ModuleSession::compute()
{
    const ProgressWatch progress;
    click(mainDialog(), "btn_Compute");
    EXPECT_EQ(progress.shown, 1);
}

QListWidget *ModuleSession::results()
{
    return find<QListWidget>(mainDialog(), "list_ConnObjs");
}

READS_MODULE FinishedSubject ModuleSession::finished(int index)
{
    QList<QObject *> objects;
    for (QObject *child : mainDialog()->children())
        if (child->inherits("ConnectivityObject"))
            objects += child;
    FinishedSubject all;
    EXPECT_LT(index, objects.size());
    if (index >= objects.size())
        return all;
    // Its inline members read what the module has written; nothing of it is linked.
    const auto *const object = static_cast<const ConnectivityObject *>(objects.at(index));
    const Subject &subject = *object->subject();
    all.name = object->name();
    all.seeds = subject.scheme().seedVois;
    for (const int seed : qAsConst(all.seeds))
        all.nodes += subject.voiNames.value(seed);
    all.matrices = object->matrices();
    all.trees = object->mstMatrices();
    if (subject.useProtocol()) {
        all.intervals = subject.protocol().volumeNames.values();
        all.events = subject.protocol().volumeEvents.values().toVector();
    }
    return all;
}

void ModuleSession::openResults(int index)
{
    showPage(results());
    const QPoint place = results()->visualItemRect(results()->item(index)).center();
    QTest::mouseClick(results()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(results()->viewport(), Qt::LeftButton, {}, place);
}

QPushButton *ModuleSession::measureButton(const QWidget *dialog, const QString &key,
                                          const QString &text)
{
    for (QPushButton *button : dialog->findChildren<QPushButton *>())
        if (button->property("measure") == key && button->text() == text)
            return button;
    return nullptr;
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
//
// F1, the list of keys and the links of About.
#include "host/session/session.h"
#include "host/workbench/guide.h"
#include "host/workbench/import_dialog.h"
#include "host/workbench/key_list.h"
#include "host/workbench/main_window.h"
#include "host/workbench/study_window.h"
#include "tests/host/support/host_files.h"
#include "tests/support/modal_driver.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>
#include <QTreeWidget>
#include <QUrl>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

/// Takes the pages that are opened in the browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QStringList pages;

public Q_SLOTS:
    void open(const QUrl &url)
    {
        EXPECT_TRUE(QFileInfo::exists(url.toLocalFile())) << url.toString().toStdString();
        pages += QFileInfo(url.toLocalFile()).completeBaseName();
    }
};

class GuideTest : public testing::Test
{
protected:
    GuideTest()
    {
        QSettings().clear();
        qputenv("CORVANE_GUIDE", BUILT_GUIDE);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~GuideTest() override { qunsetenv("CORVANE_GUIDE"); }

    QAction *helpEntry(const QString &text) const
    {
        for (QAction *entry : window.menuBar()->actions().constLast()->menu()->actions())
            if (entry->text() == text)
                return entry;
        ADD_FAILURE() << "no " << text.toStdString();
        return nullptr;
    }

    Browser browser;
    Session session;
    MainWindow window{session};
};

} // namespace

TEST_F(GuideTest, F1OpensThePageOfTheWindowInFront)
{
    QTest::keyClick(window.focusWidget(), Qt::Key_F1);
    EXPECT_EQ(browser.pages, QStringList{QStringLiteral("the-workbench")});
    StudyWindow study(&window);
    study.show();
    study.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &study; }));
    QTest::keyClick(&study, Qt::Key_F1);
    EXPECT_EQ(browser.pages.constLast(), QStringLiteral("a-folder-of-subjects"));
    // From a modal dialog too, whatever of it has the focus.
    ImportDialog import(&window);
    import.setModal(true);
    import.show();
    import.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &import; }));
    QTest::keyClick(import.findChild<QLineEdit *>(), Qt::Key_F1);
    EXPECT_EQ(browser.pages.constLast(), QStringLiteral("importing-your-data"));
    EXPECT_EQ(browser.pages.size(), 3);
    // A box belongs to the window that it stands over.
    QMessageBox box(&import);
    EXPECT_EQ(guidePageOf(&box), QStringLiteral("importing-your-data"));
    EXPECT_EQ(guidePageOf(nullptr), QStringLiteral("users-guide"));
}

TEST_F(GuideTest, TheMenuOpensItAndSaysWhenItIsNotThere)
{
    helpEntry(QStringLiteral("&User's Guide"))->trigger();
    EXPECT_EQ(browser.pages, QStringList{QStringLiteral("the-workbench")});
    qputenv("CORVANE_GUIDE", "/nowhere");
    ModalDriver driver;
    driver.expectMessage(QStringLiteral("Corvane"),
                         QStringLiteral("The user's guide is not installed: there is no "
                                        "/nowhere/the-workbench.html."));
    helpEntry(QStringLiteral("&User's Guide"))->trigger();
}

TEST_F(GuideTest, TheListOfKeysHasThoseOfEveryEntryOfTheMenus)
{
    QStringList listed;
    ModalDriver driver;
    driver.expect<KeyList>([&listed](KeyList &keys) {
        const auto *const tree = keys.findChild<QTreeWidget *>();
        for (QTreeWidgetItemIterator item(const_cast<QTreeWidget *>(tree)); *item; ++item)
            listed += (*item)->text(0) + QStringLiteral(": ") + (*item)->text(1);
        QTest::keyClick(&keys, Qt::Key_Escape);
    });
    helpEntry(QStringLiteral("&Keys"))->trigger();
    int entries = 0;
    for (const QAction *menu : window.menuBar()->actions())
        for (const QAction *entry : menu->menu()->actions())
            if (!entry->shortcut().isEmpty()) {
                ++entries;
                const QString text =
                    entry->text().remove(QLatin1Char('&')).remove(QStringLiteral("..."));
                const QStringList found = listed.filter(text + QStringLiteral(": "));
                ASSERT_FALSE(found.isEmpty()) << text.toStdString();
                EXPECT_TRUE(found[0].contains(entry->shortcut().toString()));
            }
    EXPECT_GT(entries, 15);
    EXPECT_TRUE(listed.contains(QStringLiteral("Move the cross-hair: Arrow keys")));
    EXPECT_TRUE(listed.contains(QStringLiteral("Fit to the Head: Ctrl+F")));
}

TEST_F(GuideTest, AboutHasLinksToPagesThatAreThere)
{
    QString text;
    ModalDriver driver;
    driver.expect<QMessageBox>([&text](QMessageBox &box) {
        text = box.text();
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    helpEntry(QStringLiteral("&About Corvane"))->trigger();
    const QRegularExpression link(QStringLiteral("href=\"([^\"]+)\""));
    int files = 0;
    for (auto matches = link.globalMatch(text); matches.hasNext();) {
        const QUrl url(matches.next().captured(1));
        if (!url.isLocalFile())
            continue;
        ++files;
        EXPECT_TRUE(QFileInfo::exists(url.toLocalFile())) << url.toString().toStdString();
    }
    EXPECT_EQ(files, 5);
    EXPECT_TRUE(text.contains(QStringLiteral("https://www.gnu.org/licenses/gpl-3.0.html")));
}

} // namespace corvane

#include "test_guide.moc"

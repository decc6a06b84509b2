// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a user sees of the main dialog. With TESSERA_PICTURES set to a folder the pictures are saved
// there.
#include "tests/support/dataset_fixture.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace
{

class DialogAppearance : public DatasetFixture
{
protected:
    DialogAppearance() { find<QCheckBox>("chkBox_ShowResults")->setChecked(false); }

    static void picture(QWidget &window, const QString &name)
    {
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        QCoreApplication::processEvents();
        const QPixmap pixmap = window.grab();
        EXPECT_FALSE(pixmap.isNull());
        const QString pictures = qEnvironmentVariable("TESSERA_PICTURES");
        if (!pictures.isEmpty()) {
            const QString file =
                QStringLiteral("dialog_%1_at_%2.png").arg(name).arg(pixmap.devicePixelRatio());
            EXPECT_TRUE(pixmap.save(QDir(pictures).filePath(file))) << qPrintable(file);
        }
    }

    static bool isOfText(const QWidget *widget)
    {
        return qobject_cast<const QLabel *>(widget) ||
               qobject_cast<const QAbstractButton *>(widget);
    }

    /// Every text has the room that it asks for, and stands within what holds it.
    static void expectWholeTexts(const QWidget &page)
    {
        int texts = 0;
        for (const QWidget *widget : page.findChildren<QWidget *>()) {
            const bool inTable = qobject_cast<QTableView *>(widget->parentWidget()->parentWidget());
            if (!widget->isVisible() || !isOfText(widget) || inTable)
                continue;
            ++texts;
            const QString name = widget->objectName();
            EXPECT_LE(widget->minimumSizeHint().width(), widget->width()) << qPrintable(name);
            const int needed = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width())
                                                           : widget->sizeHint().height();
            EXPECT_LE(needed, widget->height()) << qPrintable(name);
            EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry()))
                << qPrintable(name);
        }
        EXPECT_GT(texts, 2);
    }
};

TEST_F(DialogAppearance, NoTextIsCutOffOnAnyPage)
{
    fake_host::Vtc linked = fake_host::makeVtc({{{50, 58}, {60, 68}, {70, 78}}}, 1, 40);
    fake_host::Protocol protocol;
    protocol.conditions = {{"A", {{1, 20}}}};
    linked.linkProtocol(hostPath(addProtocol("task.prt", protocol)));
    click("cbox_UseProtocol");
    finishRow(addRow(), addVtc("linked.vtc", linked), addVois("set.voi"));
    addRow();
    chooseFile(1, VtcColumn, addVtc("run.vtc"));
    addRow();
    QCoreApplication::processEvents();
    picture(dialog(), "data");
    expectWholeTexts(*find<QWidget>("tab_Data"));
    for (int column = VtcColumn; column <= PrtColumn; ++column) {
        const QPushButton *const button = fileButton(0, column);
        EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
        EXPECT_GE(button->height(), button->fontMetrics().height());
    }

    selectProfile(0);
    selectSeeds({0, 1, 2, 3});
    picture(dialog(), "connectivity");
    expectWholeTexts(*find<QWidget>("tab_Connectivity"));

    compute();
    find<QCheckBox>("cbox_UseProtocol")->setChecked(false);
    finishRow(2, addVtc("run.vtc"), addVois("set.voi"));
    computeRow(2, {4, 5, 6, 7, 8});
    showTab(results());
    results()->selectAll();
    click("btn_ComputeGraphDistance");
    picture(dialog(), "groups");
    expectWholeTexts(*find<QWidget>("tab_Graphs"));
}

TEST_F(DialogAppearance, NoTextIsCutOffInTheVoiSelection)
{
    selectProfile(addReadyRow());
    modals.expect<QDialog>([](QDialog &selection) {
        auto *const list = selection.findChild<QListWidget *>();
        for (int voi = 2; voi < 6; ++voi)
            list->item(voi)->setSelected(true);
        picture(selection, "vois");
        expectWholeTexts(selection);
        EXPECT_GE(list->height(), 3 * list->sizeHintForRow(0));
        selection.reject();
    });
    click("btn_ConfigureVOIs");
}

} // namespace

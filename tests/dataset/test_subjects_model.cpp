// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/subjects_model.h"
#include "tests/gui_test.h"
#include "tests/support/qt_printers.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace
{

TEST(SubjectsModel, BeginsEmptyWithItsHeaders)
{
    SubjectsModel model;
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 5);
    const QStringList headers = {"Subject", "VMR", "VTC", "VOI", "PRT"};
    for (int column = 0; column < 5; ++column)
        EXPECT_EQ(model.headerData(column, Qt::Horizontal), headers.at(column));
    EXPECT_FALSE(model.headerData(0, Qt::Vertical).isValid());
    EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::EditRole).isValid());
    EXPECT_FALSE(model.headerData(5, Qt::Horizontal).isValid());
    EXPECT_FALSE(model.headerData(-1, Qt::Horizontal).isValid());
}

TEST(SubjectsModel, IgnoresTheParent)
{
    SubjectsModel model;
    model.appendSubject();
    const QModelIndex cell = model.index(0, 0);
    EXPECT_EQ(model.rowCount(cell), 1);
    EXPECT_EQ(model.columnCount(cell), 5);
}

TEST(SubjectsModel, AppendNamesTheRowByTheNewCount)
{
    SubjectsModel model;
    int layoutChanged = 0;
    QObject::connect(&model, &SubjectsModel::layoutChanged, [&] { ++layoutChanged; });
    QSignalSpy inserted(&model, &SubjectsModel::rowsInserted);
    EXPECT_EQ(model.appendSubject(), 1);
    EXPECT_EQ(model.appendSubject(), 2);
    EXPECT_EQ(layoutChanged, 2);
    EXPECT_EQ(inserted.count(), 2);
    EXPECT_EQ(model.data(model.index(0, 0)), "Subject 1");
    EXPECT_EQ(model.data(model.index(1, 0), Qt::EditRole), "Subject 2");
    EXPECT_EQ(model.subjectAt(1).name(), "Subject 2");
}

TEST(SubjectsModel, DataIsTheNameInColumnZeroAlone)
{
    SubjectsModel model;
    model.appendSubject();
    for (int column = 1; column < 5; ++column)
        EXPECT_FALSE(model.data(model.index(0, column)).isValid());
    EXPECT_FALSE(model.data(model.index(0, 0), Qt::ToolTipRole).isValid());
    EXPECT_FALSE(model.data(QModelIndex()).isValid());
}

TEST(SubjectsModel, SetDataRenames)
{
    SubjectsModel model;
    model.appendSubject();
    QSignalSpy renamed(&model, &SubjectsModel::subjectNameChanged);
    QSignalSpy dataChanged(&model, &SubjectsModel::dataChanged);
    EXPECT_TRUE(model.setData(model.index(0, 0), "Ann"));
    ASSERT_EQ(renamed.count(), 1);
    EXPECT_EQ(renamed.at(0).at(0), "Ann");
    EXPECT_EQ(renamed.at(0).at(1), 0);
    EXPECT_EQ(dataChanged.count(), 0);
    EXPECT_EQ(model.subjectAt(0).name(), "Ann");
    // The column is not looked at.
    EXPECT_TRUE(model.setData(model.index(0, 3), "Ben"));
    EXPECT_EQ(model.subjectAt(0).name(), "Ben");
    EXPECT_EQ(renamed.count(), 2);
}

TEST(SubjectsModel, SetDataIgnoresAnEmptyNameAndOtherRoles)
{
    SubjectsModel model;
    model.appendSubject();
    QSignalSpy renamed(&model, &SubjectsModel::subjectNameChanged);
    EXPECT_TRUE(model.setData(model.index(0, 0), ""));
    EXPECT_TRUE(model.setData(model.index(0, 0), "Ann", Qt::DisplayRole));
    EXPECT_EQ(renamed.count(), 0);
    EXPECT_EQ(model.subjectAt(0).name(), "Subject 1");
}

TEST(SubjectsModel, IndexOfARowThatIsGoneReadsAndRenamesNothing)
{
    SubjectsModel model;
    for (int i = 0; i < 2; ++i)
        model.appendSubject();
    const QModelIndex stale = model.index(1, 0);
    model.removeSubjectAt(1);
    QSignalSpy renamed(&model, &SubjectsModel::subjectNameChanged);
    for (const QModelIndex &index : {stale, QModelIndex()}) {
        EXPECT_FALSE(model.data(index).isValid());
        EXPECT_TRUE(model.setData(index, "Ann"));
    }
    EXPECT_EQ(renamed.count(), 0);
    EXPECT_EQ(model.subjectAt(0).name(), "Subject 1");
}

TEST(SubjectsModel, FlagsFollowTheRecord)
{
    SubjectsModel model;
    model.appendSubject();
    const Qt::ItemFlags base = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    for (int column = 0; column < 5; ++column)
        EXPECT_EQ(model.flags(model.index(0, column)), base | Qt::ItemIsEditable);
    model.subjectAt(0).setEditable(false);
    EXPECT_EQ(model.flags(model.index(0, 0)), base);
    EXPECT_EQ(model.flags(QModelIndex()), Qt::ItemIsEnabled);
    const QModelIndex stale = model.index(0, 0);
    model.removeSubjectAt(0);
    EXPECT_EQ(model.flags(stale), Qt::ItemIsEnabled);
}

TEST(SubjectsModel, RemovalMovesTheLaterRowsDown)
{
    SubjectsModel model;
    for (int i = 0; i < 3; ++i)
        model.appendSubject();
    int layoutChanged = 0;
    QObject::connect(&model, &SubjectsModel::layoutChanged, [&] { ++layoutChanged; });
    model.removeSubjectAt(0);
    EXPECT_EQ(layoutChanged, 1);
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_EQ(model.subjectAt(0).name(), "Subject 2");
    EXPECT_EQ(model.subjectAt(1).name(), "Subject 3");
    // Numbers go by the count, so that a name can come again.
    model.appendSubject();
    EXPECT_EQ(model.subjectAt(2).name(), "Subject 3");
}

TEST(SubjectsModel, RecordsKeepTheirAddressAndOutliveTheirRow)
{
    SubjectsModel model;
    model.appendSubject();
    const Subject *const address = &model.subjectAt(0);
    for (int i = 0; i < 100; ++i)
        model.appendSubject();
    EXPECT_EQ(&model.subjectAt(0), address);
    const QSharedPointer<Subject> kept = model.sharedSubjectAt(0);
    model.removeSubjectAt(0);
    EXPECT_EQ(kept->name(), "Subject 1");
}

TEST(SubjectsModel, TakesNamesOfAllKinds)
{
    SubjectsModel model;
    model.appendSubject();
    for (const QString &name :
         {QString(10000, 'x'), QString::fromUtf8("שלום עולם"), QStringLiteral("a/b\\c"),
          QStringLiteral("%1%2"), QStringLiteral(" "), QStringLiteral("line\nbreak")}) {
        EXPECT_TRUE(model.setData(model.index(0, 0), name));
        EXPECT_EQ(model.data(model.index(0, 0)), name);
    }
}

/// Every failure that the tester may find in a model that ignores the parent index and that gives
/// flags for an invalid one.
bool isWanted(const QString &warning)
{
    static const QRegularExpression wanted("model->hasChildren\\(topIndex\\)|model->parent\\("
                                           "childIndex\\)|flags == Qt::ItemIsDropEnabled");
    return wanted.match(warning).hasMatch();
}

TEST(SubjectsModel, KeepsTheRulesOfModelsWhileRowsComeAndGo)
{
    SubjectsModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Warning);
    for (int i = 0; i < 5; ++i)
        model.appendSubject();
    model.setData(model.index(3, 0), "Ann");
    model.removeSubjectAt(4);
    model.removeSubjectAt(0);
    model.removeSubjectAt(1);
    model.appendSubject();
    while (model.rowCount() > 0)
        model.removeSubjectAt(0);
    model.appendSubject();
    const QStringList warnings = takeWarnings();
    EXPECT_FALSE(warnings.isEmpty()) << "the wanted ones show that the tester speaks";
    for (const QString &warning : warnings)
        EXPECT_TRUE(isWanted(warning)) << qPrintable(warning);
}

} // namespace

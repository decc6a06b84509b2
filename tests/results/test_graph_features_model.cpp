// SPDX-License-Identifier: GPL-3.0-or-later
#include "results/graph_features_model.h"

#include "results/feature_values.h"
#include "tests/gui_test.h"
#include "tests/support/qt_printers.h"

#include <QAbstractItemModelTester>
#include <QFont>
#include <QSequentialIterable>
#include <QTableView>

#include <gtest/gtest.h>

namespace
{

class FeaturesModel : public testing::Test
{
protected:
    void fill()
    {
        model.addFeature("Heading", "", "", "", true);
        model.addFeature("Heading", "One", "Text of one", "one", false);
        model.addFeature("Heading", "Two", "Text of two", "two", true);
    }
    QVariant at(int row, int column, int role = Qt::DisplayRole) const
    {
        return model.data(model.index(row, column), role);
    }
    void countLayouts()
    {
        QObject::connect(&model, &GraphFeaturesModel::layoutChanged, &model, [this] { ++layouts; });
    }

    GraphFeaturesModel model;
    int layouts = 0;
};

TEST_F(FeaturesModel, KeepsTheRulesOfModels)
{
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Warning);
    fill();
    model.setResult(model.featureIndex("two"), 0.5f);
    model.setDynamic(true);
    EXPECT_EQ(takeWarnings(), QStringList());
}

TEST_F(FeaturesModel, AddsRowsAndSaysTheirNumbers)
{
    countLayouts();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.addFeature("Heading", "", "", "", true), 0);
    EXPECT_EQ(model.addFeature("Heading", "One", "", "one", false), 1);
    EXPECT_EQ(model.addFeature("Heading", "", "only a text", "", false), 2);
    EXPECT_EQ(model.addFeature("Other", QString(), QString(), QString(), false), 3);
    EXPECT_EQ(model.rowCount(), 4);
    EXPECT_EQ(layouts, 4);
    EXPECT_EQ(at(0, 1), "Heading");
    EXPECT_EQ(at(2, 2), "only a text");
    EXPECT_EQ(at(3, 1), "Other");
}

TEST_F(FeaturesModel, ASecondRowOfAKeyReplacesTheRecordAndAddsARow)
{
    fill();
    EXPECT_EQ(model.addFeature("Elsewhere", "New", "New text", "one", true), 3);
    EXPECT_EQ(model.rowCount(), 4);
    EXPECT_EQ(model.feature("one").name, "New");
    EXPECT_EQ(at(1, 1), "New");
    EXPECT_EQ(at(3, 1), "New");
    EXPECT_EQ(model.featureIndex("not there"), 2);
}

TEST_F(FeaturesModel, GivesRecordsByKey)
{
    fill();
    const FeatureRow two = model.feature("two");
    EXPECT_EQ(two.type, "Heading");
    EXPECT_EQ(two.name, "Two");
    EXPECT_EQ(two.description, "Text of two");
    EXPECT_EQ(two.key, "two");
    EXPECT_TRUE(two.scalar);
    EXPECT_FALSE(model.feature("one").scalar);
    EXPECT_TRUE(model.feature("three").key.isEmpty());
}

TEST_F(FeaturesModel, IndicesAreThePlacesOfTheKeys)
{
    EXPECT_EQ(model.featureIndex("one"), 0);
    fill();
    const int one = model.featureIndex("one");
    const int two = model.featureIndex("two");
    EXPECT_EQ(one + two, 1);
    EXPECT_NE(one, two);
    EXPECT_EQ(model.featureIndex("Heading"), 2);
    model.setResult(one, 1.0f);
    EXPECT_EQ(model.featureIndex("one"), one);
}

TEST_F(FeaturesModel, KeepsResults)
{
    fill();
    countLayouts();
    EXPECT_FALSE(model.result(1).isValid());
    EXPECT_FALSE(model.result(7).isValid());
    EXPECT_EQ(layouts, 0);
    model.setResult(1, 0.25f);
    EXPECT_EQ(model.result(1), 0.25f);
    model.setResult(1, 0.5f);
    EXPECT_EQ(model.result(1), 0.5f);
    EXPECT_EQ(layouts, 2);
}

TEST_F(FeaturesModel, DataOfEachRoleAndColumn)
{
    fill();
    for (int role = 0; role < Qt::UserRole + 2; ++role) {
        for (int column = 0; column < 5; ++column) {
            SCOPED_TRACE(testing::Message() << "role " << role << ", column " << column);
            const bool isDisplay = role == Qt::DisplayRole;
            const bool isTip = role == Qt::ToolTipRole || role == Qt::WhatsThisRole;

            const QVariant heading = at(0, column, role);
            if (column == 1 && (isDisplay || isTip)) {
                EXPECT_EQ(heading, "Heading");
            } else if (column == 1 && role == Qt::FontRole) {
                EXPECT_EQ(heading.value<QFont>().weight(), 75);
            } else {
                EXPECT_FALSE(heading.isValid());
            }

            const QVariant measure = at(1, column, role);
            const QVariantList texts = {"Heading", "One", "Text of one", {}, {}};
            if (isDisplay) {
                EXPECT_EQ(measure, texts[column]);
            } else if (isTip && column == 2) {
                EXPECT_EQ(measure, "Text of one");
            } else {
                EXPECT_FALSE(measure.isValid());
            }
        }
    }
    EXPECT_FALSE(model.data(QModelIndex()).isValid());
}

TEST_F(FeaturesModel, AKeyAloneMakesAMeasure)
{
    EXPECT_EQ(model.addFeature("Heading", "", "", "bare", false), 0);
    EXPECT_EQ(model.featureIndex("bare"), 0);
    EXPECT_FALSE(at(0, 1, Qt::FontRole).isValid()) << "no heading";
    EXPECT_EQ(at(0, 1), "");
}

TEST_F(FeaturesModel, HasNothingAtAnIndexBeyondItsRows)
{
    fill();
    GraphFeaturesModel longer;
    for (int row = 0; row < 5; ++row)
        longer.addFeature("Heading", "", "", "", true);
    EXPECT_FALSE(model.data(longer.index(3, 1)).isValid());
    EXPECT_TRUE(model.data(longer.index(2, 1)).isValid());
}

TEST_F(FeaturesModel, ShowsNumbersOfScalarMeasuresOnly)
{
    fill();
    EXPECT_FALSE(at(2, 4).isValid());
    model.setResult(model.featureIndex("one"), 0.25f);
    model.setResult(model.featureIndex("two"), 0.75f);
    EXPECT_FALSE(at(1, 4).isValid());
    EXPECT_EQ(at(2, 4), 0.75f);
    EXPECT_FALSE(at(0, 4).isValid());
    model.setDynamic(true);
    EXPECT_FALSE(at(2, 4).isValid());
    model.setDynamic(false);
    EXPECT_EQ(at(2, 4), 0.75f);
}

TEST_F(FeaturesModel, ShowsNoNumberOfAnIncompleteRecord)
{
    const struct {
        QString type, name, key;
        bool shown;
    } cases[] = {{"Type", "Name", "a", true},
                 {"", "Name", "b", false},
                 {"Type", "", "c", false},
                 {"Type", "Name", "", false}};
    for (const auto &[type, name, key, shown] : cases) {
        const int row = model.addFeature(type, name, "text", key, true);
        model.setResult(model.featureIndex(key), 0.5f);
        EXPECT_EQ(at(row, 4).isValid(), shown) << row;
    }
}

TEST_F(FeaturesModel, HasNoChildren)
{
    fill();
    EXPECT_EQ(model.columnCount(), 5);
    EXPECT_EQ(model.rowCount(model.index(1, 0)), 0);
    EXPECT_EQ(model.columnCount(model.index(1, 0)), 0);
}

TEST_F(FeaturesModel, Headers)
{
    const QStringList texts = {"Type", "Name", "Description", "", "Result"};
    for (int section = 0; section < 5; ++section) {
        EXPECT_EQ(model.headerData(section, Qt::Horizontal), texts[section]);
        EXPECT_FALSE(model.headerData(section, Qt::Vertical).isValid());
        EXPECT_FALSE(model.headerData(section, Qt::Horizontal, Qt::ToolTipRole).isValid());
    }
    EXPECT_FALSE(model.headerData(-1, Qt::Horizontal).isValid());
    EXPECT_FALSE(model.headerData(5, Qt::Horizontal).isValid());
}

TEST_F(FeaturesModel, IsReadOnly)
{
    fill();
    EXPECT_FALSE(model.setData(model.index(1, 1), "other"));
    EXPECT_FALSE(model.flags(model.index(1, 1)) & Qt::ItemIsEditable);
}

TEST_F(FeaturesModel, AViewFollowsRowsThatAreAdded)
{
    QTableView view;
    view.setModel(&model);
    fill();
    EXPECT_EQ(view.verticalHeader() ? view.model()->rowCount() : 0, 3);
    EXPECT_GT(view.rowHeight(2), 0);
}

TEST(FeatureValuesType, TravelsInAVariantUnderItsName)
{
    const QVariant value = QVariant::fromValue(FeatureValues{{1.5f, 2.5f}, {3.5f}});
    EXPECT_STREQ(value.typeName(), "FeatureValues");
    EXPECT_EQ(value.value<FeatureValues>(), (FeatureValues{{1.5f, 2.5f}, {3.5f}}));
    EXPECT_NE(QMetaType::type("FeatureValues"), int(QMetaType::UnknownType));

    ASSERT_TRUE(value.canConvert<QVariantList>());
    const auto slices = value.value<QSequentialIterable>();
    ASSERT_EQ(slices.size(), 2);
    EXPECT_EQ(slices.at(0).value<std::vector<float>>(), (std::vector<float>{1.5f, 2.5f}));
}

} // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/connectivity_object.h"
#include "engine/spanning_trees.h"
#include "tests/support/qt_printers.h"

#include <QMetaMethod>
#include <gtest/gtest.h>

#include <limits>

namespace
{

Eigen::MatrixXf triangle()
{
    Eigen::MatrixXf matrix(3, 3);
    matrix << 0.0f, 0.9f, 0.2f, 0.9f, 0.0f, 0.5f, 0.2f, 0.5f, 0.0f;
    return matrix;
}

TEST(ConnectivityObject, BeginsWithItsNameAlone)
{
    QObject parent;
    auto *const object = new ConnectivityObject("Ann", &parent);
    EXPECT_EQ(object->parent(), &parent);
    EXPECT_EQ(object->name(), "Ann");
    EXPECT_EQ(object->subject(), nullptr);
    EXPECT_TRUE(object->matrices().empty());
    EXPECT_TRUE(object->mstMatrices().empty());
    EXPECT_TRUE(object->mstTrees().empty());
    EXPECT_FALSE(object->mstComputed());
    EXPECT_TRUE(object->volumeNames().isEmpty());
}

TEST(ConnectivityObject, KeepsItsSubject)
{
    ConnectivityObject object("Ann", nullptr);
    auto subject = QSharedPointer<Subject>::create();
    SubjectProtocol protocol;
    protocol.volumeNames = {{1, "rest"}, {11, "face"}};
    subject->setProtocol(protocol);
    object.setSubject(subject);
    const Subject *const address = subject.data();
    subject.clear();
    EXPECT_EQ(object.subject(), address);
    EXPECT_EQ(object.volumeNames(), protocol.volumeNames);
    // The record stays live; the name is that of the compute.
    object.subject()->setName("Ben");
    EXPECT_EQ(object.name(), "Ann");
}

TEST(ConnectivityObject, HandsOutCopies)
{
    ConnectivityObject object("Ann", nullptr);
    std::vector<Eigen::MatrixXf> matrices = {triangle()};
    object.setMatrices(matrices);
    matrices[0](0, 1) = 7.0f;
    object.matrices()[0](0, 1) = 8.0f;
    EXPECT_EQ(object.matrices().at(0), triangle());
    object.setMatrices(object.matrices());
    EXPECT_EQ(object.matrices().at(0), triangle());
}

TEST(ConnectivityObject, TakesTheTreesOnce)
{
    ConnectivityObject object("Ann", nullptr);
    object.setMatrices({triangle(), 2.0f * triangle()});
    object.computeMinimumSpanningTrees();
    object.computeMinimumSpanningTrees();
    EXPECT_TRUE(object.mstComputed());
    ASSERT_EQ(object.mstMatrices().size(), 2u);
    ASSERT_EQ(object.mstTrees().size(), 2u);
    Eigen::MatrixXf kept = triangle();
    kept(0, 2) = kept(2, 0) = 0.0f;
    EXPECT_EQ(object.mstMatrices().at(0), kept);
    EXPECT_EQ(object.mstMatrices().at(1), 2.0f * kept);
    Eigen::MatrixXi tree(3, 3);
    tree << 0, 1, 0, 1, 0, 1, 0, 1, 0;
    EXPECT_EQ(object.mstTrees().at(0), tree);
    EXPECT_EQ(object.matrices().at(0), triangle()) << "left as it was";
}

TEST(ConnectivityObject, KeepsTheTreesThatItIsGiven)
{
    ConnectivityObject object("Ann", nullptr);
    object.setMatrices({triangle()});
    const SpanningTrees trees = spanningTrees({2.0f * triangle()});
    object.setSpanningTrees(trees);
    EXPECT_TRUE(object.mstComputed());
    object.computeMinimumSpanningTrees();
    EXPECT_EQ(object.mstMatrices(), trees.weights) << "not computed again";
    EXPECT_EQ(object.mstTrees(), trees.trees);
}

TEST(ConnectivityObject, TreesOfNothingAreComputedToo)
{
    ConnectivityObject object("Ann", nullptr);
    object.computeMinimumSpanningTrees();
    EXPECT_TRUE(object.mstComputed());
    EXPECT_TRUE(object.mstMatrices().empty());

    ConnectivityObject empty("Ben", nullptr);
    empty.setMatrices({Eigen::MatrixXf(0, 0)});
    empty.computeMinimumSpanningTrees();
    ASSERT_EQ(empty.mstMatrices().size(), 1u);
    EXPECT_EQ(empty.mstMatrices().at(0).size(), 0);
}

TEST(ConnectivityObject, NaNIsNoConnectionOfATree)
{
    ConnectivityObject object("Ann", nullptr);
    Eigen::MatrixXf matrix = triangle();
    matrix(0, 1) = matrix(1, 0) = std::numeric_limits<float>::quiet_NaN();
    object.setMatrices({matrix});
    object.computeMinimumSpanningTrees();
    EXPECT_EQ(object.mstTrees().at(0)(0, 1), 0);
    EXPECT_EQ(object.mstTrees().at(0)(0, 2), 1);
}

TEST(ConnectivityObject, DeclaresItsOneSlot)
{
    const QMetaObject &meta = ConnectivityObject::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    EXPECT_STREQ(meta.method(meta.methodOffset()).methodSignature().constData(),
                 "connectivityObjectUIDestroyed(QObject*)");
}

} // namespace

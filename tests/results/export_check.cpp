// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/results/export_check.h"

#include "tests/support/modal_driver.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

Eigen::MatrixXf readCsv(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    QList<QByteArray> lines = file.readAll().split('\n');
    EXPECT_EQ(lines.takeLast(), QByteArray()) << "the last line ends";
    const int columns = lines.isEmpty() ? 0 : lines[0].split(',').size();
    Eigen::MatrixXf matrix(lines.size(), columns);
    for (int row = 0; row < lines.size(); ++row) {
        const QList<QByteArray> cells = lines[row].split(',');
        EXPECT_EQ(cells.size(), columns);
        for (int column = 0; column < columns; ++column)
            matrix(row, column) = std::strtof(cells.value(column).constData(), nullptr);
    }
    return matrix;
}

void expectSameBits(const Eigen::MatrixXf &found, const Eigen::MatrixXf &expected)
{
    ASSERT_EQ(found.rows(), expected.rows());
    ASSERT_EQ(found.cols(), expected.cols());
    EXPECT_EQ(std::memcmp(found.data(), expected.data(), sizeof(float) * std::size_t(found.size())),
              0);
}

QStringList filesBelow(const QString &folder)
{
    QStringList found;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext())
        found += QDir(folder).relativeFilePath(walk.next());
    found.sort();
    return found;
}

void exportTo(const QString &path, ModalDriver &modals, const std::function<void()> &start)
{
    modals.expect<QFileDialog>([path](QFileDialog &dialog) {
        auto *const name = dialog.findChild<QLineEdit *>("fileNameEdit");
        ASSERT_NE(name, nullptr);
        name->setText(path);
        auto *const buttons = dialog.findChild<QDialogButtonBox *>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Save), Qt::LeftButton);
    });
    if (QFile::exists(path)) {
        modals.expect<QMessageBox>([](QMessageBox &question) {
            QTest::mouseClick(question.button(QMessageBox::Yes), Qt::LeftButton);
        });
    }
    start();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/modal_driver.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <utility>

namespace
{

void press(QDialog &dialog, QDialogButtonBox::StandardButton button)
{
    auto *const buttons = dialog.findChild<QDialogButtonBox *>();
    ASSERT_NE(buttons, nullptr);
    ASSERT_NE(buttons->button(button), nullptr);
    QTest::mouseClick(buttons->button(button), Qt::LeftButton);
}

} // namespace

void ModalDriver::enterFile(QFileDialog &dialog, const QString &path)
{
    auto *const name = dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    ASSERT_NE(name, nullptr);
    name->setText(path);
    const bool saves = dialog.acceptMode() == QFileDialog::AcceptSave;
    press(dialog, saves ? QDialogButtonBox::Save : QDialogButtonBox::Open);
}

ModalDriver::ModalDriver()
{
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &ModalDriver::look);
    m_timer.start();
}

ModalDriver::~ModalDriver()
{
    EXPECT_EQ(remaining(), 0u) << "dialogs that never came";
}

void ModalDriver::look()
{
    auto *const dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || dialog == m_handled || !dialog->isVisible())
        return;
    const bool progress = qobject_cast<QProgressDialog *>(dialog) != nullptr;
    if (progress && (m_expected.empty() || !m_expected.front().isProgress))
        return;
    m_handled = dialog;
    // Not from here: a timer does not fire again while its own slot is in another event loop.
    QTimer::singleShot(0, this, [this, guarded = QPointer<QDialog>(dialog)] {
        if (!guarded.isNull())
            handle(guarded);
    });
}

void ModalDriver::handle(QDialog *dialog)
{
    const QPointer<QDialog> guarded = dialog;
    bool met = false;
    if (m_expected.empty() && m_fallback) {
        m_fallback(*dialog);
        met = true;
    } else if (m_expected.empty()) {
        ADD_FAILURE() << "unexpected dialog: " << dialog->metaObject()->className() << " "
                      << qPrintable(dialog->windowTitle());
    } else {
        const Expectation expectation = std::move(m_expected.front());
        m_expected.pop_front();
        met = expectation.act(*dialog);
        if (!met) {
            ADD_FAILURE() << "a dialog of another kind than expected: "
                          << (guarded ? guarded->metaObject()->className() : "");
        }
    }
    if (!met && !guarded.isNull())
        guarded->reject();
}

void ModalDriver::expectFile(const QString &path, std::function<void(QDialog &)> checkDialog)
{
    expect<QFileDialog>([path, check = std::move(checkDialog)](QFileDialog &dialog) {
        if (check)
            check(dialog);
        enterFile(dialog, path);
    });
}

void ModalDriver::expectFileThen(const QString &path, std::function<void()> meanwhile)
{
    expect<QFileDialog>([path, meanwhile = std::move(meanwhile)](QFileDialog &dialog) {
        connect(&dialog, &QDialog::accepted, meanwhile);
        enterFile(dialog, path);
    });
}

void ModalDriver::expectFileCancel()
{
    expect<QFileDialog>([](QFileDialog &dialog) { press(dialog, QDialogButtonBox::Cancel); });
}

void ModalDriver::expectMessage(const QString &title, const QString &text)
{
    expect<QMessageBox>([title, text](QMessageBox &box) {
        EXPECT_EQ(box.windowTitle(), title);
        EXPECT_EQ(box.text(), text);
        ASSERT_EQ(box.buttons().size(), 1);
        QTest::mouseClick(box.buttons().constFirst(), Qt::LeftButton);
    });
}

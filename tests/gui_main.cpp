// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/gui_test.h"

#include "tests/allowed_warnings.h"

#include <QApplication>
#include <QFont>
#include <QMutex>
#include <QPalette>
#include <QSettings>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdio>

namespace
{

QMutex messagesMutex;
QVector<LoggedMessage> messages;

void collectMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const QMutexLocker lock(&messagesMutex);
    messages.append({type, text});
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

class UnexpectedWarnings : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo &) override { takeMessages(); }

    void OnTestEnd(const testing::TestInfo &) override
    {
        for (const QString &warning : takeWarnings()) {
            if (!isAllowedWarning(warning))
                ADD_FAILURE() << "unexpected warning: " << qPrintable(warning);
        }
    }
};

} // namespace

QVector<LoggedMessage> takeMessages()
{
    const QMutexLocker lock(&messagesMutex);
    return std::exchange(messages, {});
}

QStringList takeWarnings()
{
    QStringList warnings;
    for (const LoggedMessage &message : takeMessages()) {
        if (message.type != QtDebugMsg && message.type != QtInfoMsg)
            warnings.append(message.text);
    }
    return warnings;
}

void bringMouseTo(const QWidget &window, QPoint to)
{
    QTest::mouseMove(window.windowHandle(), to + QPoint(1, 1));
    QTest::mouseMove(window.windowHandle(), to);
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    // Tests of one program run side by side: each has settings of its own.
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());

    // One look for all pictures, whatever the machine's desktop.
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication application(argc, argv);
    QApplication::setPalette(QApplication::style()->standardPalette());
    QApplication::setFont(QFont(QStringLiteral("Liberation Sans"), 10));

    qInstallMessageHandler(collectMessage);
    testing::UnitTest::GetInstance()->listeners().Append(new UnexpectedWarnings);
    const int result = RUN_ALL_TESTS();
    qInstallMessageHandler(nullptr);
    return result;
}

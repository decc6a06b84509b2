// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/gui_test.h"

#include <QApplication>
#include <QFont>
#include <QMutex>
#include <QPalette>
#include <QRegularExpression>
#include <QSettings>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace
{

/// Warnings that are right, each with its reason.
const char *const allowedWarnings[] = {
    // The offscreen platform has no window manager to tell.
    "This plugin does not support propagateSizeHints\\(\\)",
    "This plugin does not support raise\\(\\)",
    "This plugin does not support grabbing the keyboard",
    // A window that has gone before the display's server answers.
    "QXcbConnection: XCB error: 3 \\(BadWindow\\).*",
    // This window has no context menu; its view is connected all the same.
    "QObject::connect: No such slot TimeseriesLinePlot::showContextMenu\\(const QPoint &\\).*",
    "QObject::connect:  \\(receiver name: +'TimeseriesLineplot'\\)",
    // The style sheet of the matrix browser's hidden group.
    "Unknown property visible",
};

QMutex messagesMutex;
QVector<LoggedMessage> messages;

void collectMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const QMutexLocker lock(&messagesMutex);
    messages.append({type, text});
    std::fprintf(stderr, "%s\n", qPrintable(text));
}

bool isAllowed(const QString &warning)
{
    return std::any_of(std::begin(allowedWarnings), std::end(allowedWarnings),
                       [&warning](const char *pattern) {
                           const QRegularExpression exact(
                               QRegularExpression::anchoredPattern(QLatin1String(pattern)));
                           return exact.match(warning).hasMatch();
                       });
}

class UnexpectedWarnings : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo &) override { takeMessages(); }

    void OnTestEnd(const testing::TestInfo &) override
    {
        for (const QString &warning : takeWarnings()) {
            if (!isAllowed(warning))
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

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/allowed_warnings.h"

#include <QRegularExpression>
#include <QString>

#include <algorithm>

namespace
{

/// Warnings that are right, each with its reason.
const char *const allowedWarnings[] = {
    // The offscreen platform has no window manager to tell.
    "This plugin does not support propagateSizeHints\\(\\)",
    "This plugin does not support raise\\(\\)",
    "This plugin does not support grabbing the (keyboard|mouse)",
    // A window that has gone before the display's server answers.
    "QXcbConnection: XCB error: 3 \\(BadWindow\\).*",
    // A folder that may not be read, visited in a file dialog.
    "inotify_add_watch\\(.*\\) failed: \\(Permission denied\\)",
    // This window has no context menu; its view is connected all the same.
    "QObject::connect: No such slot TimeseriesLinePlot::showContextMenu\\(const QPoint &\\).*",
    "QObject::connect:  \\(receiver name: +'TimeseriesLineplot'\\)",
    // The style sheet of the matrix browser's hidden group.
    "Unknown property visible",
};

} // namespace

bool isAllowedWarning(const QString &warning)
{
    return std::any_of(std::begin(allowedWarnings), std::end(allowedWarnings),
                       [&warning](const char *pattern) {
                           const QRegularExpression exact(
                               QRegularExpression::anchoredPattern(QLatin1String(pattern)));
                           return exact.match(warning).hasMatch();
                       });
}

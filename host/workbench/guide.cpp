// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/guide.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QTabWidget>
#include <QUrl>
#include <QWidget>

namespace corvane
{

namespace
{

const QString firstPage = QStringLiteral("users-guide");

/// The page of a window by its class; empty for one that is not known.
QString pageOfClass(const QWidget &window)
{
    const QString name = QString::fromLatin1(window.metaObject()->className());
    // The main dialog of the analysis has a tab for each of its steps.
    if (name == QLatin1String("Tessera")) {
        const auto *const tabs = window.findChild<QTabWidget *>(QStringLiteral("tabWidget"));
        const QString pages[] = {QStringLiteral("the-dataset"), QStringLiteral("connectivity"),
                                 QStringLiteral("comparing-subjects")};
        return pages[tabs != nullptr ? qBound(0, tabs->currentIndex(), 2) : 0];
    }
    static const struct {
        const char *kind;
        const char *page;
    } pages[] = {{"corvane::MainWindow", "the-workbench"},
                 {"corvane::ImportDialog", "importing-your-data"},
                 {"corvane::StudyWindow", "a-folder-of-subjects"},
                 {"corvane::ExplorerWindow", "the-connectome-window"},
                 {"ConnectivityObjectUI", "the-results-of-a-subject"},
                 {"CircularPlot", "the-results-of-a-subject"},
                 {"ViewMatrix", "the-results-of-a-subject"},
                 {"LinePlot", "the-results-of-a-subject"},
                 {"TimeseriesLinePlot", "the-results-of-a-subject"}};
    for (const auto &[kind, page] : pages)
        if (name == QLatin1String(kind))
            return QString::fromLatin1(page);
    return {};
}

} // namespace

QString guideFolder()
{
    QString named = qEnvironmentVariable("CORVANE_GUIDE");
    if (!named.isEmpty())
        return named;
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../share/corvane/guide"));
}

QString guidePageOf(const QWidget *widget)
{
    const QWidget *window = widget != nullptr ? widget->window() : nullptr;
    while (window != nullptr) {
        QString page = pageOfClass(*window);
        if (!page.isEmpty())
            return page;
        window = window->parentWidget() != nullptr ? window->parentWidget()->window() : nullptr;
    }
    return firstPage;
}

QString openGuide(const QString &page)
{
    const QString file = QDir(guideFolder()).filePath(page + QStringLiteral(".html"));
    if (!QFileInfo::exists(file))
        return QApplication::translate("corvane::Guide", "The user's guide is not installed: there "
                                                         "is no %1.")
            .arg(QDir::toNativeSeparators(file));
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        return QApplication::translate("corvane::Guide", "No browser could be started for %1.")
            .arg(QDir::toNativeSeparators(file));
    return {};
}

bool HelpKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return QObject::eventFilter(watched, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier)
        return QObject::eventFilter(watched, event);
    Q_EMIT pressed(static_cast<QWidget *>(watched));
    return true;
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/result_opener.h"

#include "host/explorer/explorer_window.h"
#include "host/files/input_error.h"

#include <QFileDialog>
#include <QSettings>
#include <new>

namespace corvane
{

namespace
{

const QString folderKey = QStringLiteral("explorer/folder");

} // namespace

ResultOpener::ResultOpener(QWidget *parent) : QObject(parent), m_parent(parent) {}

void ResultOpener::choose()
{
    const QString folder = QFileDialog::getExistingDirectory(
        m_parent, tr("Open a Result"), QSettings().value(folderKey).toString());
    if (folder.isEmpty())
        return;
    QSettings().setValue(folderKey, folder);
    open(folder);
}

void ResultOpener::open(const QString &folder, const QString &run)
{
    try {
        ResultRequest request;
        request.path = folder;
        request.run = run;
        auto *const window = new ExplorerWindow(request, m_parent);
        window->setWindowFlag(Qt::Window);
        window->setAttribute(Qt::WA_DeleteOnClose);
        connect(window, &ExplorerWindow::placeSelected, this, [this](double x, double y, double z) {
            Q_EMIT placeSelected({x, y, z});
        });
        window->show();
    } catch (const InputError &error) {
        Q_EMIT failed(QString::fromUtf8(error.what()));
    } catch (const std::bad_alloc &) {
        Q_EMIT failed(tr("%1: there is not enough memory to open it").arg(folder));
    }
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/about_box.h"

#include "host/session/host_version.h"
#include "host/workbench/guide.h"

#include <QCoreApplication>
#include <QDir>
#include <QMessageBox>
#include <QUrl>

namespace corvane
{

namespace
{

QString tr(const char *text)
{
    return QCoreApplication::translate("About", text);
}

} // namespace

void showAbout(QWidget *window)
{
    const auto page = [](const char *name, const QString &text) {
        const QString file =
            QDir(guideFolder()).filePath(QString::fromLatin1(name) + QStringLiteral(".html"));
        return QStringLiteral("<a href=\"%1\">%2</a>")
            .arg(QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded()), text);
    };
    QMessageBox::about(
        window, tr("About Corvane"),
        tr("<h3>Corvane %1</h3><p>An open host for plugins that analyse functional MRI data, "
           "of Tessera %2.</p><p>%3</p><p>Free software under the <a "
           "href=\"https://www.gnu.org/licenses/gpl-3.0.html\">GNU General Public License</a>, "
           "version 3 or later. A tool for research, not meant for diagnosis.</p>")
            .arg(QStringLiteral("%1.%2.%3")
                     .arg(hostVersion[0])
                     .arg(hostVersion[1])
                     .arg(hostVersion[2]),
                 QStringLiteral(TESSERA_VERSION),
                 QStringList{page("users-guide", tr("User's guide")),
                             page("graph-measures", tr("Measures")),
                             page("cleaning", tr("Cleaning")),
                             page("statistics", tr("Group statistics")),
                             page("file-formats", tr("File formats"))}
                     .join(QStringLiteral(" \u00b7 "))));
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/shown_thing.h"

#include "dataset/scoped_dialog.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/session/log.h"
#include "host/workbench/background_work.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>

namespace corvane
{

namespace
{

QByteArray pngOf(const QPixmap &picture)
{
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    picture.save(&png, "PNG");
    return png.data();
}

void save(QWidget *view, const QString &file, const QString &filter,
          const std::function<QByteArray()> &bytes)
{
    const QString proposal = QFileDialog(view).directory().filePath(file);
    const QString path = QFileDialog::getSaveFileName(view, QMenu::tr("Save"), proposal, filter);
    if (path.isEmpty())
        return;
    const QString fault = faultOf([&] { writeFile(path, bytes()); });
    if (fault.isEmpty()) {
        logText(QMenu::tr("Saved %1.").arg(QDir::toNativeSeparators(path)));
        return;
    }
    const ScopedDialog box(new QMessageBox(QMessageBox::Warning, QMenu::tr("Save"), fault,
                                           QMessageBox::Ok, view->window()));
    box->setTextFormat(Qt::PlainText);
    box->exec();
}

} // namespace

void popupShownThing(QWidget *view, const QPoint &globalPlace, const ShownThing &thing)
{
    auto *const menu = new QMenu(view);
    menu->setObjectName(QStringLiteral("shownThingMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QMenu::tr("&Copy Picture"), view,
                    [thing] { QApplication::clipboard()->setPixmap(thing.picture()); });
    menu->addAction(QMenu::tr("Save &Picture..."), view, [view, thing] {
        // As it was when the entry was chosen, without the dialog's shadow.
        const QPixmap picture = thing.picture();
        save(view, thing.name + QStringLiteral(".png"), QMenu::tr("Pictures (*.png)"),
             [&picture] { return pngOf(picture); });
    });
    if (thing.table) {
        menu->addSeparator();
        menu->addAction(QMenu::tr("Copy &Table"), view, [thing] {
            QApplication::clipboard()->setText(QString::fromUtf8(thing.table()));
        });
        menu->addAction(QMenu::tr("&Save Table..."), view, [view, thing] {
            save(view, thing.name + QStringLiteral(".tsv"), QMenu::tr("Tables (*.tsv)"),
                 thing.table);
        });
    }
    menu->popup(globalPlace);
}

} // namespace corvane

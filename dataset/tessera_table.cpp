// SPDX-License-Identifier: GPL-3.0-or-later
//
// The slots of the subject table.
#include "dataset/scoped_dialog.h"
#include "dataset/tessera.h"
#include "dataset/verbose_log.h"
#include "plots/plain_text.h"
#include "plugin/host_data.h"
#include "ui_tessera.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMutexLocker>
#include <QSignalBlocker>
#include <QStandardItemModel>

namespace
{

enum Column { VmrColumn = 1, VtcColumn, VoiColumn, PrtColumn };

constexpr const char *rowProperty = "row";

int rowOf(const QObject *cellWidget)
{
    return cellWidget->property(rowProperty).toInt();
}

/// The path of an existing file, empty when none was chosen.
QString askForFile(QWidget *parent, const QString &caption, const QString &filter)
{
    const ScopedDialog dialog(new QFileDialog(parent, caption, QString(), filter));
    dialog->setFileMode(QFileDialog::ExistingFile);
    if (dialog->exec() != QDialog::Accepted) // nor is one that has gone meanwhile
        return {};
    return dialog->selectedFiles().value(0);
}

void showError(QWidget *parent, const QString &text)
{
    const ScopedDialog box(new QMessageBox(QMessageBox::Warning, QMessageBox::tr("Error"), text,
                                           QMessageBox::NoButton, parent,
                                           Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint));
    box->exec();
}

/// As askForFile, and only a readable one: another is an error, whose text is shown.
QString askForReadableFile(QWidget *parent, const QString &caption, const QString &filter,
                           const QString &unreadable)
{
    QString path = askForFile(parent, caption, filter);
    if (path.isEmpty() || QFileInfo(path).isReadable())
        return path;
    showError(parent, unreadable);
    return {};
}

void markChosen(QPushButton *button, const QString &path)
{
    button->setText(QPushButton::tr("ok"));
    button->setToolTip(asToolTip(QFileInfo(path).fileName()));
}

} // namespace

void Tessera::addSubject(bool)
{
    const QMutexLocker lock(&mutex);
    verboseLog("void __cdecl Tessera::addSubject(bool)");
    ui->btn_RemoveSubject->setEnabled(true);

    const int row = subjectsModel->appendSubject() - 1;
    addDocumentBox(row);
    connect(addFileButton(row, VtcColumn), &QPushButton::clicked, this, &Tessera::openVTCFile);
    connect(addFileButton(row, VoiColumn), &QPushButton::clicked, this, &Tessera::openVOIFile);
    connect(addFileButton(row, PrtColumn), &QPushButton::clicked, this, &Tessera::openPRTFile);
    fileButton(row, PrtColumn)->setEnabled(false);
    orderTabsOfRow(row);

    subjectsModel->subjectAt(row).plugin = plugin;
    ui->lbl_SubjectsCounter->setNum(subjectsModel->rowCount());
}

QWidget *Tessera::cellWidget(int row, int column) const
{
    return ui->tbl_Subjects->indexWidget(subjectsModel->index(row, column));
}

QPushButton *Tessera::fileButton(int row, int column) const
{
    return qobject_cast<QPushButton *>(cellWidget(row, column));
}

void Tessera::placeInCell(QWidget *widget, int row, int column)
{
    widget->setProperty(rowProperty, row);
    // Beside a text that tells the state, as "select" or "ok", what it is the state of.
    const QString title = subjectsModel->headerData(column, Qt::Horizontal).toString();
    widget->setAccessibleDescription(title);
    ui->tbl_Subjects->setIndexWidget(subjectsModel->index(row, column), widget);
}

void Tessera::addDocumentBox(int row)
{
    auto *const box = new QComboBox;
    box->setMinimumContentsLength(1);
    // Deprecated, but no other policy lets the box be as narrow as its cell at once.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLength);
    QT_WARNING_POP

    box->addItem(tr("select"));
    makeHeading(box);
    const QHash<int, QString> documents = host_data::vmrDocuments();
    for (auto document = documents.cbegin(); document != documents.cend(); ++document) {
        box->addItem(document.value(), document.key());
        box->setItemData(box->count() - 1, asToolTip(document.value()), Qt::ToolTipRole);
    }
    placeInCell(box, row, VmrColumn);
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &Tessera::vmrDocumentChanged);
}

QPushButton *Tessera::addFileButton(int row, int column)
{
    auto *const button = new QPushButton(tr("select"));
    button->setFlat(true);
    button->setAutoDefault(false);
    placeInCell(button, row, column);
    return button;
}

void Tessera::orderTabsOfRow(int row)
{
    QWidget *before = row == 0 ? ui->tbl_Subjects : cellWidget(row - 1, PrtColumn);
    for (int column = VmrColumn; column <= PrtColumn; ++column) {
        QWidget *const widget = cellWidget(row, column);
        setTabOrder(before, widget);
        before = widget;
    }
}

void Tessera::openVTCFile(bool)
{
    verboseLog("void __cdecl Tessera::openVTCFile(bool)");
    chooseFile(tr("Select VTC"), tr("Volume Time Course (*.vtc)"),
               tr("Unable to read the selected VTC."), &Tessera::takeVTCFile, NameLock::Locked);
}

void Tessera::openVOIFile(bool)
{
    verboseLog("void __cdecl Tessera::openVOIFile(bool)");
    chooseFile(tr("Select VOI"), tr("Volume of Interest (*.voi)"),
               tr("Unable to read the selected VOI."), &Tessera::takeVOIFile, NameLock::Locked);
}

void Tessera::openPRTFile(bool)
{
    verboseLog("void __cdecl Tessera::openPRTFile(bool)");
    // A row that its protocol finishes can still be renamed.
    chooseFile(tr("Select PRT"), tr("Protocol File (*.prt)"),
               tr("Unable to read the selected PRT."), &Tessera::takePRTFile, NameLock::Open);
}

void Tessera::chooseFile(const QString &caption, const QString &filter, const QString &unreadable,
                         TakeFile takeFile, NameLock nameLock)
{
    // The main dialog may be closed under a modal one, and takes the button along.
    const QPointer<QPushButton> button = qobject_cast<QPushButton *>(sender());
    if (button.isNull())
        return;
    const QString path = askForReadableFile(this, caption, filter, unreadable);
    if (button.isNull())
        return;
    const int row = rowOf(button);
    if (!path.isEmpty())
        (this->*takeFile)(row, path);
    if (!button.isNull() && isReady(row))
        finishRow(row, nameLock);
}

void Tessera::takeVTCFile(int row, const QString &path)
{
    markChosen(fileButton(row, VtcColumn), path);
    verboseLog("Selected VTC: ", path);
    Subject &subject = subjectsModel->subjectAt(row);
    subject.setVtcFile(path);
    const bool linked = subject.linkProtocol();

    QPushButton *const protocol = fileButton(row, PrtColumn);
    protocol->setEnabled(true);
    if (linked) {
        protocol->setText(tr("ok - autoloaded"));
        protocol->setToolTip(asToolTip(subject.linkedProtocolFile()));
    }
}

void Tessera::takeVOIFile(int row, const QString &path)
{
    if (!host_data::voiFileIsOneMillimetre(path.toUtf8().constData())) {
        showError(this, tr("VOI's resolution must be 1.0mm."));
        return;
    }
    markChosen(fileButton(row, VoiColumn), path);
    verboseLog("Selected VOI: ", path);
    subjectsModel->subjectAt(row).setVoiFile(path);
}

void Tessera::takePRTFile(int row, const QString &path)
{
    // Marked first, and not taken back when the file can't be parsed.
    markChosen(fileButton(row, PrtColumn), path);
    Subject &subject = subjectsModel->subjectAt(row);
    if (host_data::loadProtocolFile(subject, path.toUtf8().constData()))
        subject.setPrtFile(QFileInfo(path).fileName());
    else
        showError(this, tr("Faild to parse and link the selected protocol file."));
}

bool Tessera::isReady(int row)
{
    const Subject &subject = subjectsModel->subjectAt(row);
    const bool protocolWanted = ui->cbox_UseProtocol->isChecked();
    return subject.isComplete() &&
           (!protocolWanted || subject.protocolAutoloaded() || subject.hasProtocol());
}

void Tessera::finishRow(int row, NameLock nameLock)
{
    // Held to the end: the host may show a message box, under which the dialog may be closed.
    const QSharedPointer<Subject> subject = subjectsModel->sharedSubjectAt(row);
    if (nameLock == NameLock::Locked)
        subject->setEditable(false);
    makeSubjectImmutable(row);
    ui->tab_Connectivity->setEnabled(true);
    lockUnsupportedOptions();
    ui->cBox_connectivityProfile->addItem(subject->name(), row);

    // The "select" item has no data and gives 0.
    const auto *const documents = qobject_cast<QComboBox *>(cellWidget(row, VmrColumn));
    subject->setDocumentId(documents->currentData(Qt::UserRole).toInt());
    subject->load();
}

void Tessera::makeSubjectImmutable(int index)
{
    for (int column = VmrColumn; column <= PrtColumn; ++column)
        cellWidget(index, column)->setEnabled(false);
}

void Tessera::vmrDocumentChanged(int index)
{
    const QObject *const origin = sender();
    if (origin == nullptr)
        return;
    const auto *const box = qobject_cast<QComboBox *>(cellWidget(rowOf(origin), VmrColumn));
    if (box == nullptr)
        return;
    const int id = box->itemData(index, Qt::UserRole).toInt();
    verboseLog("documentID = ", id);
    host_data::setCurrentDocument(id);
}

void Tessera::subjectNameChanged(QString name, int row)
{
    const int item = profileItemOf(row);
    if (item >= 0)
        ui->cBox_connectivityProfile->setItemText(item, name);
}

int Tessera::profileItemOf(int row) const
{
    return ui->cBox_connectivityProfile->findData(row, Qt::UserRole);
}

void Tessera::toggled_useProtocol(bool state)
{
    ui->tbl_Subjects->setColumnHidden(PrtColumn, !state);
    ui->tbl_Subjects->update();
}

void Tessera::removeSubject(bool)
{
    bool profileRemoved = false;
    {
        const QMutexLocker lock(&mutex);
        const QModelIndex current = ui->tbl_Subjects->currentIndex();
        if (current.isValid())
            profileRemoved = removeRow(current.row());
    }
    if (profileRemoved)
        subjectProfile_Changed(ui->cBox_connectivityProfile->currentIndex());
}

void Tessera::removeAllSubjects(bool)
{
    bool profileRemoved = false;
    for (int row = subjectsModel->rowCount() - 1; row >= 0; --row)
        profileRemoved = removeRow(row) || profileRemoved;
    if (profileRemoved)
        subjectProfile_Changed(ui->cBox_connectivityProfile->currentIndex());
}

bool Tessera::removeRow(int row)
{
    // Removing an item tells of the new current one at once, while its data is still the old row.
    QComboBox *const profiles = ui->cBox_connectivityProfile;
    const QSignalBlocker blocker(profiles);
    const int removedItem = profileItemOf(row);

    subjectsModel->removeSubjectAt(row);
    ui->lbl_SubjectsCounter->setNum(subjectsModel->rowCount());
    for (int later = row; later < subjectsModel->rowCount(); ++later) {
        for (int column = VmrColumn; column <= PrtColumn; ++column)
            cellWidget(later, column)->setProperty(rowProperty, later);
    }

    if (currentSubject >= row)
        currentSubject = currentSubject == row ? -1 : currentSubject - 1;
    if (removedItem >= 0)
        profiles->removeItem(removedItem);
    for (int item = 1; item < profiles->count(); ++item) {
        const int itsRow = profiles->itemData(item, Qt::UserRole).toInt();
        if (itsRow > row)
            profiles->setItemData(item, itsRow - 1, Qt::UserRole);
    }
    return removedItem >= 0;
}

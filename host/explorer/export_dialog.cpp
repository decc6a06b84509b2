// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/export_dialog.h"

#include "ui_export_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QSettings>

namespace corvane
{

namespace
{

const QString folderKey = QStringLiteral("explorer/exportFolder");

} // namespace

ExportDialog::ExportDialog(ExplorerModel &model, NetworkView kind, bool dark, QWidget *parent)
    : QDialog(parent), m_model(model), m_ui(std::make_unique<Ui::ExportDialog>())
{
    m_ui->setupUi(this);
    for (const NamedValue<NetworkView> &view : networkViewNames)
        m_ui->viewBox->addItem(QLatin1String(view.name), int(view.value));
    m_ui->viewBox->setCurrentIndex(m_ui->viewBox->findData(int(kind)));
    m_ui->darkBox->setChecked(dark);
    const QString folder = QSettings().value(folderKey, QDir::homePath()).toString();
    m_ui->fileEdit->setText(QDir(folder).filePath(
        QLatin1String(nameOf(kind, networkViewNames)) +
        (kind == NetworkView::Nodes ? QStringLiteral(".tsv") : QStringLiteral(".png"))));
    connect(m_ui->viewBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ExportDialog::follow);
    for (QDoubleSpinBox *box : {m_ui->widthBox, m_ui->pointBox})
        connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
                &ExportDialog::follow);
    connect(m_ui->dotsBox, QOverload<int>::of(&QSpinBox::valueChanged), this,
            &ExportDialog::follow);
    connect(m_ui->darkBox, &QCheckBox::toggled, this, &ExportDialog::follow);
    connect(m_ui->fileEdit, &QLineEdit::textChanged, this, &ExportDialog::follow);
    connect(m_ui->fileButton, &QPushButton::clicked, this, &ExportDialog::chooseFile);
    connect(m_ui->copyButton, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(command()); });
    connect(m_ui->buttons->button(QDialogButtonBox::Save), &QPushButton::clicked, this,
            &ExportDialog::save);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    follow();
}

ExportDialog::~ExportDialog() = default;

NetworkView ExportDialog::kind() const
{
    return NetworkView(m_ui->viewBox->currentData().toInt());
}

FigureFormat ExportDialog::format() const
{
    return {m_ui->widthBox->value(), m_ui->pointBox->value(), m_ui->darkBox->isChecked(),
            m_ui->dotsBox->value()};
}

QString ExportDialog::command() const
{
    return commandText(
        QStringList(QStringLiteral("Corvane")) +
        figureArguments(m_model.figureRequest(kind(), format()), m_ui->fileEdit->text()));
}

void ExportDialog::follow()
{
    m_ui->commandEdit->setText(command());
    m_ui->commandEdit->setCursorPosition(0);
    m_ui->faultLabel->clear();
}

void ExportDialog::chooseFile()
{
    const QString file =
        QFileDialog::getSaveFileName(this, windowTitle(), m_ui->fileEdit->text(),
                                     tr("Figures and tables (*.png *.svg *.pdf *.tsv)"));
    if (!file.isEmpty())
        m_ui->fileEdit->setText(file);
}

void ExportDialog::save()
{
    const QString file = m_ui->fileEdit->text();
    try {
        // Measures are computed anew when they are not there, as the command does.
        if (kind() == NetworkView::Measures && m_model.curves().steps.empty())
            writeFigure(m_model.figureRequest(kind(), format()), file);
        else
            writeFigure(m_model.scene(), kind(), format(), file);
    } catch (const std::exception &error) {
        m_ui->faultLabel->setText(QString::fromUtf8(error.what()));
        return;
    }
    QSettings().setValue(folderKey, QFileInfo(file).absolutePath());
    accept();
}

} // namespace corvane

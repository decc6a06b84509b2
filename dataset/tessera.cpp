// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main dialog itself and the settings of the selected profile.
#include "dataset/tessera.h"

#include "dataset/plugin_settings.h"
#include "dataset/verbose_log.h"
#include "engine/connectivity_object.h"
#include "ui_tessera.h"

#include <QStandardItemModel>

Tessera::Tessera(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::Tessera>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("Tessera"));
    setWindowFlags(Qt::WindowStaysOnTopHint);
    // Not in the form: Qt takes a control that is made inside a disabled page for a plain widget,
    // and tells a screen reader neither its kind nor its name.
    ui->tab_Connectivity->setEnabled(false);
    ui->tab_Graphs->setEnabled(false);
    PluginSettings::instance()->read();

    constexpr int protocolColumn = 4;
    subjectsModel = new SubjectsModel(ui->tbl_Subjects);
    ui->tbl_Subjects->setModel(subjectsModel);
    ui->tbl_Subjects->setColumnHidden(protocolColumn, true);
    connect(subjectsModel, &SubjectsModel::subjectNameChanged, this, &Tessera::subjectNameChanged);

    // The first column takes the free width, the others keep theirs.
    QHeaderView *const header = ui->tbl_Subjects->horizontalHeader();
    for (int section = 0; section < header->count(); ++section)
        header->setSectionResizeMode(0, QHeaderView::Stretch);

    ui->cBox_connectivityProfile->setItemData(0, -1, Qt::UserRole);
}

Tessera::~Tessera()
{
    // While it is whole: an open editor sends its text when it loses the focus.
    hide();
    plugin = nullptr;
}

Subject &Tessera::profileRecord()
{
    return currentSubject == -1 ? *defaultProfile() : subjectsModel->subjectAt(currentSubject);
}

void Tessera::subjectProfile_Changed(int index)
{
    currentSubject =
        index > 0 ? ui->cBox_connectivityProfile->itemData(index, Qt::UserRole).toInt() : -1;
    const bool one = currentSubject != -1;
    Subject &record = profileRecord();

    ui->btn_Compute->setEnabled(!one || !record.computed());
    ui->btn_Compute->setText(one ? tr("Compute") : tr("Compute All"));

    const ConnectivityScheme scheme = record.scheme();
    setVOIsList();
    const bool seedToSeed = scheme.kind == 1;
    if (!seedToSeed)
        ui->cbox_ConfigureVOI->setCurrentIndex(scheme.voiIndex);
    ui->rbtn_SeedToSeed->setChecked(seedToSeed);
    ui->rbtn_VoxelToVoxel->setChecked(!seedToSeed);
    ui->btn_ConfigureVOIs->setEnabled(seedToSeed);

    if (record.measure() == 1)
        ui->rbtn_Correlation->setChecked(true);
    else if (record.measure() == 2)
        ui->rbtn_PartialCorrelation->setChecked(true);

    if (record.matrixValues() == 0)
        ui->rbtn_AbsoluteMtx->setChecked(true);
    else if (record.matrixValues() == 1)
        ui->rbtn_PositiveMtx->setChecked(true);
    else if (record.matrixValues() == 2)
        ui->rbtn_NegativeMtx->setChecked(true);

    ui->chkBox_ComputeMST->setChecked(record.computeMst());
}

void Tessera::setVOIsList()
{
    QComboBox *const box = ui->cbox_ConfigureVOI;
    box->clear();
    box->addItem(tr("select"));
    if (currentSubject == -1)
        return;

    Subject &record = profileRecord();
    const int count = record.voiCount(true);
    if (count < 2)
        return; // one VOI needs no choice
    const QStringList labels = record.voiLabels(true);
    if (PluginSettings::instance()->verboseLogging) {
        verboseLog(record.describe());
        verboseLog("void __cdecl Tessera::setVOIsList(void)", "(",
                   labels.join(QStringLiteral(", ")), ")");
    }
    for (int position = 0; position < labels.size(); ++position)
        box->addItem(labels.at(position), position);
    if (record.scheme().voiIndex >= 0)
        box->setCurrentIndex(record.scheme().voiIndex);

    makeHeading(box);
}

void Tessera::makeHeading(QComboBox *box)
{
    QStandardItem *const item = qobject_cast<QStandardItemModel *>(box->model())->item(0);
    QFont font = item->font();
    font.setWeight(QFont::Bold);
    item->setFont(font);
    item->setSelectable(false);
}

void Tessera::lockUnsupportedOptions()
{
    ui->rbtn_Covariance->setEnabled(false);
    ui->rbtn_Tangent->setEnabled(false);
    ui->rdBtn_Dynamic->setEnabled(false);
    ui->btn_ConfigureDynamic->setEnabled(false);
    ui->rbtn_VoxelToVoxel->setEnabled(false);
    ui->cbox_ConfigureVOI->setEnabled(false);
    ui->btn_Compute->setEnabled(false);
    ui->btn_ConfigureVOIs->setEnabled(true);
}

void Tessera::click_VoxelToVoxel() {}

void Tessera::click_SeedToSeed()
{
    ConnectivityScheme scheme = profileRecord().scheme();
    scheme.kind = 1;
    profileRecord().setScheme(scheme);
    ui->btn_ConfigureVOIs->setEnabled(true);
}

void Tessera::click_MeasureCorrelation()
{
    profileRecord().setMeasure(1);
}

void Tessera::click_MeasurePartCorrelation()
{
    profileRecord().setMeasure(2);
}

void Tessera::click_MtxAbsolute()
{
    profileRecord().setMatrixValues(0);
}

void Tessera::click_MtxPositive()
{
    profileRecord().setMatrixValues(1);
}

void Tessera::click_MtxNegative()
{
    profileRecord().setMatrixValues(2);
}

void Tessera::click_FilterMst(bool state)
{
    profileRecord().setComputeMst(state);
}

void Tessera::configureVoxelToVoxel(int index)
{
    ConnectivityScheme scheme = profileRecord().scheme();
    scheme.voiIndex = index;
    profileRecord().setScheme(scheme);
}

void Tessera::subjects_OpenSelected() {}

void Tessera::subjects_OpenSelected(QModelIndex index)
{
    verboseLog("void __cdecl Tessera::subjects_OpenSelected(class QModelIndex)");
    connectivityObjects.at(index.row())->showResults();
}

void Tessera::subjects_ReleaseSelected() {}

void Tessera::subjects_ReleaseAll() {}

void Tessera::closeDialog(bool)
{
    verboseLog("void __cdecl Tessera::closeDialog(bool)");
    close();
}

void Tessera::toggled_keepWindowOnTop(bool state)
{
    Qt::WindowFlags flags = windowFlags();
    flags.setFlag(Qt::WindowStaysOnTopHint, state);
    setWindowFlags(flags);
    show();
}

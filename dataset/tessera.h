// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/subjects_model.h"

#include <QDialog>
#include <QMutex>
#include <QPointer>
#include <QVector>

#include <memory>

class ConnectivityObject;
class QPushButton;
class QComboBox;
class QModelIndex;
class Tessera_Plugin;
struct ComputedMatrices;

namespace Ui
{
class Tessera;
}

/// The main dialog, the plugin's one top-level window and its hub: the dataset, the settings of one
/// subject's connectivity, and the finished subjects with their comparison.
///
/// It owns the subjects and, as its children, the results. Its slots run on the GUI thread. They
/// are written in several files by subject: the table's in `dataset/tessera_table.cpp`, the
/// compute, the group analysis and the VOI selection in `engine/`.
class Tessera : public QDialog
{
    Q_OBJECT

public:
    explicit Tessera(QWidget *parent);
    ~Tessera() override;

    Tessera_Plugin *plugin = nullptr; ///< set right after construction

public slots:
    // The table
    void addSubject(bool state);
    void removeSubject(bool state);
    void removeAllSubjects(bool state);
    void openVTCFile(bool state);
    void openVOIFile(bool state);
    void openPRTFile(bool state);
    void subjectNameChanged(QString name, int row);
    void toggled_useProtocol(bool state);
    void vmrDocumentChanged(int index);
    void makeSubjectImmutable(int index);

    // The settings of the selected profile
    void subjectProfile_Changed(int index);
    void click_VoxelToVoxel();
    void click_SeedToSeed();
    void configurationSeedToSeedVOIs(bool);
    void click_MeasureCorrelation();
    void click_MeasurePartCorrelation();
    void click_MtxAbsolute();
    void click_MtxPositive();
    void click_MtxNegative();
    void click_FilterMst(bool state);
    void configureVoxelToVoxel(int index);

    void computeConnectivity();

    // The finished subjects
    void subjects_OpenSelected();
    void subjects_OpenSelected(QModelIndex index);
    void subjects_ReleaseSelected();
    void subjects_ReleaseAll();
    void group_ComputeDistance();
    void group_SelectedSubjects();

    // The window
    void closeDialog(bool);
    void toggled_keepWindowOnTop(bool state);

private:
    // Settings
    Subject &profileRecord(); ///< the record that the settings slots write to
    void setVOIsList();
    void lockUnsupportedOptions();

    static void makeHeading(QComboBox *box); ///< its first item becomes bold and can't be chosen

    // The table
    using TakeFile = void (Tessera::*)(int row, const QString &path);
    /// Whether the row that a file finishes keeps its name from then on.
    enum class NameLock { Locked, Open };

    QWidget *cellWidget(int row, int column) const;
    QPushButton *fileButton(int row, int column) const;
    void placeInCell(QWidget *widget, int row, int column);
    void addDocumentBox(int row);
    QPushButton *addFileButton(int row, int column);
    void orderTabsOfRow(int row);
    /// Asks for a file for the sender's row, hands a readable one to `takeFile`, and finishes the
    /// row when it is ready after that, whatever came of the choice.
    void chooseFile(const QString &caption, const QString &filter, const QString &unreadable,
                    TakeFile takeFile, NameLock nameLock);
    void takeVTCFile(int row, const QString &path);
    void takeVOIFile(int row, const QString &path);
    void takePRTFile(int row, const QString &path);
    bool isReady(int row); ///< it has all its files
    /// Locks the row, makes it a profile and loads its data.
    void finishRow(int row, NameLock nameLock);
    int profileItemOf(int row) const; ///< -1 when the row is no profile yet
    /// Removes the row with its widgets and its profile, and renumbers what comes behind it. True
    /// when it was a profile: the selected one may be another now.
    bool removeRow(int row);

    // The compute
    void computeSubjectConnectivity(int index);
    /// True, after a message, when a finished subject bears that name.
    bool refuseDuplicate(const QString &name);
    void addResult(const QSharedPointer<Subject> &subject, const QString &name,
                   const ComputedMatrices &computed);

    int currentSubject = -1; ///< row of the selected profile, -1 for "All"
    std::unique_ptr<Ui::Tessera> ui;
    QMutex mutex;                                      ///< held while rows are added and removed
    SubjectsModel *subjectsModel = nullptr;            ///< child of the table
    QVector<ConnectivityObject *> connectivityObjects; ///< children, in order of completion
};

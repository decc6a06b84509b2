// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dataset/subjects_model.h"
#include "dataset/tessera.h"
#include "tests/support/fake_host.h"
#include "tests/support/modal_driver.h"
#include "tests/support/qt_printers.h"

#include <QComboBox>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

class ConnectivityObject;
class QListWidget;

/// The main dialog on a host made for tests, with files that exist on disk and in the host, worked
/// with clicks as a user would. The host has one VMR.
class DatasetFixture : public testing::Test
{
protected:
    DatasetFixture();
    ~DatasetFixture() override;

    // Files. Each exists, empty, in the folder, and is known to the host by its full path, which is
    // returned.
    QString addVtc(const QString &name, const fake_host::Vtc &vtc);
    QString addVtc(const QString &name, int volumes = 40); ///< 8 x 8 x 8 voxels
    QString addVois(const QString &name, const fake_host::VoiSet &set);
    QString addVois(const QString &name, int count = 12); ///< of three voxels, "V0" and on
    QString addProtocol(const QString &name, const fake_host::Protocol &protocol);
    static std::string hostPath(const QString &path) { return path.toUtf8().toStdString(); }

    // The dialog, shown. Made at its first use.
    Tessera &dialog();
    void closeDialog(); ///< destroys it as the host would

    template <typename Widget>
    Widget *find(const char *name)
    {
        auto *const widget = dialog().findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    void click(const char *buttonName); ///< on its tab, which comes to the front
    void showTab(QWidget *widget);      ///< brings the tab with that widget to the front

    // The table
    SubjectsModel &model();
    Subject &subject(int row) { return model().subjectAt(row); }
    int addRow(); ///< returns it
    void removeRow(int row);
    QComboBox *vmrBox(int row);
    QPushButton *fileButton(int row, int column);
    QWidget *cell(int row, int column);
    void chooseFile(int row, int column, const QString &path);
    void finishRow(int row, const QString &vtc, const QString &vois);
    int addReadyRow(); ///< with "run.vtc" and "set.voi", which are made
    void rename(int row, const QString &name);

    // The compute
    void selectProfile(int row);                ///< -1: "All"
    void selectSeeds(const QVector<int> &vois); ///< of the selected profile, through the dialog
    void compute();
    void computeRow(int row, const QVector<int> &vois); ///< all three
    QListWidget *results();
    QList<ConnectivityObject *> objects();
    ConnectivityObject *object(int index);
    static QList<QWidget *> resultsDialogs(); ///< those that are open

    QStringList hostLog() const;

    fake_host::FakeHost host;
    QTemporaryDir folder;
    ModalDriver modals;

private:
    QString addFile(const QString &name);

    QPointer<Tessera> m_dialog;
};

enum SubjectColumn { NameColumn, VmrColumn, VtcColumn, VoiColumn, PrtColumn };

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/world_place.h"

#include <QObject>

class QWidget;

namespace corvane
{

/// The connectome windows of the workbench: opens finished results, and tells where the node lies
/// that is selected in one of them.
class ResultOpener : public QObject
{
    Q_OBJECT

public:
    explicit ResultOpener(QWidget *parent);

    /// Asks for the folder of a result.
    void choose();
    /// A folder, and one of its runs; the first for an empty one.
    void open(const QString &folder, const QString &run = {});

Q_SIGNALS:
    void placeSelected(const WorldPlace &place);
    void failed(const QString &fault); ///< the result cannot be opened

private:
    QWidget *m_parent;
};

} // namespace corvane

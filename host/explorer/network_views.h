// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/network_canvas.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/ring_painting.h"

/// @file
/// The pictures of the connectome window. Each keeps the picture's parts until the model changes.

namespace corvane
{

/// Zooming shows fewer nodes, larger. A click selects an edge, arrows move it.
class MatrixCanvas : public NetworkCanvas
{
    Q_OBJECT

public:
    explicit MatrixCanvas(ExplorerModel &model, QWidget *parent = nullptr);

    /// The place of an entry in the widget, by nodes of the result.
    QRectF cellOf(int node, int other) const;

protected:
    void paintPicture(QPainter &painter, const QRectF &area) override;
    void paintMarks(QPainter &painter) override;
    void zoomAbout(const QPointF &place, double factor) override;
    void pan(const QPointF &by) override;
    void showAll() override;
    void click(const QPointF &place) override;
    QString textAt(const QPointF &place) override;
    void step(int right, int down) override;

private:
    NetworkPicture picture() const;
    void keepInside();

    MatrixLayout m_layout;
    /// What is seen of all nodes, as shares of them.
    QRectF m_seen{0, 0, 1, 1};
    int m_row = -1, m_column = -1; ///< under the mouse, positions in the picture
};

/// A click selects a node; one on the names too.
class RingCanvas : public NetworkCanvas
{
    Q_OBJECT

public:
    explicit RingCanvas(ExplorerModel &model, QWidget *parent = nullptr);

    QPointF placeOf(int node) const; ///< of the result

protected:
    void paintPicture(QPainter &painter, const QRectF &area) override;
    void paintMarks(QPainter &painter) override;
    void click(const QPointF &place) override;
    QString textAt(const QPointF &place) override;

private:
    RingLayout m_ring;
    int m_pointed = -1; ///< position in the picture
};

/// A click selects the nearest node; with Shift, the other one of the edge.
class BrainCanvas : public NetworkCanvas
{
    Q_OBJECT

public:
    explicit BrainCanvas(ExplorerModel &model, QWidget *parent = nullptr);

    QPointF placeOf(int panel, int node) const; ///< of the result

protected:
    void paintPicture(QPainter &painter, const QRectF &area) override;
    void paintMarks(QPainter &painter) override;
    void click(const QPointF &place) override;
    QString textAt(const QPointF &place) override;

private:
    BrainPicture m_picture;
    BrainLayout m_layout;
    int m_pointed = -1;
};

/// The courses of the selected edge.
class EvidenceCanvas : public NetworkCanvas
{
    Q_OBJECT

public:
    explicit EvidenceCanvas(ExplorerModel &model, QWidget *parent = nullptr);
};

/// Measures over densities, while it is seen.
class MeasuresCanvas : public NetworkCanvas
{
    Q_OBJECT

public:
    explicit MeasuresCanvas(ExplorerModel &model, QWidget *parent = nullptr);

protected:
    void paintPicture(QPainter &painter, const QRectF &area) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
};

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/explorer/explorer_model.h"

#include <QPixmap>
#include <QTransform>
#include <QWidget>

namespace corvane
{

/// A view that is a picture. The picture is kept; what follows the mouse and the selection is
/// painted above it, so that moving the mouse paints nothing again. The wheel zooms about the
/// mouse, dragging pans, a double click or Home shows all. Escape clears the selection, Ctrl+C
/// copies the picture.
class NetworkCanvas : public QWidget
{
    Q_OBJECT

public:
    NetworkCanvas(ExplorerModel &model, NetworkView kind, QWidget *parent = nullptr);

    NetworkView kind() const { return m_kind; }
    QSize sizeHint() const override { return {480, 480}; }
    QSize minimumSizeHint() const override { return {180, 160}; }
    void copyPicture() const;

Q_SIGNALS:
    void pointedAt(const QString &text); ///< what is under the mouse; empty for nothing

protected:
    ExplorerModel &model() const { return m_model; }

    /// Asked when the picture is needed anew.
    virtual void paintPicture(QPainter &painter, const QRectF &area);
    /// Above the picture, often.
    virtual void paintMarks(QPainter &painter) { Q_UNUSED(painter); }
    /// The picture is painted anew before the next paint.
    void renew();
    /// From the picture, which is as large as the widget, to the widget that sees a part of it.
    QTransform toWidget() const { return {m_zoom, 0, 0, m_zoom, m_offset.x(), m_offset.y()}; }
    QPointF fromWidget(const QPointF &place) const { return (place - m_offset) / m_zoom; }
    virtual void zoomAbout(const QPointF &place, double factor);
    virtual void pan(const QPointF &by);
    virtual void showAll();

    virtual void click(const QPointF &place) { Q_UNUSED(place); }
    virtual QString textAt(const QPointF &) { return {}; }
    /// Selects the node at a position of the picture, nothing for -1; with Shift it becomes the
    /// other node of the edge.
    void selectAt(int position);
    /// An arrow key: steps to the right and down.
    virtual void step(int right, int down);

    void prepare(QPainter &painter) const;

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void tellSelection();

    ExplorerModel &m_model;
    const NetworkView m_kind;
    QPixmap m_picture;
    bool m_isOld = true;
    double m_zoom = 1;
    QPointF m_offset;
    QPointF m_pressed;
    QPointF m_last;
    bool m_isDragged = false;
    bool m_isWithShift = false; ///< the last click
};

} // namespace corvane

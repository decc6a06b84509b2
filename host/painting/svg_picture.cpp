// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/painting/svg_picture.h"

#include <QBuffer>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainterPath>
#include <QPixmap>
#include <cmath>

namespace corvane
{

namespace
{

/// A hundredth of a unit is less than a pixel anywhere.
QByteArray number(double value)
{
    QByteArray text = QByteArray::number(value, 'f', 3);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text == "-0" ? QByteArray("0") : text;
}

QByteArray attribute(const char *name, const QByteArray &value)
{
    return QByteArray(" ") + name + "=\"" + value + '"';
}

QByteArray transformOf(const QTransform &t)
{
    if (t.isIdentity())
        return {};
    return attribute("transform", "matrix(" + QByteArray::number(t.m11(), 'g', 9) + ' ' +
                                      QByteArray::number(t.m12(), 'g', 9) + ' ' +
                                      QByteArray::number(t.m21(), 'g', 9) + ' ' +
                                      QByteArray::number(t.m22(), 'g', 9) + ' ' + number(t.dx()) +
                                      ' ' + number(t.dy()) + ')');
}

QByteArray pathData(const QPainterPath &path)
{
    QByteArray data;
    const auto point = [](const QPainterPath::Element &element) {
        return number(element.x) + ' ' + number(element.y);
    };
    for (int n = 0; n < path.elementCount(); ++n) {
        const QPainterPath::Element element = path.elementAt(n);
        if (element.isMoveTo())
            data += 'M' + point(element);
        else if (element.isLineTo())
            data += 'L' + point(element);
        else {
            data += 'C' + point(element) + ' ' + point(path.elementAt(n + 1)) + ' ' +
                    point(path.elementAt(n + 2));
            n += 2;
        }
    }
    return data;
}

/// "fill" or "stroke" with its opacity.
QByteArray colourOf(const char *what, const QColor &colour)
{
    QByteArray text = attribute(what, colour.name().toLatin1());
    if (colour.alpha() < 255)
        text += attribute((QByteArray(what) + "-opacity").constData(), number(colour.alphaF()));
    return text;
}

class SvgEngine : public QPaintEngine
{
public:
    SvgEngine() : QPaintEngine(QPaintEngine::AllFeatures) {}

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }
    void updateState(const QPaintEngineState &) override {} // asked for when something is drawn

    void drawPath(const QPainterPath &path) override
    {
        const QByteArray style = fill() + stroke();
        if (!path.isEmpty())
            add("<path" + attribute("d", pathData(path)) + style +
                (path.fillRule() == Qt::OddEvenFill ? attribute("fill-rule", "evenodd")
                                                    : QByteArray()) +
                place() + "/>");
    }
    void drawPolygon(const QPointF *points, int count, PolygonDrawMode mode) override
    {
        QByteArray list;
        for (int n = 0; n < count; ++n)
            list += (n > 0 ? " " : "") + number(points[n].x()) + ',' + number(points[n].y());
        const bool isOpen = mode == PolylineMode;
        add(QByteArray(isOpen ? "<polyline" : "<polygon") + attribute("points", list) +
            (isOpen ? attribute("fill", "none") : fill()) + stroke() + place() + "/>");
    }
    void drawRects(const QRectF *rects, int count) override
    {
        for (int n = 0; n < count; ++n)
            add("<rect" + attribute("x", number(rects[n].x())) +
                attribute("y", number(rects[n].y())) +
                attribute("width", number(rects[n].width())) +
                attribute("height", number(rects[n].height())) + fill() + stroke() + place() +
                "/>");
    }
    void drawPixmap(const QRectF &target, const QPixmap &pixmap, const QRectF &source) override
    {
        drawImage(target, pixmap.toImage(), source, Qt::AutoColor);
    }
    void drawImage(const QRectF &target, const QImage &image, const QRectF &source,
                   Qt::ImageConversionFlags) override
    {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.copy(source.toRect()).save(&buffer, "PNG");
        add("<image" + attribute("x", number(target.x())) + attribute("y", number(target.y())) +
            attribute("width", number(target.width())) +
            attribute("height", number(target.height())) +
            attribute("preserveAspectRatio", "none") +
            attribute("style", "image-rendering:pixelated") +
            attribute("xlink:href", "data:image/png;base64," + png.toBase64()) + place() + "/>");
    }
    void drawTextItem(const QPointF &at, const QTextItem &item) override
    {
        const QFont font = item.font();
        const double size = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * 96 / 72;
        QByteArray text =
            "<text" + attribute("x", number(at.x())) + attribute("y", number(at.y())) +
            attribute("font-family",
                      font.family().toHtmlEscaped().toUtf8() + ", Arial, Helvetica, sans-serif") +
            attribute("font-size", number(size));
        if (font.bold())
            text += attribute("font-weight", "bold");
        add(text + colourOf("fill", painter()->pen().color()) + attribute("xml:space", "preserve") +
            place() + '>' + item.text().toHtmlEscaped().toUtf8() + "</text>");
    }

    QByteArray body() const
    {
        return (m_definitions.isEmpty() ? QByteArray() : "<defs>\n" + m_definitions + "</defs>\n") +
               m_elements;
    }

private:
    void add(const QByteArray &element) { m_elements += element + '\n'; }

    /// Where it is, and what of it is seen.
    QByteArray place()
    {
        QByteArray text = transformOf(painter()->combinedTransform());
        if (painter()->opacity() < 1)
            text += attribute("opacity", number(painter()->opacity()));
        if (painter()->hasClipping()) {
            const QRectF clip = painter()->clipBoundingRect();
            // The clip is in the same units as what it cuts.
            text += attribute("clip-path",
                              "url(#" +
                                  defined("clipPath", {},
                                          "<rect" + attribute("x", number(clip.x())) +
                                              attribute("y", number(clip.y())) +
                                              attribute("width", number(clip.width())) +
                                              attribute("height", number(clip.height())) + "/>") +
                                  ')');
        }
        return text;
    }

    QByteArray fill()
    {
        const QBrush &brush = painter()->brush();
        if (brush.style() == Qt::NoBrush)
            return attribute("fill", "none");
        if (brush.style() != Qt::LinearGradientPattern)
            return colourOf("fill", brush.color());
        const auto *gradient = static_cast<const QLinearGradient *>(brush.gradient());
        QByteArray stops;
        for (const QGradientStop &stop : gradient->stops())
            stops += "<stop" + attribute("offset", number(stop.first)) +
                     colourOf("stop-color", stop.second) + "/>";
        const QByteArray line = attribute("gradientUnits", "userSpaceOnUse") +
                                attribute("x1", number(gradient->start().x())) +
                                attribute("y1", number(gradient->start().y())) +
                                attribute("x2", number(gradient->finalStop().x())) +
                                attribute("y2", number(gradient->finalStop().y()));
        return attribute("fill", "url(#" + defined("linearGradient", line, stops) + ')');
    }

    QByteArray stroke() const
    {
        const QPen &pen = painter()->pen();
        if (pen.style() == Qt::NoPen)
            return {};
        const double width = pen.widthF() > 0 ? pen.widthF() : 1;
        QByteArray text =
            colourOf("stroke", pen.color()) + attribute("stroke-width", number(width));
        if (pen.style() != Qt::SolidLine) {
            QByteArray dashes;
            for (const double dash : pen.dashPattern())
                dashes += (dashes.isEmpty() ? "" : ",") + number(dash * width);
            text += attribute("stroke-dasharray", dashes);
        }
        if (pen.capStyle() == Qt::RoundCap)
            text += attribute("stroke-linecap", "round");
        return text;
    }

    /// The name of a definition, which is written once.
    QByteArray defined(const char *element, const QByteArray &attributes, const QByteArray &content)
    {
        const QByteArray key = element + attributes + content;
        int number = m_keys.indexOf(key);
        if (number < 0) {
            number = m_keys.size();
            m_keys += key;
            m_definitions += QByteArray("<") + element +
                             attribute("id", "d" + QByteArray::number(number)) + attributes + '>' +
                             content + "</" + element + ">\n";
        }
        return "d" + QByteArray::number(number);
    }

    QByteArray m_definitions;
    QByteArray m_elements;
    QByteArrayList m_keys;
};

class SvgDevice : public QPaintDevice
{
public:
    explicit SvgDevice(const QSizeF &size) : m_size(size) {}

    QPaintEngine *paintEngine() const override { return &m_engine; }
    QByteArray body() const { return m_engine.body(); }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        constexpr int dpi = 96;
        switch (metric) {
        case PdmWidth:
            return int(std::ceil(m_size.width()));
        case PdmHeight:
            return int(std::ceil(m_size.height()));
        case PdmWidthMM:
            return int(m_size.width() * 25.4 / dpi);
        case PdmHeightMM:
            return int(m_size.height() * 25.4 / dpi);
        case PdmNumColors:
            return 1 << 24;
        case PdmDepth:
            return 24;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(devicePixelRatioFScale());
        default:
            return dpi;
        }
    }

private:
    QSizeF m_size;
    mutable SvgEngine m_engine;
};

} // namespace

QByteArray svgPicture(const QSizeF &size, double millimetres,
                      const std::function<void(QPainter &)> &paint)
{
    SvgDevice device(size);
    QPainter painter(&device);
    paint(painter);
    painter.end();
    const double height = millimetres * size.height() / size.width();
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg" +
           attribute("xmlns", "http://www.w3.org/2000/svg") +
           attribute("xmlns:xlink", "http://www.w3.org/1999/xlink") + attribute("version", "1.1") +
           attribute("width", number(millimetres) + "mm") +
           attribute("height", number(height) + "mm") +
           attribute("viewBox", "0 0 " + number(size.width()) + ' ' + number(size.height())) +
           ">\n" + device.body() + "</svg>\n";
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/pictures/compute_pictures.h"

#include "host/compute/compute_files.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/pictures/result_pictures.h"

#include <QBuffer>
#include <QPixmap>

#include <algorithm>
#include <functional>

namespace corvane
{

namespace
{

/// The overview has room for that many nodes, and a ring of that many takes seconds.
constexpr std::size_t mostNodesInRing = 116;
/// A map of that many nodes is a picture of more than 7,500 pixels in width and height.
constexpr std::size_t mostNodesInMap = 500;

struct Picture {
    QString name;
    std::function<QPixmap()> draw;
};

/// The number of slices that are no event.
int conditionCount(const ComputeResult &result)
{
    return static_cast<int>(std::count_if(result.slices.begin(), result.slices.end(),
                                          [](const ComputedSlice &slice) { return !slice.event; }));
}

/// The lines of a ring are as thick as connections are strong, which says nothing of signs.
bool hasRing(const ComputeRequest &request)
{
    return request.matrixValues != MatrixValues::Signed;
}

/// All pictures of a result, in the order in which they are drawn.
std::vector<Picture> picturesOf(ResultPictures &windows, const ComputeRequest &request,
                                const ComputeResult &result)
{
    const auto png = QStringLiteral("png");
    std::vector<Picture> pictures;
    for (std::size_t s = 0; s < result.slices.size(); ++s) {
        if (result.slices[s].event)
            continue;
        const auto add = [&](const char *kind, QPixmap (ResultPictures::*draw)(std::size_t)) {
            pictures.push_back({sliceFileName(QLatin1String(kind), png, request, result, s),
                                [&windows, draw, s] { return (windows.*draw)(s); }});
        };
        if (result.nodes.size() <= mostNodesInRing) {
            if (hasRing(request))
                add("ring", &ResultPictures::ring);
            add("overview", &ResultPictures::overview);
        }
        if (result.nodes.size() <= mostNodesInMap)
            add("connectivity", &ResultPictures::map);
    }
    const int conditions = conditionCount(result);
    for (const GraphMeasure &measure : graphMeasuresOfTables()) {
        if (conditions > (measure.perMatrix != nullptr ? 1 : 0)) { // one value alone is no plot
            pictures.push_back({QLatin1String(measure.column) + QLatin1Char('.') + png,
                                [&windows, measure] { return windows.measure(measure); }});
        }
    }
    return pictures;
}

void writePicture(const OutputFolder &folder, const QString &name, const QPixmap &picture)
{
    QBuffer png;
    if (!png.open(QIODevice::WriteOnly) || !picture.save(&png, "PNG")) {
        throw InputError(folder.finalPath(name), QStringLiteral("drawing"),
                         QStringLiteral("an error"), QStringLiteral("memory for the picture"));
    }
    writeFile(folder.path(name), png.data());
}

} // namespace

QStringList picturesLeftOut(const ComputeRequest &request, const ComputeResult &result)
{
    if (conditionCount(result) == 0)
        return {QStringLiteral("Nothing is drawn: all intervals are events")};
    QStringList lines;
    const std::size_t nodes = result.nodes.size();
    const auto add = [&](const char *what, std::size_t most) {
        lines += QStringLiteral("%1 not drawn: %2 nodes, there is room for %3")
                     .arg(QLatin1String(what))
                     .arg(nodes)
                     .arg(most);
    };
    if (!hasRing(request))
        lines += QStringLiteral("The ring is not drawn: its lines do not show signs");
    if (nodes > mostNodesInRing)
        add("Ring and overview are", mostNodesInRing);
    if (nodes > mostNodesInMap)
        add("The map of the matrix is", mostNodesInMap);
    return lines;
}

QStringList writeComputePictures(const OutputFolder &folder, const ComputeRequest &request,
                                 const ComputeResult &result, const ProgressWatch &watch)
{
    ResultPictures windows(result);
    const std::vector<Picture> pictures = picturesOf(windows, request, result);
    QStringList names;
    for (const Picture &picture : pictures) {
        tellProgress(watch, names.size(), static_cast<qint64>(pictures.size()));
        writePicture(folder, picture.name, picture.draw());
        names += picture.name;
    }
    return names;
}

} // namespace corvane

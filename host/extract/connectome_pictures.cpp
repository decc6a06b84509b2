// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/connectome_pictures.h"

#include "host/extract/node_order.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/painting/matrix_painting.h"
#include "host/painting/ring_painting.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace corvane
{

namespace
{

using PaintPicture = void (*)(QPainter &, const QRectF &, const NetworkPicture &);

/// The largest value off the diagonal, by which the colours are scaled; correlations go to 1.
double limitOf(const PartMatrix &matrix)
{
    if (matrix.relationship == Relationship::Pearson ||
        matrix.relationship == Relationship::Spearman ||
        matrix.relationship == Relationship::Partial)
        return 1;
    double limit = 0;
    const Eigen::MatrixXd &values = matrix.matrix.values;
    for (Eigen::Index j = 0; j < values.cols(); ++j)
        for (Eigen::Index i = 0; i < values.rows(); ++i)
            if (i != j && std::isfinite(values(i, j)))
                limit = std::max(limit, std::abs(values(i, j)));
    return limit > 0 ? limit : 1;
}

void writePicture(const OutputFolder &folder, const QString &name, PaintPicture paint,
                  const NetworkPicture &picture)
{
    const int side = picture.names.size() <= 100 ? 1000 : 1800;
    QImage image(side, side, QImage::Format_RGB32);
    QPainter painter(&image);
    paint(painter, QRectF(image.rect()), picture);
    painter.end();
    QBuffer png;
    if (!png.open(QIODevice::WriteOnly) || !image.save(&png, "PNG"))
        throw InputError(folder.finalPath(name), QStringLiteral("drawing"),
                         QStringLiteral("an error"), QStringLiteral("memory for the picture"));
    writeFile(folder.path(name), png.data());
}

} // namespace

NetworkPicture networkPicture(const ConnectomeNames &names, const Connectome &connectome,
                              const PartMatrix &matrix)
{
    NetworkPicture picture;
    picture.title = QStringLiteral("%1, %2, %3 kept volumes")
                        .arg(names.prefix, QLatin1String(factsOf(matrix.relationship).measure),
                             QString::number(matrix.part.rows.size()));
    const NodeOrder order = orderByNetwork(connectome.nodes);
    for (const int node : order.nodes)
        picture.names += connectome.nodes[std::size_t(node)].name;
    picture.values = matrix.matrix.values(order.nodes, order.nodes);
    picture.limit = limitOf(matrix);
    picture.groups = order.groups;
    return picture;
}

void writeConnectomePictures(const OutputFolder &folder, const ConnectomeNames &names,
                             const Connectome &connectome)
{
    for (const PartMatrix &matrix : connectome.matrices) {
        if (!matrix.part.entity.isEmpty())
            continue;
        const NetworkPicture picture = networkPicture(names, connectome, matrix);
        const QString stem = matrixStem(names, matrix);
        writePicture(folder, stem + QStringLiteral("_matrix.png"), paintMatrix, picture);
        writePicture(folder, stem + QStringLiteral("_ring.png"), paintRing, picture);
    }
}

} // namespace corvane

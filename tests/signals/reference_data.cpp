// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/signals/reference_data.h"

#include "tests/support/reference_folder.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <zlib.h>

namespace reference_data
{
namespace
{

std::string folder()
{
    return std::string(referenceFolder()) + "/reference/";
}

QByteArray contents(const std::string &file)
{
    QFile opened(QString::fromStdString(folder() + file));
    if (!opened.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("cannot read " + file);
    }
    return opened.readAll();
}

double number(const QByteArray &text)
{
    if (text == "n/a" || text.isEmpty()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    char *end = nullptr;
    const double value = std::strtod(text.constData(), &end);
    if (*end != '\0') {
        throw std::runtime_error("not a number: " + text.toStdString());
    }
    return value;
}

Eigen::MatrixXd numbers(const QList<QList<QByteArray>> &rows)
{
    Eigen::MatrixXd result(rows.size(), rows.isEmpty() ? 0 : rows.first().size());
    for (int row = 0; row < rows.size(); ++row) {
        if (rows[row].size() != result.cols()) {
            throw std::runtime_error("rows of different lengths");
        }
        for (int column = 0; column < rows[row].size(); ++column) {
            result(row, column) = number(rows[row][column]);
        }
    }
    return result;
}

QList<QList<QByteArray>> cells(const std::string &file, char separator)
{
    QList<QList<QByteArray>> rows;
    for (const QByteArray &line : contents(file).split('\n')) {
        if (!line.isEmpty()) {
            rows.append(line.split(separator));
        }
    }
    return rows;
}

QByteArray unpacked(const std::string &file)
{
    const gzFile opened = gzopen((folder() + file).c_str(), "rb");
    QByteArray all;
    char part[65536];
    for (int size = 0; opened != nullptr && (size = gzread(opened, part, sizeof part)) > 0;) {
        all.append(part, size);
    }
    gzclose(opened);
    return all;
}

template <typename Value>
Value at(const QByteArray &bytes, Eigen::Index offset)
{
    Value value;
    std::memcpy(&value, bytes.constData() + offset, sizeof value);
    return value;
}

} // namespace

bool is_there()
{
    return QDir(QString::fromStdString(folder())).exists();
}

Eigen::MatrixXd matrix(const std::string &file)
{
    QList<QList<QByteArray>> rows;
    for (const QByteArray &line : contents(file).split('\n')) {
        // Blanks repeat; simplified leaves one of each.
        const QByteArray plain = QByteArray(line).replace(',', ' ').simplified();
        if (!plain.isEmpty()) {
            rows.append(plain.split(' '));
        }
    }
    return numbers(rows);
}

signals::ConfoundsTable table(const std::string &file, char separator)
{
    QList<QList<QByteArray>> rows = cells(file, separator);
    signals::ConfoundsTable result;
    for (const QByteArray &name : rows.takeFirst()) {
        result.names.push_back(name.toStdString());
    }
    result.values = numbers(rows);
    return result;
}

QJsonObject object(const std::string &file)
{
    return QJsonDocument::fromJson(contents(file)).object();
}

signals::ConfoundsTable confounds(const std::string &stem)
{
    signals::ConfoundsTable result = table(stem + ".tsv", '\t');
    result.components.emplace();
    const QJsonObject all = object(stem + ".json");
    for (const QString &name : all.keys()) {
        const QJsonObject facts = all[name].toObject();
        result.components->push_back({name.toStdString(), facts["Method"].toString().toStdString(),
                                      facts["Mask"].toString().toStdString(),
                                      facts["Retained"].toBool()});
    }
    return result;
}

Eigen::MatrixXd image(const std::string &file)
{
    // Offsets of the NIfTI-1 header: dim 40, datatype 70, vox_offset 108, scl_slope 112.
    const QByteArray bytes = unpacked(file);
    if (bytes.size() < 352 || at<std::int32_t>(bytes, 0) != 348) {
        throw std::runtime_error("not a NIfTI image: " + file);
    }
    const auto dimension = [&](int axis) {
        return axis <= at<std::int16_t>(bytes, 40) ? at<std::int16_t>(bytes, 40 + 2 * axis) : 1;
    };
    const Eigen::Index voxels = Eigen::Index(dimension(1)) * dimension(2) * dimension(3);
    const Eigen::Index start = static_cast<Eigen::Index>(at<float>(bytes, 108));
    const std::int16_t type = at<std::int16_t>(bytes, 70);
    Eigen::MatrixXd result(dimension(4), voxels);
    for (Eigen::Index i = 0; i < result.size(); ++i) {
        const Eigen::Index volume = i / voxels;
        double &sample = result(volume, i % voxels);
        switch (type) {
        case 4:
            sample = at<std::int16_t>(bytes, start + 2 * i);
            break;
        case 16:
            sample = at<float>(bytes, start + 4 * i);
            break;
        default:
            throw std::runtime_error("type " + std::to_string(type) + " in " + file);
        }
    }
    return result;
}

} // namespace reference_data

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/nodalis/reference_data.h"

#include "tests/support/reference_folder.h"

#include <cstdlib>
#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace reference_data
{
namespace
{

QByteArray contents(const std::string &file)
{
    QFile opened(QString::fromStdString(folder() + "/" + file));
    if (!opened.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("cannot read " + file);
    }
    return opened.readAll();
}

float number(const QByteArray &text)
{
    char *end = nullptr;
    const float value = std::strtof(text.constData(), &end);
    if (text.isEmpty() || *end != '\0') {
        throw std::runtime_error("not a number: " + text.toStdString());
    }
    return value;
}

} // namespace

std::string folder()
{
    return std::string(referenceFolder()) + "/graphs";
}

std::vector<std::string> names_with(const std::string &ending)
{
    const QString suffix = QString::fromStdString(ending);
    std::vector<std::string> names;
    for (QString file : QDir(QString::fromStdString(folder())).entryList({"*" + suffix})) {
        file.chop(suffix.size());
        names.push_back(file.toStdString());
    }
    return names;
}

Eigen::MatrixXf matrix(const std::string &file)
{
    QList<QByteArray> lines = contents(file).split('\n');
    lines.removeAll(QByteArray());
    Eigen::MatrixXf result(lines.size(), lines.size());
    for (int row = 0; row < lines.size(); ++row) {
        const QList<QByteArray> cells = lines[row].split(',');
        if (cells.size() != lines.size()) {
            throw std::runtime_error("not square: " + file);
        }
        for (int column = 0; column < cells.size(); ++column) {
            result(row, column) = number(cells[column]);
        }
    }
    return result;
}

QJsonObject expected(const std::string &name)
{
    return QJsonDocument::fromJson(contents(name + ".expected.json")).object();
}

Eigen::ArrayXd values(const QJsonValue &list)
{
    const QJsonArray array = list.toArray();
    Eigen::ArrayXd result(array.size());
    for (int i = 0; i < array.size(); ++i) {
        result[i] = array[i].toDouble();
    }
    return result;
}

} // namespace reference_data

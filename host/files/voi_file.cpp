// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/voi_file.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/output_file.h"
#include "host/files/text_check.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <optional>
#include <set>

namespace corvane
{

namespace
{

const QString formatName = QStringLiteral("Corvane VOI");
const QString subjectKey = QStringLiteral("subject");
const QString spaceKey = QStringLiteral("spaceName");
constexpr int firstConvertedSpace = 3;

constexpr WholeRange colourRange{0, 255};

/// From reference space 3 on, 128 - coordinate is the VMR voxel.
WholeRange voxelRange(int referenceSpace)
{
    return referenceSpace < firstConvertedSpace ? WholeRange{0, 255} : WholeRange{-127, 128};
}

QString voiPlace(std::size_t index, const QString &name)
{
    return QStringLiteral("VOI %1 (%2)").arg(QString::number(index + 1), printable(name));
}

QString voxelPlace(const QString &voi, std::size_t voxel)
{
    return QStringLiteral("%1, voxel %2").arg(voi, QString::number(voxel + 1));
}

QString resolutionText()
{
    return QStringLiteral("millimetres above 0");
}

/// The value as it would stand in the file, cut short.
QString valueText(const QJsonValue &value)
{
    if (value.isUndefined())
        return QStringLiteral("nothing");
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return printable(list.mid(1, list.size() - 2), 40);
}

/// Where an offset is, with the column from 1.
QString placeOf(const QByteArray &bytes, int offset)
{
    const QByteArray before = bytes.left(offset);
    const int column = before.size() - before.lastIndexOf('\n');
    return QStringLiteral("line %1, column %2")
        .arg(QString::number(before.count('\n') + 1), QString::number(column));
}

/// What stands at a place of the file, up to the end of its line.
QString foundText(const QByteArray &bytes, int offset)
{
    const QByteArray rest = bytes.mid(std::max(0, offset - 1), 4096).trimmed();
    constexpr int longest = 24;
    const int lineEnd = rest.indexOf('\n');
    return rest.isEmpty() ? QStringLiteral("the end of the file")
                          : quoted(lineEnd < 0 ? rest : rest.left(lineEnd), longest);
}

/// Place and text of a key in a JSON text.
struct KeyFault {
    int offset;
    QString found;
    QString expected;
};

/// The first key that stands twice in its object, or is written with escapes, which would hide that
/// it does: Qt's parser takes the last of equal keys without a word (and loses memory over it).
std::optional<KeyFault> keyFault(const QByteArray &json)
{
    constexpr std::size_t deepest = 1024; // the parser refuses what is deeper
    std::vector<std::set<QByteArray>> openKeys;
    for (int at = 0; at < json.size() && openKeys.size() <= deepest; ++at) {
        const char c = json[at];
        if (c == '{' || c == '[')
            openKeys.emplace_back();
        else if ((c == '}' || c == ']') && !openKeys.empty())
            openKeys.pop_back();
        if (c != '"')
            continue;
        const int start = at + 1;
        for (++at; at < json.size() && json[at] != '"'; ++at)
            at += json[at] == '\\' ? 1 : 0;
        int next = at + 1;
        while (next < json.size() && std::isspace(static_cast<unsigned char>(json[next])))
            ++next;
        if (next >= json.size() || json[next] != ':' || openKeys.empty())
            continue;
        const QByteArray key = json.mid(start, at - start);
        if (key.contains('\\'))
            return KeyFault{start, QStringLiteral("the key ") + quoted(key),
                            QStringLiteral("a key without escapes")};
        if (!openKeys.back().insert(key).second)
            return KeyFault{start,
                            QStringLiteral("the key ") + quoted(key) + QStringLiteral(" again"),
                            QStringLiteral("it once")};
    }
    return std::nullopt;
}

/// Reads one file; every member throws with the place that it was given.
class VoiReader
{
public:
    explicit VoiReader(const QString &path) : m_path(path) {}

    VoiSet read() const
    {
        const QString top = QStringLiteral("top level");
        const QJsonObject object = parsed();
        const QJsonValue format = object[QStringLiteral("format")];
        if (format != QJsonValue(formatName))
            fail(QStringLiteral("format"), format, quoted(formatName));
        const QJsonValue version = object[QStringLiteral("version")];
        if (version != QJsonValue(1) && version != QJsonValue(2))
            fail(QStringLiteral("version"), version, QStringLiteral("1 or 2"));
        QStringList keys{QStringLiteral("format"), QStringLiteral("version"),
                         QStringLiteral("referenceSpace"), QStringLiteral("resolution"),
                         QStringLiteral("vois")};
        if (version == QJsonValue(2))
            keys += {subjectKey, spaceKey};
        requireKeys(object, top, keys);

        VoiSet set;
        if (version == QJsonValue(2))
            set.provenance = {label(object[subjectKey], subjectKey),
                              label(object[spaceKey], spaceKey)};
        set.referenceSpace = number(object[QStringLiteral("referenceSpace")],
                                    QStringLiteral("referenceSpace"), WholeRange{0, largestCount});
        readResolution(object[QStringLiteral("resolution")], set);
        const QJsonArray vois = array(object[QStringLiteral("vois")], QStringLiteral("vois"));
        set.vois.reserve(static_cast<std::size_t>(vois.size()));
        for (const QJsonValue &voi : vois)
            set.vois.push_back(readVoi(voi, set.vois.size(), voxelRange(set.referenceSpace)));
        return set;
    }

private:
    [[noreturn]] void fail(const QString &place, const QJsonValue &found,
                           const QString &expected) const
    {
        throw InputError(m_path, place, valueText(found), expected);
    }

    QJsonObject parsed() const
    {
        const InputFile file(m_path);
        if (file.size() == 0)
            throw InputError(m_path, QStringLiteral("content"), QStringLiteral("an empty file"),
                             QStringLiteral("JSON"));
        const QByteArray bytes = file.all(largestText);
        if (const auto fault = keyFault(bytes))
            throw InputError(m_path, placeOf(bytes, fault->offset), fault->found, fault->expected);
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
        if (error.error != QJsonParseError::NoError)
            failParsing(bytes, error);
        if (!document.isObject())
            throw InputError(m_path, QStringLiteral("top level"), QStringLiteral("a JSON array"),
                             QStringLiteral("a JSON object"));
        return document.object();
    }

    [[noreturn]] void failParsing(const QByteArray &bytes, const QJsonParseError &error) const
    {
        throw InputError(m_path, placeOf(bytes, error.offset), foundText(bytes, error.offset),
                         error.error == QJsonParseError::IllegalUTF8String
                             ? QStringLiteral("UTF-8")
                             : QStringLiteral("JSON (%1)").arg(error.errorString()));
    }

    void requireKeys(const QJsonObject &object, const QString &place, const QStringList &keys) const
    {
        for (const QString &key : object.keys()) {
            if (!keys.contains(key))
                throw InputError(m_path, place, QStringLiteral("the key ") + quoted(key),
                                 QStringLiteral("only ") + keys.join(QStringLiteral(", ")));
        }
        for (const QString &key : keys) {
            if (!object.contains(key))
                throw InputError(m_path, place, QStringLiteral("no key ") + quoted(key),
                                 QStringLiteral("all of ") + keys.join(QStringLiteral(", ")));
        }
    }

    int number(const QJsonValue &value, const QString &place, WholeRange range) const
    {
        const double found = value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (!range.holds(found))
            fail(place, value, range.text());
        return static_cast<int>(found);
    }

    QString label(const QJsonValue &value, const QString &place) const
    {
        if (!value.isString())
            fail(place, value, QStringLiteral("a text"));
        return value.toString();
    }

    QJsonArray array(const QJsonValue &value, const QString &place) const
    {
        if (!value.isArray())
            fail(place, value, QStringLiteral("a list"));
        return value.toArray();
    }

    QJsonArray triple(const QJsonValue &value, const QString &place) const
    {
        QJsonArray list = array(value, place);
        if (list.size() != 3)
            throw InputError(m_path, place, QStringLiteral("%1 values").arg(list.size()),
                             QStringLiteral("3"));
        return list;
    }

    void readResolution(const QJsonValue &value, VoiSet &set) const
    {
        const QString place = QStringLiteral("resolution");
        const QJsonArray list = triple(value, place);
        for (int axis = 0; axis < 3; ++axis) {
            set.resolution[axis] = list[axis].toDouble();
            if (set.resolution[axis] <= 0 || !std::isfinite(set.resolution[axis]))
                fail(place, list[axis], resolutionText());
        }
    }

    Voi readVoi(const QJsonValue &value, std::size_t index, WholeRange range) const
    {
        if (!value.isObject())
            fail(voiPlace(index, QString()), value, QStringLiteral("a JSON object"));
        const QJsonObject object = value.toObject();
        Voi voi;
        voi.name = object[QStringLiteral("name")].toString();
        const QString place = voiPlace(index, voi.name);
        requireKeys(object, place,
                    {QStringLiteral("name"), QStringLiteral("color"), QStringLiteral("voxels")});
        if (!object[QStringLiteral("name")].isString())
            fail(place, object[QStringLiteral("name")], QStringLiteral("a name"));

        const QString colourPlace = place + QStringLiteral(", color");
        const QJsonArray colour = triple(object[QStringLiteral("color")], colourPlace);
        voi.r = number(colour[0], colourPlace, colourRange);
        voi.g = number(colour[1], colourPlace, colourRange);
        voi.b = number(colour[2], colourPlace, colourRange);
        readVoxels(object[QStringLiteral("voxels")], place, range, voi);
        return voi;
    }

    void readVoxels(const QJsonValue &value, const QString &place, WholeRange range, Voi &voi) const
    {
        const QString voxelsPlace = place + QStringLiteral(", voxels");
        const QJsonArray numbers = array(value, voxelsPlace);
        if (numbers.size() % 3 != 0)
            throw InputError(m_path, voxelsPlace, QStringLiteral("%1 numbers").arg(numbers.size()),
                             QStringLiteral("a multiple of 3"));
        voi.voxels.resize(static_cast<std::size_t>(numbers.size()) / 3);
        for (std::size_t v = 0; v < voi.voxels.size(); ++v) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const QJsonValue coordinate = numbers[static_cast<int>(3 * v + axis)];
                const double found = coordinate.toDouble(std::numeric_limits<double>::quiet_NaN());
                if (!range.holds(found))
                    fail(voxelPlace(place, v), coordinate, range.text());
                voi.voxels[v][axis] = static_cast<int>(found);
            }
        }
    }

    QString m_path;
};

/// The rules of the format that need no look at the text of a file.
void checkVoiSet(const QString &path, const VoiSet &set)
{
    for (const auto &[place, text] :
         {std::pair{subjectKey, set.provenance.subject}, std::pair{spaceKey, set.provenance.space}})
        if (const auto fault = provenanceFault(text))
            throw InputError(path, place, *fault, provenanceRule());
    if (set.referenceSpace < 0)
        throw InputError(path, QStringLiteral("referenceSpace"),
                         QString::number(set.referenceSpace), QStringLiteral("0 or more"));
    for (double size : set.resolution) {
        if (!std::isfinite(size) || size <= 0)
            throw InputError(path, QStringLiteral("resolution"), QString::number(size),
                             resolutionText());
    }
    const WholeRange range = voxelRange(set.referenceSpace);
    for (std::size_t index = 0; index < set.vois.size(); ++index) {
        const Voi &voi = set.vois[index];
        const QString place = voiPlace(index, voi.name);
        if (voi.name.isEmpty())
            throw InputError(path, place, QStringLiteral("an empty name"),
                             QStringLiteral("a name"));
        if (const auto fault = nameFault(voi.name))
            throw InputError(path, place, *fault, QStringLiteral("a name without it"));
        for (int value : {voi.r, voi.g, voi.b}) {
            if (!colourRange.holds(value))
                throw InputError(path, place + QStringLiteral(", color"), QString::number(value),
                                 colourRange.text());
        }
        for (std::size_t v = 0; v < voi.voxels.size(); ++v) {
            for (int coordinate : voi.voxels[v]) {
                if (!range.holds(coordinate))
                    throw InputError(path, voxelPlace(place, v), QString::number(coordinate),
                                     range.text());
            }
        }
    }
}

QByteArray jsonText(const QString &text)
{
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

QByteArray jsonList(std::initializer_list<QByteArray> values)
{
    return '[' + QByteArrayList(values).join(", ") + ']';
}

/// One voxel a line.
QByteArray voxelText(const std::vector<std::array<int, 3>> &voxels)
{
    constexpr std::size_t lineLength = 32;
    QByteArray text;
    text.reserve(static_cast<int>(
        std::min(lineLength * voxels.size(), static_cast<std::size_t>(largestText))));
    for (const auto &voxel : voxels) {
        text += text.isEmpty() ? "\n                " : ",\n                ";
        text += QByteArray::number(voxel[0]);
        text += ", ";
        text += QByteArray::number(voxel[1]);
        text += ", ";
        text += QByteArray::number(voxel[2]);
    }
    return text.isEmpty() ? "[]" : '[' + text + "\n            ]";
}

QByteArray voiText(const Voi &voi)
{
    return "        {\n            \"name\": " + jsonText(voi.name) + ",\n            \"color\": " +
           jsonList(
               {QByteArray::number(voi.r), QByteArray::number(voi.g), QByteArray::number(voi.b)}) +
           ",\n            \"voxels\": " + voxelText(voi.voxels) + "\n        }";
}

} // namespace

VoiSet readVoiFile(const QString &path)
{
    VoiSet set = VoiReader(path).read();
    checkVoiSet(path, set);
    return set;
}

void writeVoiFile(const QString &path, const VoiSet &set)
{
    checkVoiSet(path, set);
    OutputFile file(path);
    file.write("{\n    \"format\": " + jsonText(formatName) + ",\n    \"version\": 2" +
               ",\n    \"subject\": " + jsonText(set.provenance.subject) +
               ",\n    \"spaceName\": " + jsonText(set.provenance.space) +
               ",\n    \"referenceSpace\": " + QByteArray::number(set.referenceSpace) +
               ",\n    \"resolution\": " +
               jsonList({shortestDecimal(set.resolution[0]), shortestDecimal(set.resolution[1]),
                         shortestDecimal(set.resolution[2])}) +
               ",\n    \"vois\": [");
    const char *separator = "\n";
    for (const Voi &voi : set.vois) {
        file.write(separator + voiText(voi));
        separator = ",\n";
    }
    file.write("\n    ]\n}\n");
    file.commit();
}

} // namespace corvane

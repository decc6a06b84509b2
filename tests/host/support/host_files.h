// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/files/output_record.h"
#include "host/files/prt_file.h"
#include "host/files/vmr_file.h"
#include "host/files/voi_file.h"
#include "host/files/vtc_checksum.h"
#include "host/files/vtc_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

/// @file
/// Small files of every format for the tests of the host, and a folder to keep them in.

namespace corvane
{

/// What is in a folder, hidden entries too, but for the record of what commands have written there,
/// which has tests of its own.
inline QStringList namesIn(const QString &folder)
{
    QStringList names = QDir(folder).entryList(
        QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    names.removeAll(QLatin1String(outputRecordName));
    return names;
}

class TemporaryFolder
{
public:
    TemporaryFolder() { EXPECT_TRUE(m_folder.isValid()); }

    QString path() const { return m_folder.path(); }
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString path(const char *name) const { return path(QString::fromUtf8(name)); }
    QStringList entries() const { return namesIn(path()); }

private:
    QTemporaryDir m_folder;
};

inline void putBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// What an action says when it refuses its input; "no error" when it does not.
template <typename Action>
std::string errorOf(Action action)
{
    try {
        action();
    } catch (const InputError &error) {
        return error.what();
    }
    return "no error";
}

/// The bytes with one piece of text replaced, which must be there.
inline QByteArray replaced(QByteArray bytes, const QByteArray &piece, const QByteArray &by)
{
    const int at = bytes.indexOf(piece);
    EXPECT_GE(at, 0) << piece.constData();
    return bytes.replace(at, piece.size(), by);
}

// ---- .vmr

inline Vmr zeroVmr(Vmr::SampleType type = Vmr::UChar)
{
    Vmr vmr;
    vmr.type = type;
    const auto bytes =
        std::make_shared<std::vector<uchar>>(static_cast<std::size_t>(vmr.byteCount()));
    vmr.voxels = std::shared_ptr<const void>(bytes, bytes->data());
    return vmr;
}

// ---- .vtc: 4 volumes of 3 x 2 x 2 samples, each told apart by its place

inline VtcInfo smallVtcInfo(VtcInfo::SampleType type = VtcInfo::Short)
{
    VtcInfo info;
    info.xStart = 57;
    info.yStart = 52;
    info.zStart = 59;
    info.resolution = 3;
    info.xEnd = 57 + 3 * 3;
    info.yEnd = 52 + 3 * 2;
    info.zEnd = 59 + 3 * 2;
    info.nrOfVolumes = 4;
    info.type = type;
    info.repetitionTime = 0.72;
    return info;
}

/// Distinct for every sample, negative and positive: the place in the file less 20.
template <typename Sample>
std::vector<Sample> numberedSamples(const VtcInfo &info)
{
    std::vector<Sample> samples(static_cast<std::size_t>(info.sampleCount()));
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = static_cast<Sample>(static_cast<int>(n) - 20);
    return samples;
}

template <typename Sample>
QByteArray vtcBytes(VtcInfo info, const std::vector<Sample> &samples)
{
    VtcChecksum checksum;
    checksum.add(samples.data(), static_cast<qint64>(samples.size()), 0);
    info.checksum = checksum.text();
    return vtcFileHeader(info) + QByteArray(reinterpret_cast<const char *>(samples.data()),
                                            static_cast<int>(samples.size() * sizeof(Sample)));
}

inline QByteArray smallVtcBytes(const QString &linkedProtocol = QString())
{
    VtcInfo info = smallVtcInfo();
    info.linkedProtocol = linkedProtocol;
    return vtcBytes(info, numberedSamples<short>(info));
}

/// 60 volumes of 2 s around the middle of the cube, whose courses differ from voxel to voxel.
inline QByteArray middleVtcBytes()
{
    VtcInfo info = smallVtcInfo();
    info.xStart = info.yStart = info.zStart = 125;
    info.xEnd = info.yEnd = info.zEnd = 134;
    info.nrOfVolumes = 60;
    info.repetitionTime = 2;
    std::vector<short> samples(static_cast<std::size_t>(info.sampleCount()));
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = static_cast<short>(900 + n * 7919 % 53);
    return vtcBytes(info, samples);
}

// ---- .voi and .prt

/// Two conditions that take turns in 60 volumes.
inline Prt turnsPrt()
{
    Prt prt;
    prt.conditions = {{QStringLiteral("rest"), {{1, 15}, {31, 45}}},
                      {QStringLiteral("movement"), {{16, 30}, {46, 60}}}};
    return prt;
}

inline VoiSet smallVoiSet()
{
    VoiSet set;
    set.vois = {{QStringLiteral("left hippocampus"), 255, 0, 0, {{{57, 52, 59}}, {{63, 55, 62}}}},
                {QString::fromUtf8("größte Windung \"M1\""), 1, 2, 3, {{{0, 255, 128}}}},
                {QStringLiteral("empty"), 0, 0, 0, {}}};
    return set;
}

inline Prt smallPrt()
{
    Prt prt;
    prt.name = QString::fromUtf8("Blöcke");
    prt.conditions = {{QStringLiteral("rest"), {{1, 2}, {4, 4}}},
                      {QStringLiteral("# task"), {{3, 3}}},
                      {QStringLiteral("never"), {}}};
    return prt;
}

inline bool operator==(const Voi &a, const Voi &b)
{
    return a.name == b.name && a.r == b.r && a.g == b.g && a.b == b.b && a.voxels == b.voxels;
}

inline bool operator==(const Provenance &a, const Provenance &b)
{
    return a.subject == b.subject && a.space == b.space;
}

inline bool operator==(const VoiSet &a, const VoiSet &b)
{
    return a.provenance == b.provenance && a.referenceSpace == b.referenceSpace &&
           std::equal(a.resolution, a.resolution + 3, b.resolution) && a.vois == b.vois;
}

inline bool operator==(const PrtCondition &a, const PrtCondition &b)
{
    return a.name == b.name && a.intervals == b.intervals;
}

inline bool operator==(const Prt &a, const Prt &b)
{
    return a.name == b.name && a.provenance == b.provenance && a.timeUnit == b.timeUnit &&
           a.conditions == b.conditions;
}

/// A file that its reader must refuse, and what it must say behind the file's path.
struct BadFile {
    const char *name;
    QByteArray bytes;
    std::string says;
};

inline void PrintTo(const BadFile &file, std::ostream *stream)
{
    *stream << file.name;
}

inline std::string nameOf(const testing::TestParamInfo<BadFile> &info)
{
    return info.param.name;
}

} // namespace corvane

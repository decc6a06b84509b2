// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/cleaning_ledger.h"
#include "host/files/provenance.h"
#include "host/files/uncleaned_run.h"

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>

/// @file
/// Volume time courses: `.vtc`, functional samples on a lattice of whole VMR voxels. The file is a
/// NRRD with attached header and raw little-endian data; docs/file-formats.md has it exactly.

namespace corvane
{

class MappedFile;

/// What a `.vtc` holds. Sample i of an axis stands at VMR coordinate start + resolution * i.
struct VtcInfo {
    enum SampleType { Short, Float };

    int xStart = 0; ///< 0 to 255
    int xEnd =
        0; ///< start + resolution * number of samples; the last sample stands at or below 255
    int yStart = 0;
    int yEnd = 0;
    int zStart = 0;
    int zEnd = 0;
    int resolution = 1;  ///< VMR voxels (mm) per sample, 1 or more
    int nrOfVolumes = 0; ///< 1 or more
    SampleType type = Short;
    double repetitionTime = 0; ///< seconds, above 0

    /// Path of the protocol of this run, empty without one. VtcFile gives it resolved against the
    /// folder of the `.vtc`; vtcFileHeader writes it as it stands (see linkedProtocolText).
    QString linkedProtocol;

    Provenance provenance;
    std::optional<CleaningLedger> cleaning; ///< unset: as it was imported
    /// Of a cleaned file, unless it says nothing of the run. Its path is given and taken as
    /// `linkedProtocol` is.
    std::optional<UncleanedRun> uncleaned;

    /// Checksum of the samples, 16 lower-case hexadecimal digits (host/files/vtc_checksum.h).
    QString checksum;

    int dimX() const { return (xEnd - xStart) / resolution; }
    int dimY() const { return (yEnd - yStart) / resolution; }
    int dimZ() const { return (zEnd - zStart) / resolution; }
    int sampleSize() const { return type == Short ? 2 : 4; }
    /// Samples in the file: nrOfVolumes * dimX * dimY * dimZ.
    qint64 sampleCount() const { return qint64(nrOfVolumes) * dimX() * dimY() * dimZ(); }
};

/// The finished header of a `.vtc`; the samples follow it at once. Its length is a multiple of 64
/// and does not depend on the checksum: a writer that knows it only at the end first writes the
/// header with an empty one (16 zeros stand for it) and then again over it with the real one.
/// Throws InputError when the information breaks one of the rules above.
QByteArray vtcFileHeader(const VtcInfo &info);

/// The text under which a protocol is stored in a `.vtc`: relative to the folder of the `.vtc` when
/// it lies in or below that folder, else absolute.
QString linkedProtocolText(const QString &vtcPath, const QString &protocolPath);

/// A `.vtc` open for reading. It is mapped: samples that nobody looks at are never read. Copies
/// share the mapping, which lasts as long as one of them.
class VtcFile
{
public:
    /// Checks the header against the rules and the length of the file. Throws InputError.
    explicit VtcFile(const QString &path);

    QString path() const;
    const VtcInfo &info() const { return m_info; }

    /// All samples, time fastest: volume t of lattice point (i, j, k) is at
    /// t + nrOfVolumes * (i + dimX * (j + dimY * k)). Null when the file holds the other type.
    const short *shortSamples() const;
    const float *floatSamples() const;

    /// Another program may shorten the file while it is open; samples that are gone read as 0.
    /// Whether all that were read so far were there.
    bool isIntact() const;
    /// Throws InputError unless they were.
    void requireIntact() const;

private:
    std::shared_ptr<const MappedFile> m_file;
    VtcInfo m_info;
    const uchar *m_samples = nullptr;
};

/// Whether the samples are those for which the checksum in the header was taken. Reads them all.
/// Throws InputError when they are not all there any more.
bool verifyVtcChecksum(const VtcFile &file);

} // namespace corvane

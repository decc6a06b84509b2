// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/workspace.h"

#include "host/files/file_kind.h"
#include "host/files/input_error.h"
#include "host/files/mapped_file.h"
#include "host/session/log.h"

#include <QFileInfo>

#include <utility>

namespace corvane
{

namespace
{

Vmr openAnatomy(const QString &path, const AnatomyOpener &opener)
{
    if (fileKind(path) == FileKind::Vmr)
        return readVmr(path);
    if (opener)
        return opener(path);
    throw InputError(path, QStringLiteral("opening"),
                     QStringLiteral("a file that does not end in \".vmr\""),
                     QStringLiteral("a .vmr (this program was built without other formats)"));
}

} // namespace

Workspace::Workspace(AnatomyOpener openAnatomy) : m_openAnatomy(std::move(openAnatomy)) {}

int Workspace::openVmr(const QString &path)
{
    const Notice notice{this};
    const QString absolute = QFileInfo(path).absoluteFilePath();
    Document document{VmrDocument, absolute, openAnatomy(path, m_openAnatomy), vmrHeader(absolute)};
    m_documents.push_back(std::move(document));
    m_current = documentCount() - 1;
    return m_current;
}

void Workspace::closeDocument(int position)
{
    if (!exists(position))
        return;
    const Notice notice{this};
    m_documents[static_cast<std::size_t>(position)] = Document();
    if (m_vtcDocument == position)
        forgetVtc();
    if (m_current == position)
        m_current = -1;
}

QStringList Workspace::closeShortened()
{
    QStringList said;
    const auto isShortened = [&](const auto &file) {
        if (file.isIntact())
            return false;
        try {
            file.requireIntact();
        } catch (const InputError &error) {
            said += QStringLiteral("%1. It is no longer open. What was shown or computed of it may "
                                   "be wrong.")
                        .arg(QString::fromUtf8(error.what()));
        }
        return true;
    };
    if (m_vtc && isShortened(m_vtc->file)) {
        const Notice notice{this};
        forgetVtc();
    }
    for (int position = 0; position < documentCount(); ++position) {
        const auto file = m_documents[static_cast<std::size_t>(position)].vmr.file;
        if (file && isShortened(*file))
            closeDocument(position);
    }
    return said;
}

DocumentType Workspace::documentType(int position) const
{
    return exists(position) ? m_documents[static_cast<std::size_t>(position)].type : ClosedDocument;
}

QString Workspace::documentPath(int position) const
{
    return exists(position) ? m_documents[static_cast<std::size_t>(position)].path : QString();
}

void Workspace::setCurrentDocument(int position)
{
    const Notice notice{this};
    m_current = exists(position) ? position : -1;
}

const Workspace::Document *Workspace::currentVmrDocument() const
{
    return documentType(m_current) == VmrDocument
               ? &m_documents[static_cast<std::size_t>(m_current)]
               : nullptr;
}

const Vmr *Workspace::currentVmr() const
{
    const Document *document = currentVmrDocument();
    return document != nullptr ? &document->vmr : nullptr;
}

const VMRHeader *Workspace::currentVmrHeader() const
{
    const Document *document = currentVmrDocument();
    return document != nullptr ? &document->header : nullptr;
}

void Workspace::forgetVtc()
{
    m_vtc.reset();
    m_vtcDocument = -1;
}

void Workspace::unlinkVtc()
{
    const Notice notice{this};
    m_protocol.reset();
    forgetVtc();
}

void Workspace::linkVtc(const QString &path)
{
    const Notice notice{this};
    m_protocol.reset();
    forgetVtc();
    if (currentVmr() == nullptr)
        throw InputError(path, QStringLiteral("linking"), QStringLiteral("no current VMR"),
                         QStringLiteral("an open VMR that is the current document"));
    m_vtc.emplace(VtcFile(path));
    m_vtcDocument = m_current;

    const QString protocolPath = m_vtc->file.info().linkedProtocol;
    if (protocolPath.isEmpty())
        return;
    try {
        loadProtocol(protocolPath);
    } catch (const InputError &error) {
        logText(QStringLiteral("The protocol that %1 names is not loaded. %2")
                    .arg(path, QString::fromUtf8(error.what())));
    }
}

const LinkedVtc *Workspace::linkedVtc() const
{
    return m_vtc && m_vtcDocument == m_current ? &*m_vtc : nullptr;
}

void Workspace::loadVois(const QString &path)
{
    const Notice notice{this};
    m_vois.reset();
    ++m_voiLoads;
    m_vois.emplace(readVoiFile(path));
    m_voiPath = QFileInfo(path).absoluteFilePath();
}

void Workspace::unloadVois()
{
    const Notice notice{this};
    m_vois.reset();
    ++m_voiLoads;
}

void Workspace::loadProtocol(const QString &path)
{
    const Notice notice{this};
    m_protocol.reset();
    m_protocol.emplace(readPrtFile(path));
    m_protocolPath = QFileInfo(path).absoluteFilePath();
}

std::vector<ProvenanceMismatch> Workspace::mismatches() const
{
    std::vector<FileProvenance> files;
    if (const Vmr *const vmr = currentVmr())
        files.push_back({documentPath(m_current), vmr->provenance});
    if (const LinkedVtc *const vtc = linkedVtc())
        files.push_back({vtc->file.path(), vtc->file.info().provenance});
    if (m_vois)
        files.push_back({m_voiPath, m_vois->set.provenance});
    return corvane::mismatches(files);
}

} // namespace corvane

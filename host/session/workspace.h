// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/vmr_file.h"
#include "host/session/loaded_records.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace corvane
{

/// Kinds of documents, with the numbers that plugins see.
enum DocumentType { ClosedDocument = 0, VmrDocument = 3 };

/// Opens an anatomy that is no `.vmr` and brings it onto the cube. Throws InputError.
using AnatomyOpener = std::function<Vmr(const QString &path)>;

/// What is open in a session: its documents by position from 0, one of them current, one linked
/// VTC, one loaded VOI set and one loaded protocol. A load replaces what was loaded before; one
/// that fails leaves nothing loaded, so that no data are taken for those of another file.
/// Everything handed out stays valid until the next load of its kind.
class Workspace : public QObject
{
    Q_OBJECT

public:
    explicit Workspace(AnatomyOpener openAnatomy = {});

    /// Opens an anatomy as a new document, makes it current and returns its position.
    /// Throws InputError.
    int openVmr(const QString &path);

    /// Closes a document. Its position stays and becomes a ClosedDocument, so that no other
    /// document changes its number. A VTC linked to it is unlinked.
    void closeDocument(int position);

    /// Closes the documents and unlinks the VTC whose files another program has shortened, so that
    /// nothing more is read of what is gone. Says of each what happened, in one line.
    QStringList closeShortened();

    int documentCount() const { return static_cast<int>(m_documents.size()); }
    /// ClosedDocument also for a position that never was.
    DocumentType documentType(int position) const;
    QString documentPath(int position) const;

    /// Position of the current document, -1 without one.
    int currentDocument() const { return m_current; }
    /// A position that never was leaves no document current.
    void setCurrentDocument(int position);

    /// The current document as a VMR, null when it is none.
    const Vmr *currentVmr() const;
    const VMRHeader *currentVmrHeader() const;

    /// Links a VTC to the current VMR: clears the loaded protocol, then loads the one that the VTC
    /// names; one that cannot be read is said in the log. Throws InputError.
    void linkVtc(const QString &path);
    /// The VTC that is linked to the current VMR, null without one.
    const LinkedVtc *linkedVtc() const;
    void unlinkVtc();

    void loadVois(const QString &path); ///< Throws InputError.
    void unloadVois();
    const LoadedVois *vois() const { return m_vois ? &*m_vois : nullptr; }
    QString voiPath() const { return m_vois ? m_voiPath : QString(); }
    /// How often VOIs were loaded, or failed to load, so far: whether vois() is what it was.
    int voiLoads() const { return m_voiLoads; }

    void loadProtocol(const QString &path); ///< Throws InputError.
    const LoadedProtocol *protocol() const { return m_protocol ? &*m_protocol : nullptr; }
    QString protocolPath() const { return m_protocol ? m_protocolPath : QString(); }

    /// What the current anatomy, its run and the VOIs say against each other.
    std::vector<ProvenanceMismatch> mismatches() const;

Q_SIGNALS:
    /// After everything that may have changed what the workspace holds, also after a load that
    /// failed. Who listens may not throw.
    void changed();

private:
    struct Document {
        DocumentType type = ClosedDocument;
        QString path;
        Vmr vmr;
        VMRHeader header;
    };

    /// Tells of the change at the end of the member that it stands in.
    struct Notice {
        Workspace *workspace;
        ~Notice() { Q_EMIT workspace->changed(); }
    };

    const Document *currentVmrDocument() const;
    void forgetVtc();
    bool exists(int position) const { return position >= 0 && position < documentCount(); }

    AnatomyOpener m_openAnatomy;
    std::vector<Document> m_documents;
    int m_current = -1;
    std::optional<LinkedVtc> m_vtc;
    int m_vtcDocument = -1; ///< position of the VMR that m_vtc is linked to
    std::optional<LoadedVois> m_vois;
    QString m_voiPath;
    int m_voiLoads = 0;
    std::optional<LoadedProtocol> m_protocol;
    QString m_protocolPath;
};

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/guided_tour.h"
#include "tests/host/module/module_session.h"

#include <memory>

/// @file
/// The windows that the events begin with.

namespace monkey
{

/// What there is to work with, below one folder. All but the subject may be missing.
struct Files {
    explicit Files(const QString &folder);

    QString vmr, vtc, voi; ///< subject/
    QStringList toImport;  ///< import/*: an anatomy, a run, an atlas, their tables
    QString dataset;       ///< dataset/: what a pipeline leaves
    QString study;         ///< study/: its matrices
    QString result;        ///< result/, or a subject of the study

    /// All that a user might choose or drop.
    QStringList all() const;
};

constexpr int stageKinds = 8;

/// The workbench with the plugin's module, and one more thing: a computed subject with its results
/// and plots (0 and 1), the import (2), the list of runs (3), the study (4), a connectome (5), the
/// tour (6), the connections of what is open (7). What is not there for want of files is left away.
/// The subject and the study are copies, so that what stands beside them can be written.
class Stage : public corvane::ModuleSession
{
public:
    Stage(const Files &files, int kind);
    void TestBody() override {}

    const corvane::Session &listenedSession() const { return session; }
    bool isOver() const { return workbench == nullptr || !workbench->isVisible(); }

private:
    void analyse(const Files &files, bool useProtocol);
    void showLater(std::function<void()> action);
    QString copied(const QString &path) const;
    void choose(const char *entry);

    std::unique_ptr<corvane::GuidedTour> m_tour;
};

} // namespace monkey

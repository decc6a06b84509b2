// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/session.h"

#include "host/session/log.h"

#include <QMetaMethod>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace corvane
{

namespace
{

/// Those that live, the youngest last.
std::vector<Session *> &sessions()
{
    static std::vector<Session *> all;
    return all;
}

void printLine(const QString &text)
{
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

} // namespace

Session::Session(AnatomyOpener openAnatomy) : m_workspace(std::move(openAnatomy))
{
    sessions().push_back(this);
}

Session::~Session()
{
    std::vector<Session *> &all = sessions();
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
}

Session *Session::current()
{
    return sessions().empty() ? nullptr : sessions().back();
}

void Session::log(const QString &text)
{
    if (isSignalConnected(QMetaMethod::fromSignal(&Session::logged)))
        Q_EMIT logged(text);
    else
        printLine(text);
}

void Session::showMessage(const QString &text)
{
    log(text);
    Q_EMIT messageShown(text);
}

Workspace &workspace()
{
    static Workspace none;
    return Session::current() != nullptr ? Session::current()->workspace() : none;
}

// ---- log.h

void logText(const QString &text)
{
    if (Session::current() != nullptr)
        Session::current()->log(text);
    else
        printLine(text);
}

void showMessage(const QString &text)
{
    if (Session::current() != nullptr)
        Session::current()->showMessage(text);
    else
        printLine(text);
}

} // namespace corvane

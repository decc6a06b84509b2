// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/session.h"

#include <string>
#include <vector>

namespace corvane
{

/// The current session of a test, and what it says. Messages stand in the log, too.
struct ListenedSession {
    Session session;
    std::vector<std::string> log;
    std::vector<std::string> messages;

    explicit ListenedSession(AnatomyOpener openAnatomy = {}) : session(std::move(openAnatomy))
    {
        QObject::connect(&session, &Session::logged,
                         [this](const QString &text) { log.push_back(text.toStdString()); });
        QObject::connect(&session, &Session::messageShown,
                         [this](const QString &text) { messages.push_back(text.toStdString()); });
    }
};

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/session/log.h"

#include <cstdio>
#include <utility>

namespace corvane
{

namespace
{

struct Sinks {
    TextSink log;
    TextSink message;
    std::function<void()> logPane;
};

Sinks &sinks()
{
    static Sinks theSinks;
    return theSinks;
}

} // namespace

void logText(const QString &text)
{
    if (sinks().log) {
        sinks().log(text);
        return;
    }
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

TextSink setLogSink(TextSink sink)
{
    return std::exchange(sinks().log, std::move(sink));
}

void showMessage(const QString &text)
{
    if (sinks().message)
        sinks().message(text);
    else
        logText(text);
}

TextSink setMessageSink(TextSink sink)
{
    return std::exchange(sinks().message, std::move(sink));
}

void showLogPane()
{
    if (sinks().logPane)
        sinks().logPane();
}

std::function<void()> setLogPaneAction(std::function<void()> action)
{
    return std::exchange(sinks().logPane, std::move(action));
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "dataset/message_handler.h"

#include <QFile>
#include <QTextStream>

QString &logFilePath = *new QString;

namespace
{

QString logLine(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QString local = QString::fromLocal8Bit(text.toLocal8Bit());
    const auto filled = [&](const QString &line) {
        return line.arg(local, QString::fromUtf8(context.file), QString::number(context.line),
                        QString::fromUtf8(context.function));
    };
    switch (type) {
    case QtDebugMsg:
        return filled(QStringLiteral("%1 \t\t\t (%2:%3, %4)"));
    case QtInfoMsg:
        return filled(QStringLiteral("Info: %1 (%2:%3, %4)"));
    default:
        return {};
    }
}

} // namespace

void writeMessageToLogFile(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    QFile file(logFilePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    QTextStream stream(&file);
    stream << logLine(type, context, text) << Qt::endl;
}

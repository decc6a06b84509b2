// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLineEdit;
class QToolButton;

namespace corvane
{

class MessageLine;

/// A path that is typed, chosen in a dialog or dropped.
class FileField : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(QString hint READ hint WRITE setHint)
    Q_PROPERTY(QString filter MEMBER m_filter WRITE setFilter)
    Q_PROPERTY(bool folder MEMBER m_isFolder)

public:
    explicit FileField(QWidget *parent = nullptr);

    /// What the path is, for the title of the dialog and for screen readers.
    QString name() const { return m_name; }
    void setName(const QString &name);

    /// What the field takes; it stands there while the field is empty.
    QString hint() const;
    void setHint(const QString &hint);

    /// Which files the dialog shows.
    void setFilter(const QString &filter) { m_filter = filter; }

    QString path() const;
    void setPath(const QString &path);

    /// What is told of the path below it, a fault in a colour of its own; empty for nothing.
    QString message() const;
    bool hasFault() const { return m_hasFault; }
    void setMessage(const QString &text, bool isFault);

Q_SIGNALS:
    void changed();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void choose();

    QString m_name;
    QString m_filter;
    bool m_isFolder = false;
    bool m_hasFault = false;
    QLineEdit *m_path;
    QToolButton *m_choose;
    MessageLine *m_message;
};

} // namespace corvane

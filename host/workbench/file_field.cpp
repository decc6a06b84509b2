// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/file_field.h"

#include "host/workbench/dropped_files.h"
#include "host/workbench/message_line.h"
#include "host/workbench/user_folder.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QLineEdit>
#include <QToolButton>

namespace corvane
{

FileField::FileField(QWidget *parent)
    : QWidget(parent), m_path(new QLineEdit(this)), m_choose(new QToolButton(this)),
      m_message(new MessageLine(this))
{
    auto *const layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setVerticalSpacing(0);
    layout->addWidget(m_path, 0, 0);
    layout->addWidget(m_choose, 0, 1);
    layout->addWidget(m_message, 1, 0, 1, 2);
    // A label's mnemonic reaches only what takes the focus.
    setFocusPolicy(Qt::StrongFocus);
    m_choose->setText(QStringLiteral("..."));
    m_choose->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(m_path);
    // The line would take a dropped file as text, with what stands before its path.
    m_path->setAcceptDrops(false);
    setAcceptDrops(true);
    connect(m_path, &QLineEdit::textChanged, this, &FileField::changed);
    connect(m_choose, &QToolButton::clicked, this, &FileField::choose);
}

void FileField::setName(const QString &name)
{
    m_name = name;
    m_path->setAccessibleName(name);
    m_choose->setAccessibleName(tr("Choose: %1").arg(name));
    m_choose->setToolTip(tr("Choose a file or folder"));
}

QString FileField::hint() const
{
    return m_path->placeholderText();
}

void FileField::setHint(const QString &hint)
{
    m_path->setPlaceholderText(hint);
    m_path->setToolTip(hint);
}

QString FileField::path() const
{
    return m_path->text().trimmed();
}

void FileField::setPath(const QString &path)
{
    m_path->setText(path);
}

QString FileField::message() const
{
    return m_message->text();
}

void FileField::setMessage(const QString &text, bool isFault)
{
    m_hasFault = isFault;
    m_message->show(text, isFault);
    m_path->setAccessibleDescription(text);
}

void FileField::dragEnterEvent(QDragEnterEvent *event)
{
    if (droppedFiles(event->mimeData()).size() == 1)
        event->acceptProposedAction();
}

void FileField::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    setPath(droppedFiles(event->mimeData()).value(0));
}

void FileField::choose()
{
    const QString start = path().isEmpty() ? userFolder() : path();
    const QString chosen = m_isFolder ? QFileDialog::getExistingDirectory(this, m_name, start)
                                      : QFileDialog::getOpenFileName(this, m_name, start, m_filter);
    if (chosen.isEmpty())
        return;
    if (!m_isFolder) // where files go is another matter
        rememberUserFolder(chosen);
    setPath(chosen);
}

} // namespace corvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/file_field.h"

#include "host/workbench/dropped_files.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSettings>
#include <QToolButton>

namespace corvane
{

FileField::FileField(QWidget *parent)
    : QWidget(parent), m_path(new QLineEdit(this)), m_choose(new QToolButton(this))
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_path, 1);
    layout->addWidget(m_choose);
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
    const QString key = QStringLiteral("folder");
    const QString start = path().isEmpty() ? QSettings().value(key).toString() : path();
    const QString chosen = m_isFolder ? QFileDialog::getExistingDirectory(this, m_name, start)
                                      : QFileDialog::getOpenFileName(this, m_name, start, m_filter);
    if (chosen.isEmpty())
        return;
    QSettings().setValue(key, m_isFolder ? chosen : QFileInfo(chosen).absolutePath());
    setPath(chosen);
}

} // namespace corvane

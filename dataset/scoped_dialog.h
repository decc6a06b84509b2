// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>

/// A modal dialog for the length of a scope, on the heap: while it runs, its parent may be closed
/// and take it along, which would destroy a dialog on the stack twice. Null from then on; whoever
/// ran it must look before going on, since what started it is gone too.
template <typename Dialog>
class ScopedDialog
{
public:
    explicit ScopedDialog(Dialog *dialog) : m_dialog(dialog) {}
    ~ScopedDialog() { delete m_dialog.data(); }
    ScopedDialog(const ScopedDialog &) = delete;
    ScopedDialog &operator=(const ScopedDialog &) = delete;

    explicit operator bool() const { return !m_dialog.isNull(); }
    Dialog *operator->() const { return m_dialog.data(); }
    Dialog *get() const { return m_dialog.data(); }

private:
    QPointer<Dialog> m_dialog;
};

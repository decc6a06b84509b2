// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QFileDialog>
#include <QObject>
#include <QPointer>
#include <QProgressDialog>
#include <QString>
#include <QTimer>

#include <deque>
#include <functional>
#include <type_traits>
#include <utility>

/// Drives the modal dialogs that a slot under test opens, as a user would, while that slot sits in
/// their event loops: each dialog takes the next expectation. A dialog that nobody expects, or of
/// another kind than expected, fails the test and is closed; so does an expectation that is left
/// over at the end. Progress dialogs come and go on their own unless one is expected next.
class ModalDriver : public QObject
{
public:
    ModalDriver();
    ~ModalDriver() override;

    /// Acts on the next dialog, which must be a `Dialog`. The action closes it.
    template <typename Dialog>
    void expect(std::function<void(Dialog &)> action)
    {
        m_expected.push_back({std::is_same_v<Dialog, QProgressDialog>,
                              [action = std::move(action)](QDialog &dialog) {
                                  auto *const wanted = qobject_cast<Dialog *>(&dialog);
                                  if (wanted != nullptr)
                                      action(*wanted);
                                  return wanted != nullptr;
                              }});
    }

    /// Enters a path in a file dialog and presses Open or Save.
    static void enterFile(QFileDialog &dialog, const QString &path);

    /// Enters a path in a file dialog. `checkDialog` looks at the dialog first.
    void expectFile(const QString &path, std::function<void(QDialog &)> checkDialog = {});
    /// As expectFile, with something that happens between the choice and its use.
    void expectFileThen(const QString &path, std::function<void()> meanwhile);
    /// Presses Cancel in a file dialog.
    void expectFileCancel();
    /// Looks at a message box and presses its button.
    void expectMessage(const QString &title, const QString &text);

    /// Acts on dialogs that nothing expects, instead of failing the test.
    void setFallback(std::function<void(QDialog &)> action) { m_fallback = std::move(action); }

    std::size_t remaining() const { return m_expected.size(); }

private:
    struct Expectation {
        bool isProgress;
        std::function<bool(QDialog &)> act; ///< false when the dialog is of another kind
    };

    void look();
    void handle(QDialog *dialog);

    std::deque<Expectation> m_expected;
    std::function<void(QDialog &)> m_fallback;
    QPointer<QWidget> m_handled;
    QTimer m_timer;
};

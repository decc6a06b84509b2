// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/form_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QGraphicsView>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableWidget>

#include <map>
#include <memory>
#include <set>

namespace
{

/// A fresh widget of the nearest class that is Qt's own.
std::unique_ptr<QWidget> freshOne(const QMetaObject *meta)
{
    using Make = QWidget *(*)();
    static const std::map<QByteArray, Make> makers = {
        {"QCheckBox", [] { return static_cast<QWidget *>(new QCheckBox); }},
        {"QComboBox", [] { return static_cast<QWidget *>(new QComboBox); }},
        {"QDialog", [] { return static_cast<QWidget *>(new QDialog); }},
        {"QDockWidget", [] { return static_cast<QWidget *>(new QDockWidget); }},
        {"QDoubleSpinBox", [] { return static_cast<QWidget *>(new QDoubleSpinBox); }},
        {"QFrame", [] { return static_cast<QWidget *>(new QFrame); }},
        {"QGraphicsView", [] { return static_cast<QWidget *>(new QGraphicsView); }},
        {"QGroupBox", [] { return static_cast<QWidget *>(new QGroupBox); }},
        {"QLabel", [] { return static_cast<QWidget *>(new QLabel); }},
        {"QListWidget", [] { return static_cast<QWidget *>(new QListWidget); }},
        {"QMainWindow", [] { return static_cast<QWidget *>(new QMainWindow); }},
        {"QMenuBar", [] { return static_cast<QWidget *>(new QMenuBar); }},
        {"QPlainTextEdit", [] { return static_cast<QWidget *>(new QPlainTextEdit); }},
        {"QProgressBar", [] { return static_cast<QWidget *>(new QProgressBar); }},
        {"QPushButton", [] { return static_cast<QWidget *>(new QPushButton); }},
        {"QRadioButton", [] { return static_cast<QWidget *>(new QRadioButton); }},
        {"QScrollArea", [] { return static_cast<QWidget *>(new QScrollArea); }},
        {"QSlider", [] { return static_cast<QWidget *>(new QSlider); }},
        {"QSpinBox", [] { return static_cast<QWidget *>(new QSpinBox); }},
        {"QTabWidget", [] { return static_cast<QWidget *>(new QTabWidget); }},
        {"QTableView", [] { return static_cast<QWidget *>(new QTableView); }},
        {"QTableWidget", [] { return static_cast<QWidget *>(new QTableWidget); }},
    };
    for (; meta != &QWidget::staticMetaObject; meta = meta->superClass()) {
        const auto maker = makers.find(meta->className());
        if (maker != makers.end())
            return std::unique_ptr<QWidget>(maker->second());
    }
    return std::make_unique<QWidget>();
}

QString quoted(QString text)
{
    return '"' + text.replace('\n', "\\n") + '"';
}

QString sized(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

QString valueText(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QString:
        return quoted(value.toString());
    case QMetaType::QSize:
        return sized(value.toSize());
    case QMetaType::QSizeF:
        return sized(value.toSizeF().toSize());
    case QMetaType::QRectF: {
        const QRectF rect = value.toRectF();
        return QStringLiteral("%1,%2 %3x%4")
            .arg(rect.x())
            .arg(rect.y())
            .arg(rect.width())
            .arg(rect.height());
    }
    default:
        return value.toString();
    }
}

QString keysOf(const QMetaEnum &kind, int value)
{
    return kind.isFlag() ? QString(kind.valueToKeys(value)) : QString(kind.valueToKey(value));
}

QString policyText(const QSizePolicy &policy)
{
    const auto kind = QMetaEnum::fromType<QSizePolicy::Policy>();
    QString text =
        keysOf(kind, policy.horizontalPolicy()) + '/' + keysOf(kind, policy.verticalPolicy());
    if (policy.horizontalStretch() != 0 || policy.verticalStretch() != 0)
        text += QStringLiteral(" stretch %1/%2")
                    .arg(policy.horizontalStretch())
                    .arg(policy.verticalStretch());
    return text;
}

class FormWriter
{
public:
    std::string textOf(const QWidget &form)
    {
        widget(form, 0, {});
        return m_lines.join('\n').toStdString();
    }

private:
    void line(int depth, const QStringList &words)
    {
        m_lines += QString(2 * depth, ' ') + words.join(' ');
    }

    static QString nameOf(const QObject &object)
    {
        return object.objectName().isEmpty() ? QStringLiteral("(unnamed)") : object.objectName();
    }

    /// What differs in the properties that a form sets.
    static QStringList settings(const QWidget &widget)
    {
        // Given by the platform, the style, the layout or another setting, or told in other words.
        static const std::set<QByteArray> left = {"objectName",
                                                  "geometry",
                                                  "palette",
                                                  "font",
                                                  "cursor",
                                                  "locale",
                                                  "enabled",
                                                  "text",
                                                  "title",
                                                  "windowTitle",
                                                  "sizePolicy",
                                                  "icon",
                                                  "visible",
                                                  "currentText",
                                                  "shortcut",
                                                  "floating",
                                                  "textInteractionFlags"};
        QStringList words;
        const std::unique_ptr<QWidget> fresh = freshOne(widget.metaObject());
        const QMetaObject &meta = *widget.metaObject();
        for (const char *const first : {"text", "title", "windowTitle"}) {
            const QString text = widget.property(first).toString();
            if (!text.isEmpty())
                words += quoted(text);
        }
        for (int i = 0; i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            const QByteArray name = property.name();
            const bool ofHtml = name == "mouseTracking" && qobject_cast<const QLabel *>(&widget);
            if (ofHtml || left.count(name) > 0 || !property.isStored(&widget) ||
                !property.isWritable() || !property.isDesignable(&widget))
                continue;
            const QVariant value = property.read(&widget);
            if (value == fresh->property(name))
                continue;
            if (value.userType() == QMetaType::Bool)
                words += value.toBool() ? QString(name) : "no " + QString(name);
            else if (property.isEnumType())
                words += QString(name) + ' ' + keysOf(property.enumerator(), value.toInt());
            else
                words += QString(name) + ' ' + valueText(value);
        }
        for (const QByteArray &name : widget.dynamicPropertyNames())
            if (!name.startsWith('_'))
                words += QString(name) + ' ' + valueText(widget.property(name));
        if (!(widget.sizePolicy() == fresh->sizePolicy()))
            words += "policy " + policyText(widget.sizePolicy());
        if (widget.font().bold())
            words += QStringLiteral("bold");
        if (widget.parentWidget() != nullptr && !widget.isEnabledTo(widget.parentWidget()))
            words += QStringLiteral("disabled");
        if (!widget.isWindow() && widget.isHidden() &&
            widget.testAttribute(Qt::WA_WState_ExplicitShowHide) &&
            qobject_cast<QStackedWidget *>(widget.parentWidget()) == nullptr)
            words += QStringLiteral("hidden");
        if (const auto *const box = qobject_cast<const QComboBox *>(&widget))
            for (int item = 0; item < box->count(); ++item)
                words += "item " + quoted(box->itemText(item));
        return words;
    }

    void widget(const QWidget &widget, int depth, const QStringList &place)
    {
        QStringList words = {QString(widget.metaObject()->className()), nameOf(widget)};
        words += settings(widget);
        if (widget.isWindow())
            words += sized(widget.size());
        line(depth, words + place);
        inside(widget, depth + 1);
    }

    void inside(const QWidget &widget, int depth)
    {
        if (const auto *const tabs = qobject_cast<const QTabWidget *>(&widget)) {
            for (int tab = 0; tab < tabs->count(); ++tab)
                this->widget(*tabs->widget(tab), depth, {"tab", quoted(tabs->tabText(tab))});
        } else if (const auto *const area = qobject_cast<const QScrollArea *>(&widget)) {
            content(area->widget(), depth);
        } else if (const auto *const dock = qobject_cast<const QDockWidget *>(&widget)) {
            content(dock->widget(), depth);
        } else if (const auto *const window = qobject_cast<const QMainWindow *>(&widget)) {
            content(window->centralWidget(), depth);
            for (QWidget *const child : ownChildren(widget)) {
                if (auto *const docked = qobject_cast<QDockWidget *>(child)) {
                    const Qt::DockWidgetArea side = window->dockWidgetArea(docked);
                    this->widget(*docked, depth,
                                 {keysOf(QMetaEnum::fromType<Qt::DockWidgetArea>(), side)});
                } else if (child != window->centralWidget()) {
                    this->widget(*child, depth, {});
                }
            }
        } else {
            if (widget.layout() != nullptr)
                layout(*widget.layout(), depth, {});
            for (const QWidget *const child : ownChildren(widget))
                if (widget.layout() == nullptr || !holds(*widget.layout(), child))
                    this->widget(*child, depth, {"in no layout"});
        }
    }

    void content(const QWidget *widget, int depth)
    {
        if (widget != nullptr)
            this->widget(*widget, depth, {});
    }

    /// Those that the form made, not Qt within a widget.
    static QList<QWidget *> ownChildren(const QWidget &widget)
    {
        QList<QWidget *> children;
        if (qobject_cast<const QAbstractSpinBox *>(&widget) ||
            qobject_cast<const QComboBox *>(&widget) ||
            qobject_cast<const QAbstractScrollArea *>(&widget))
            return children;
        for (QWidget *const child :
             widget.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
            if (!child->objectName().isEmpty() && !child->objectName().startsWith("qt_") &&
                !child->isWindow())
                children += child;
        return children;
    }

    static bool holds(const QLayout &layout, const QWidget *widget)
    {
        for (int i = 0; i < layout.count(); ++i) {
            QLayoutItem *const item = layout.itemAt(i);
            if (item->widget() == widget ||
                (item->layout() != nullptr && holds(*item->layout(), widget)))
                return true;
        }
        return false;
    }

    void layout(const QLayout &layout, int depth, const QStringList &place)
    {
        QStringList words = {QString(layout.metaObject()->className()), nameOf(layout)};
        const auto *const grid = qobject_cast<const QGridLayout *>(&layout);
        words += grid == nullptr ? QStringLiteral("spacing %1").arg(layout.spacing())
                                 : QStringLiteral("spacing %1,%2")
                                       .arg(grid->horizontalSpacing())
                                       .arg(grid->verticalSpacing());
        const QMargins margins = layout.contentsMargins();
        if (!margins.isNull())
            words += QStringLiteral("margins %1 %2 %3 %4")
                         .arg(margins.left())
                         .arg(margins.top())
                         .arg(margins.right())
                         .arg(margins.bottom());
        if (layout.sizeConstraint() != QLayout::SetDefaultConstraint)
            words +=
                keysOf(QMetaEnum::fromType<QLayout::SizeConstraint>(), layout.sizeConstraint());
        line(depth, words + place);
        for (int i = 0; i < layout.count(); ++i)
            item(*layout.itemAt(i), depth + 1, placeOf(layout, i));
    }

    static QStringList placeOf(const QLayout &layout, int index)
    {
        QStringList words;
        if (const auto *const grid = qobject_cast<const QGridLayout *>(&layout)) {
            int row = 0, column = 0, rows = 0, columns = 0;
            grid->getItemPosition(index, &row, &column, &rows, &columns);
            words += QStringLiteral("cell %1,%2").arg(row).arg(column);
            if (rows > 1)
                words += QStringLiteral("%1 rows").arg(rows);
            if (columns > 1)
                words += QStringLiteral("%1 columns").arg(columns);
        } else if (const auto *const box = qobject_cast<const QBoxLayout *>(&layout)) {
            if (box->stretch(index) != 0)
                words += QStringLiteral("stretch %1").arg(box->stretch(index));
        }
        if (const Qt::Alignment alignment = layout.itemAt(index)->alignment())
            words += "at " + keysOf(QMetaEnum::fromType<Qt::Alignment>(), int(alignment));
        return words;
    }

    void item(QLayoutItem &item, int depth, const QStringList &place)
    {
        if (item.widget() != nullptr)
            widget(*item.widget(), depth, place);
        else if (item.layout() != nullptr)
            layout(*item.layout(), depth, place);
        else
            line(depth, QStringList{"spacer", sized(item.sizeHint()),
                                    policyText(item.spacerItem()->sizePolicy())} +
                            place);
    }

    QStringList m_lines;
};

} // namespace

std::string formText(const QWidget &form)
{
    return FormWriter().textOf(form);
}
